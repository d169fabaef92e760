// The stand-in host as a whole: everything a plug-in may ask for, and the scripts that drive it.
#pragma once

#include <memory>
#include <string>

#include "hostkit/image/bitmap_manager.h"
#include "hostkit/image/image_codec_library.h"
#include "hostkit/script/engine/engine.h"
#include "hostkit/services/path_configuration.h"
#include "hostkit/services/plugin_library.h"
#include "hostkit/services/system_log.h"
#include "hostsdk/services.h"
#include "standin/bindings/script_bindings.h"
#include "standin/host/core.h"

namespace standin::program {

class HostApplication {
 public:
  // Binds itself as the process's host.
  HostApplication();
  ~HostApplication();
  HostApplication(const HostApplication&) = delete;
  HostApplication& operator=(const HostApplication&) = delete;

  // std::runtime_error as PluginLibrary tells.
  void loadPlugin(const std::string& nativePath);

  hostkit::script::Engine& scripts() { return *scripts_; }
  host::Core& core() { return core_; }
  hostkit::image::ImageBitmapManager& bitmaps() { return bitmaps_; }

 private:
  hostkit::services::SystemLog log_;
  hostkit::services::GammaManager gamma_;
  hostkit::image::ImageCodecLibrary codecs_;
  hostkit::image::ImageBitmapManager bitmaps_;
  hostkit::services::PathConfiguration paths_;
  host::Core core_;
  bindings::ScriptBindings bindings_;
  std::unique_ptr<hostkit::script::Engine> scripts_;
  hostsdk::HostServices previous_;
  std::unique_ptr<hostkit::services::PluginLibrary> plugin_;
};

}  // namespace standin::program
