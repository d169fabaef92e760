// The scene file's path, taken apart for the scripts that ask for its name and folder.
#pragma once

#include <string>

namespace corvantis {

struct ScenePath {
  std::u16string fileName;
  std::u16string folder;
};

// Takes a Windows path with backslashes apart: "C:\scenes\a.max" is "a.max" in "C:\scenes". The folder of a file in a
// root keeps the root's separator ("C:\"), a path that ends in a separator has the file name ".", a root is its own
// file name, a drive without a separator is a folder ("C:a.max" is "a.max" in "C:").
ScenePath splitScenePath(const std::u16string& path);

}  // namespace corvantis
