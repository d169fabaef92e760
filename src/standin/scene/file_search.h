// Names in scene files: how they become native paths, and where they are looked for.
#pragma once

#include <string>
#include <vector>

namespace standin::scene {

// The folder a file lies in, absolute.
std::string folderOf(const std::string& path);
// Absolute and without "." and "..", links left alone.
std::string absolutePath(const std::string& path);

// The native path of a name that a scene in `folder` uses: "\" and "/" both part folders; a Windows path with a drive
// or share becomes its native counterpart, an absolute path stays, all else is relative to the folder.
std::string resolveName(const std::string& folder, const std::string& name);

// The path of an existing file: as resolveName gives it, else in one of `searchFolders`, there first with the name's
// own folders, then with its last part alone. Empty when there is none.
std::string findFile(const std::string& folder, const std::string& name, const std::vector<std::string>& searchFolders);

// Undoes the percent encoding of an address; a malformed escape stays as it is.
std::string decodePercent(const std::string& uri);

}  // namespace standin::scene
