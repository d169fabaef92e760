// The folders in which the host looks for textures, external scenes and plug-ins.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "hostsdk/services.h"

namespace hostkit::services {

// Reads path configuration files: INI files whose sections list folders, one "name=folder" a line.
//
//   [Directories]     folders for everything
//   [BitmapDirs]      textures
//   [XReferenceDirs]  external scenes
//   [PlugInDirs]      plug-ins
//
// Section and entry names are caseless; other sections are passed over. Folders are Windows paths.
class PathConfiguration : public hostsdk::IPathConfigMgr {
 public:
  explicit PathConfiguration(std::function<void(const std::string&)> log);

  // A file that cannot be read changes nothing and is logged.
  bool LoadPathConfiguration(const std::u16string& file) override;
  bool MergePathConfiguration(const std::u16string& file) override;

  // Native paths, in the order in which they are searched.
  const std::vector<std::string>& textureFolders() const { return folders_.textures; }
  const std::vector<std::string>& xrefFolders() const { return folders_.xrefs; }
  const std::vector<std::string>& pluginFolders() const { return folders_.plugins; }

 private:
  struct Folders {
    std::vector<std::string> textures, xrefs, plugins;
  };
  bool read(const std::u16string& file, Folders& folders);

  std::function<void(const std::string&)> log_;
  Folders folders_;
};

}  // namespace hostkit::services
