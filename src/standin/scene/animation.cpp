#include "standin/scene/animation.h"

#include <algorithm>
#include <cstddef>

namespace standin::scene {

namespace {

// A track's value at a moment; three-component paths leave w alone.
using Components = std::array<float, 4>;

std::size_t widthOf(const Track& track) { return track.path == Track::Path::rotation ? 4 : 3; }

// Value `part` of key `key`: cubic keys hold 0 in-tangent, 1 value, 2 out-tangent; the others only a value.
Components valueAt(const Track& track, std::size_t key, std::size_t part) {
  const std::size_t width = widthOf(track);
  const bool cubic = track.interpolation == Track::Interpolation::cubic;
  const float* first = track.values.data() + (cubic ? 3 * key + part : key) * width;
  Components out{};
  std::copy_n(first, width, out.begin());
  return out;
}

Quat toQuat(const Components& c) { return {c[0], c[1], c[2], c[3]}; }

Components linear(const Track& track, std::size_t key, float t) {
  const Components a = valueAt(track, key, 1), b = valueAt(track, key + 1, 1);
  if (track.path == Track::Path::rotation) {
    const Quat q = slerp(toQuat(a), toQuat(b), t);
    return {q.x, q.y, q.z, q.w};
  }
  Components out{};
  for (std::size_t i = 0; i < 3; ++i) out[i] = a[i] + (b[i] - a[i]) * t;
  return out;
}

// Cubic Hermite spline; tangents are per second, so they scale with the distance of the keys.
Components cubic(const Track& track, std::size_t key, float t, float seconds) {
  const float t2 = t * t, t3 = t2 * t;
  const float fromValue = 2 * t3 - 3 * t2 + 1, fromTangent = (t3 - 2 * t2 + t) * seconds;
  const float toValue = -2 * t3 + 3 * t2, toTangent = (t3 - t2) * seconds;
  const Components from = valueAt(track, key, 1), out = valueAt(track, key, 2);
  const Components in = valueAt(track, key + 1, 0), to = valueAt(track, key + 1, 1);
  Components value{};
  for (std::size_t i = 0; i < 4; ++i)
    value[i] = from[i] * fromValue + out[i] * fromTangent + to[i] * toValue + in[i] * toTangent;
  return value;
}

Components evaluate(const Track& track, double seconds) {
  const auto& times = track.times;
  if (seconds <= times.front()) return valueAt(track, 0, 1);
  if (seconds >= times.back()) return valueAt(track, times.size() - 1, 1);
  const auto next = std::upper_bound(times.begin(), times.end(), seconds);
  const auto key = static_cast<std::size_t>(next - times.begin()) - 1;
  const double span = static_cast<double>(times[key + 1]) - times[key];
  const auto t = static_cast<float>((seconds - times[key]) / span);
  switch (track.interpolation) {
    case Track::Interpolation::step:
      return valueAt(track, key, 1);
    case Track::Interpolation::linear:
      return linear(track, key, t);
    case Track::Interpolation::cubic:
      return cubic(track, key, t, static_cast<float>(span));
  }
  return {};
}

Quat unit(const Components& c) {
  const float l = std::sqrt(c[0] * c[0] + c[1] * c[1] + c[2] * c[2] + c[3] * c[3]);
  return l > 0 ? Quat{c[0] / l, c[1] / l, c[2] / l, c[3] / l} : Quat{};
}

}  // namespace

Transform localTransform(const Node& node, double ticks) {
  if (node.matrix) return *node.matrix;
  Vec3 translation = node.translation, scale = node.scale;
  Quat rotation = node.rotation;
  for (const Track& track : node.tracks) {
    const Components value = evaluate(track, ticks / kTicksPerSecond);
    switch (track.path) {
      case Track::Path::translation:
        translation = {value[0], value[1], value[2]};
        break;
      case Track::Path::rotation:
        rotation = unit(value);
        break;
      case Track::Path::scale:
        scale = {value[0], value[1], value[2]};
        break;
    }
  }
  return fromTranslationRotationScale(translation, rotation, scale);
}

Transform worldTransform(const Scene& scene, int node, double ticks) {
  Transform world = localTransform(scene.nodes[static_cast<std::size_t>(node)], ticks);
  for (int parent = scene.nodes[static_cast<std::size_t>(node)].parent; parent != kNone;) {
    const Node& above = scene.nodes[static_cast<std::size_t>(parent)];
    world = compose(localTransform(above, ticks), world);
    parent = above.parent;
  }
  return world;
}

std::vector<Transform> worldTransforms(const Scene& scene, double ticks) {
  std::vector<Transform> world(scene.nodes.size());
  // From the roots down, so that each local transform is evaluated once.
  std::vector<int> open(scene.roots.begin(), scene.roots.end());
  while (!open.empty()) {
    const auto index = static_cast<std::size_t>(open.back());
    open.pop_back();
    const Node& node = scene.nodes[index];
    const Transform local = localTransform(node, ticks);
    world[index] = node.parent == kNone ? local : compose(world[static_cast<std::size_t>(node.parent)], local);
    open.insert(open.end(), node.children.begin(), node.children.end());
  }
  return world;
}

}  // namespace standin::scene
