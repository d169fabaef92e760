// Opens scene files: glTF 2.0, as text (.gltf) or binary (.glb), with the settings that docs/scene-settings.md tells.
#pragma once

#include <string>
#include <vector>

#include "standin/scene/description.h"
#include "standin/scene/scene_error.h"

namespace standin::scene {

// Paths are native. Names in a scene are looked for beside it first, then in these folders in their order, there first
// with the name's own folders, then with its last part alone.
struct LoadOptions {
  std::string path;
  std::vector<std::string> textureFolders, xrefFolders, pluginFolders;
};

// Loads the file, what it refers to, and the external scenes it merges, and checks all of it: every index, offset and
// parent in the result is in range, every number finite. Only what the file's default scene reaches is loaded.
//
// A node without a name gets that of its camera, light or mesh, else "node" and its index in the file. Missing
// textures, texture coordinates, plug-ins and external scenes are problems in the result, not errors; what is passed
// over is a warning. Throws SceneError beginning with the file's path for everything else that is wrong.
Scene loadScene(const LoadOptions& options);

// Whether a file is a glTF 2 scene to judge by its beginning (binary) or its asset.version (text). False for what
// cannot be read. Does not look further: loadScene may still refuse it.
bool looksLikeScene(const std::string& path);

}  // namespace standin::scene
