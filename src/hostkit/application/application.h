// What every host consists of beside its scene: services, bitmaps, scripts, and the plug-in.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "hostkit/codec/image_codec_library.h"
#include "hostkit/image/bitmap_manager.h"
#include "hostkit/script/engine/engine.h"
#include "hostkit/services/gamma_manager.h"
#include "hostkit/services/path_configuration.h"
#include "hostkit/services/plugin_library.h"
#include "hostkit/services/system_log.h"
#include "hostsdk/services.h"

namespace hostkit::application {

// A host makes it first, then its own core and what scripts see of it, and joins the three.
class Application {
 public:
  // `program` begins the host's own lines on standard error, `product` is what image files say made them.
  Application(const std::string& program, std::string product);
  // What join() has joined must have been parted before.
  ~Application();
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  const services::PathConfiguration& paths() const { return paths_; }
  image::ImageCodecLibrary& codecs() { return codecs_; }
  image::ImageBitmapManager& bitmaps() { return bitmaps_; }
  // One line of host diagnostics.
  void log(const std::string& line) { log_.line(line); }
  // One line on the script listener: standard output.
  void listen(const std::string& line);

  // Makes the script engine and binds all of it as the process's host. `core` and `bindings` are borrowed until part().
  // Scripts are also looked for in `scriptFolders` (Windows paths).
  void join(hostsdk::Interface14& core, script::HostBindings& bindings, std::vector<std::u16string> scriptFolders = {});
  // Unloads the plug-in, gives the process back the host that it had before, and ends the script engine.
  void part();

  // Between join() and part():
  script::Engine& scripts() { return *scripts_; }
  // Runs the scripts that wait for something to happen: "filePostOpen", "preRender", ...; `parameter` is what they are
  // told of it.
  void notify(const char* event, const script::HostValue& parameter);
  // std::runtime_error as PluginLibrary tells.
  void loadPlugin(const std::string& nativePath);

 private:
  services::SystemLog log_;
  services::GammaManager gamma_;
  image::ImageCodecLibrary codecs_;
  image::ImageBitmapManager bitmaps_;
  services::PathConfiguration paths_;
  std::unique_ptr<script::Engine> scripts_;
  hostsdk::HostServices previous_;
  std::unique_ptr<services::PluginLibrary> plugin_;
};

}  // namespace hostkit::application
