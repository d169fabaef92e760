// The stand-in host as a whole: everything a plug-in may ask for, and the scripts that drive it.
#pragma once

#include <memory>
#include <string>

#include "hostsdk/services.h"
#include "standin/app/core.h"
#include "standin/app/path_configuration.h"
#include "standin/app/plugin_library.h"
#include "standin/app/script_bindings.h"
#include "standin/app/system_log.h"
#include "standin/image/bitmap_manager.h"
#include "standin/image/image_io.h"
#include "standin/maxscript/engine.h"

namespace standin::app {

class HostApplication {
 public:
  // Binds itself as the process's host.
  HostApplication();
  ~HostApplication();
  HostApplication(const HostApplication&) = delete;
  HostApplication& operator=(const HostApplication&) = delete;

  // std::runtime_error as PluginLibrary tells.
  void loadPlugin(const std::string& nativePath);

  maxscript::Engine& scripts() { return *scripts_; }
  Core& core() { return core_; }
  image::ImageBitmapManager& bitmaps() { return bitmaps_; }

 private:
  SystemLog log_;
  image::GammaManager gamma_;
  image::ImageIo imageIo_;
  image::ImageBitmapManager bitmaps_;
  PathConfiguration paths_;
  Core core_;
  ScriptBindings bindings_;
  std::unique_ptr<maxscript::Engine> scripts_;
  hostsdk::HostServices previous_;
  std::unique_ptr<PluginLibrary> plugin_;
};

}  // namespace standin::app
