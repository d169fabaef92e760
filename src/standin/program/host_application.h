// The stand-in host as a whole: everything a plug-in may ask for, and the scripts that drive it.
#pragma once

#include "hostkit/application/application.h"
#include "standin/bindings/script_bindings.h"
#include "standin/host/core.h"

namespace standin::program {

inline constexpr const char* kProgramName = "standin-host";

class HostApplication {
 public:
  // Binds itself as the process's host. Scripts are also looked for in `scriptFolders` (Windows paths).
  explicit HostApplication(std::vector<std::u16string> scriptFolders = {});
  ~HostApplication();
  HostApplication(const HostApplication&) = delete;
  HostApplication& operator=(const HostApplication&) = delete;

  // std::runtime_error as PluginLibrary tells.
  void loadPlugin(const std::string& nativePath) { application_.loadPlugin(nativePath); }

  hostkit::script::Engine& scripts() { return application_.scripts(); }
  host::Core& core() { return core_; }

 private:
  hostkit::application::Application application_;
  host::Core core_;
  bindings::ScriptBindings bindings_;
};

}  // namespace standin::program
