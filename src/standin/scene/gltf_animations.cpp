#include <algorithm>

#include "standin/scene/gltf_accessors.h"
#include "standin/scene/gltf_parts.h"
#include "standin/scene/gltf_rules.h"
#include "standin/scene/scene_error.h"

namespace standin::scene {

namespace {

// Reads samplers of one document.
class TrackReader {
 public:
  TrackReader(const GltfDocument& document) : accessors_(document) {}

  Track read(const tinygltf::AnimationSampler& sampler, Track::Path path, const std::string& place) const {
    Track track;
    track.path = path;
    track.interpolation = interpolation(sampler.interpolation, place);
    track.times = times(sampler.input, place);
    const int width = path == Track::Path::rotation ? 4 : 3;
    track.values = accessors_.floats(sampler.output, width, place + ".output");
    const std::size_t perKey =
        static_cast<std::size_t>(width) * (track.interpolation == Track::Interpolation::cubic ? 3 : 1);
    if (track.values.size() != track.times.size() * perKey)
      throw SceneError(place + ".output: expected " + std::to_string(track.times.size() * perKey) + " numbers for " +
                       std::to_string(track.times.size()) + " keys, got " + std::to_string(track.values.size()));
    return track;
  }

 private:
  static Track::Interpolation interpolation(const std::string& name, const std::string& place) {
    if (name == "LINEAR") return Track::Interpolation::linear;
    if (name == "STEP") return Track::Interpolation::step;
    if (name == "CUBICSPLINE") return Track::Interpolation::cubic;
    throw SceneError(place + ".interpolation: expected LINEAR, STEP or CUBICSPLINE, got " + shown(name));
  }

  std::vector<float> times(int accessor, const std::string& place) const {
    std::vector<float> seconds = accessors_.floats(accessor, 1, place + ".input");
    if (seconds.empty()) throw SceneError(place + ".input: expected at least one key, got none");
    const auto notRising = [](float a, float b) { return a >= b; };
    const auto wrong = std::adjacent_find(seconds.begin(), seconds.end(), notRising);
    if (wrong != seconds.end())
      throw SceneError(place + ".input: expected rising times, got " + shown(wrong[0]) + " before " + shown(wrong[1]));
    return seconds;
  }

  Accessors accessors_;
};

// False for a path that is passed over.
bool trackPath(const std::string& name, const std::string& place, Track::Path& path) {
  if (name == "translation")
    path = Track::Path::translation;
  else if (name == "rotation")
    path = Track::Path::rotation;
  else if (name == "scale")
    path = Track::Path::scale;
  else if (name == "weights")
    return false;
  else
    throw SceneError(place + ".target.path: expected translation, rotation, scale or weights, got " + shown(name));
  return true;
}

void loadAnimation(const tinygltf::Animation& animation, const std::string& place, const TrackReader& reader,
                   const NodeNumbers& numbers, Scene& scene) {
  for (std::size_t i = 0; i < animation.channels.size(); ++i) {
    const tinygltf::AnimationChannel& channel = animation.channels[i];
    const std::string channelPlace = place + ".channels[" + std::to_string(i) + "]";
    const auto sampler = static_cast<std::size_t>(channel.sampler);
    if (sampler >= animation.samplers.size())
      throw SceneError(channelPlace + ".sampler: expected an index below " + std::to_string(animation.samplers.size()) +
                       ", got " + std::to_string(channel.sampler));
    Track::Path path{};
    if (!trackPath(channel.target_path, channelPlace, path)) {
      scene.warnings.push_back(channelPlace + ": morph weights are passed over");
      continue;
    }
    const int index = numbers.inScene[static_cast<std::size_t>(channel.target_node)];
    if (index == kNone) continue;
    Node& node = scene.nodes[static_cast<std::size_t>(index)];
    if (node.matrix)
      throw SceneError(channelPlace + ".target: expected a node with translation, rotation and scale, got nodes[" +
                       std::to_string(channel.target_node) + "], which has a matrix");
    const auto same = [path](const Track& track) { return track.path == path; };
    if (std::any_of(node.tracks.begin(), node.tracks.end(), same)) {
      scene.warnings.push_back(channelPlace + ": the node's " + channel.target_path +
                               " is animated already; the channel is passed over");
      continue;
    }
    node.tracks.push_back(
        reader.read(animation.samplers[sampler], path, place + ".samplers[" + std::to_string(sampler) + "]"));
  }
}

}  // namespace

void loadAnimations(const GltfDocument& document, const NodeNumbers& numbers, Scene& scene) {
  const TrackReader reader(document);
  for (std::size_t i = 0; i < document.model.animations.size(); ++i)
    loadAnimation(document.model.animations[i], "animations[" + std::to_string(i) + "]", reader, numbers, scene);
}

}  // namespace standin::scene
