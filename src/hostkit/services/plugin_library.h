// A plug-in, loaded as the production host loads one.
#pragma once

#include <memory>
#include <string>

namespace hostkit::services {

class PluginLibrary {
 public:
  // Loads the library and asks for LibDescription, LibVersion and LibInit by name. std::runtime_error: it cannot be
  // loaded, lacks an entry point, or was built for another host version; the text says what was expected and found.
  explicit PluginLibrary(const std::string& nativePath);
  // Unloads it.
  ~PluginLibrary();
  PluginLibrary(const PluginLibrary&) = delete;
  PluginLibrary& operator=(const PluginLibrary&) = delete;

  const std::u16string& description() const { return description_; }

  // The plug-in beside the running program.
  static std::string defaultPath();

 private:
  struct Library;
  std::unique_ptr<Library> library_;
  std::u16string description_;
};

}  // namespace hostkit::services
