#include "standin/scene/loader.h"

#include <algorithm>
#include <fstream>

#include "standin/scene/file_search.h"
#include "standin/scene/gltf_document.h"
#include "standin/scene/gltf_parts.h"
#include "standin/scene/merge.h"
#include "standin/scene/settings.h"

namespace standin::scene {

namespace {

using nlohmann::json;

constexpr std::size_t kDeepestXref = 16;

void readSettings(const GltfDocument& document, const NodeNumbers& numbers, Scene& scene) {
  if (const int index = defaultSceneOf(document); index != kNone)
    readSceneSettings(document.json["scenes"][static_cast<std::size_t>(index)], document.folder, scene);
  for (std::size_t i = 0; i < numbers.inFile.size(); ++i) {
    const int inFile = numbers.inFile[i];
    readNodeSettings(document.json["nodes"][static_cast<std::size_t>(inFile)], "nodes[" + std::to_string(inFile) + "]",
                     scene, static_cast<int>(i));
  }
}

void findPlugins(const std::string& folder, const LoadOptions& options, Scene& scene) {
  for (const std::string& name : scene.plugins)
    if (findFile(folder, name, options.pluginFolders).empty())
      scene.problems.push_back({LoadProblem::Kind::missingPlugin, "Missing plug-in: " + name});
}

Scene loadOneFile(const std::string& path, const LoadOptions& options) {
  const GltfDocument document = readGltf(path);
  Scene scene;
  scene.path = path;
  loadMaterials(document, options, scene);
  loadMeshes(document, scene);
  const NodeNumbers numbers = loadNodes(document, scene);
  loadAnimations(document, numbers, scene);
  readSettings(document, numbers, scene);
  findPlugins(document.folder, options, scene);
  return scene;
}

Scene loadWithXrefs(const std::string& path, const LoadOptions& options, std::vector<std::string>& open);

// Loads and merges the external scenes that `scene` names. `open` are the files whose loading led here.
void mergeXrefs(Scene& scene, const LoadOptions& options, std::vector<std::string>& open) {
  const std::string folder = folderOf(scene.path);
  for (const std::string& name : scene.xrefs) {
    const std::string path = findFile(folder, name, options.xrefFolders);
    if (path.empty()) {
      scene.problems.push_back({LoadProblem::Kind::missingXref, "Missing XREF scene: " + name});
      continue;
    }
    if (std::find(open.begin(), open.end(), path) != open.end())
      throw SceneError(scene.path + ": extras.standin.xrefs: " + name + " leads back to itself");
    if (open.size() > kDeepestXref)
      throw SceneError(scene.path + ": extras.standin.xrefs: expected external scenes at most " +
                       std::to_string(kDeepestXref) + " levels deep");
    Scene part = loadWithXrefs(path, options, open);
    for (std::string& warning : part.warnings) warning.insert(0, name + ": ");
    mergeScene(std::move(part), scene);
  }
}

Scene loadWithXrefs(const std::string& path, const LoadOptions& options, std::vector<std::string>& open) {
  open.push_back(path);
  Scene scene;
  try {
    scene = loadOneFile(path, options);
  } catch (const SceneError& e) {
    throw SceneError(path + ": " + e.what());
  } catch (const json::exception& e) {  // something the format rules do not know of
    throw SceneError(path + ": " + e.what());
  }
  mergeXrefs(scene, options, open);
  open.pop_back();
  return scene;
}

// Stops reading a JSON text as soon as asset.version is known.
class VersionFinder : public json::json_sax_t {
 public:
  bool found() const { return found_; }

  bool null() override { return true; }
  bool boolean(bool) override { return true; }
  bool number_integer(number_integer_t) override { return true; }
  bool number_unsigned(number_unsigned_t) override { return true; }
  bool number_float(number_float_t, const string_t&) override { return true; }
  bool string(string_t& value) override {
    if (!inAsset_ || depth_ != 2 || key_ != "version") return true;
    found_ = value.rfind("2.", 0) == 0;
    return false;
  }
  bool binary(binary_t&) override { return true; }
  bool start_object(std::size_t) override {
    ++depth_;
    return true;
  }
  bool end_object() override {
    --depth_;
    return true;
  }
  bool start_array(std::size_t) override { return depth_++ != 0; }  // the document must be an object
  bool end_array() override {
    --depth_;
    return true;
  }
  bool key(string_t& value) override {
    if (depth_ == 1) inAsset_ = value == "asset";
    key_ = value;
    return true;
  }
  bool parse_error(std::size_t, const std::string&, const json::exception&) override { return false; }

 private:
  int depth_ = 0;
  bool inAsset_ = false, found_ = false;
  std::string key_;
};

}  // namespace

Scene loadScene(const LoadOptions& options) {
  std::vector<std::string> open;
  Scene scene = loadWithXrefs(absolutePath(options.path), options, open);
  completeViewports(scene);
  return scene;
}

bool looksLikeScene(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  char head[8] = {};
  if (!file.read(head, sizeof(head)) && file.gcount() == 0) return false;
  if (file.gcount() == sizeof(head) && std::string_view(head, 4) == "glTF")
    return std::string_view(head + 4, 4) == std::string_view("\2\0\0\0", 4);
  file.clear();
  file.seekg(0);
  VersionFinder finder;
  json::sax_parse(file, &finder);
  return finder.found();
}

}  // namespace standin::scene
