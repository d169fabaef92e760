// A scene as plain data: what a file holds, apart from any live host object. Loaded once, read by everybody, changed
// only where a script changes it. Units are metres, angles radians, colours linear; y is up.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "standin/scene/math.h"

namespace standin::scene {

inline constexpr int kTicksPerSecond = 4800;
inline constexpr int kNone = -1;  // an index that names nothing

// 8-bit or float texels, already linear, row-major from the top left, 4 channels.
struct Image {
  std::string name;
  int width = 0, height = 0;
  std::vector<float> texels;  // width * height * 4
};

struct Texture {
  int image = kNone;
  enum class Wrap { repeat, mirror, clamp } wrapU = Wrap::repeat, wrapV = Wrap::repeat;
  bool nearest = false;  // no filtering
  int texCoord = 0;      // which set of the mesh: 0 or 1
  // KHR_texture_transform: uv' = rotate(uv * scale) + offset
  Vec2 offset{0, 0}, scale{1, 1};
  float rotation = 0;
};

struct Material {
  std::string name;
  Vec4 baseColor{1, 1, 1, 1};
  float metallic = 1, roughness = 1;
  Vec3 emission{0, 0, 0};  // KHR_materials_emissive_strength already multiplied in
  float normalScale = 1;
  std::optional<Texture> baseColorTexture, metallicRoughnessTexture, normalTexture, emissionTexture;
  enum class Alpha { opaque, mask, blend } alphaMode = Alpha::opaque;
  float alphaCutoff = 0.5F;
  bool doubleSided = false;
  bool unlit = false;  // KHR_materials_unlit
};

// One triangle list with one material. All present vertex arrays have the length of positions.
struct Primitive {
  std::vector<Vec3> positions;
  std::vector<Vec3> normals;           // never empty after loading
  std::vector<Vec4> tangents;          // may be empty; w is the handedness
  std::vector<Vec2> uv0, uv1;          // may be empty
  std::vector<Vec4> colors;            // may be empty; multiply the base colour
  std::vector<std::uint32_t> indices;  // three a triangle, all below positions.size()
  int material = kNone;                // kNone: the default material
};

struct Mesh {
  std::string name;
  std::vector<Primitive> primitives;
};

enum class EffectKind { depthOfField, motionBlur, other };
struct MultipassSettings {
  EffectKind kind = EffectKind::depthOfField;
  std::pair<std::uint32_t, std::uint32_t> classId{0, 0};  // of the effect
  bool enabled = true;
  int passes = 8;
  float focusDistance = 5.0F;  // metres from the camera
  float aperture = 0.1F;       // lens radius, metres
  float duration = 0.5F;       // frames
};

struct Camera {
  std::string name;
  float yfov = 0.785398F;         // vertical, radians
  float aspect = 0;               // 0: that of the render output
  float znear = 0.01F, zfar = 0;  // zfar 0: none
  std::pair<std::uint32_t, std::uint32_t> classId{0, 0};
  std::optional<MultipassSettings> multipass;
};

struct Light {
  std::string name;
  enum class Kind { directional, point, spot } kind = Kind::point;
  bool on = true;
  Vec3 color{1, 1, 1};
  float intensity = 1;  // lux for directional, candela for the others
  float range = 0;      // 0: unlimited
  float innerCone = 0, outerCone = 0.785398F;
};

// Keys of one animated property. Values are width floats a key (translation and scale 3, rotation 4, weights as many as
// targets); cubic keys hold in-tangent, value, out-tangent.
struct Track {
  enum class Path { translation, rotation, scale } path = Path::translation;
  enum class Interpolation { step, linear, cubic } interpolation = Interpolation::linear;
  std::vector<float> times;  // seconds, strictly increasing, not empty
  std::vector<float> values;
};

using PlainValue = std::variant<bool, std::int32_t, float, std::string>;

struct Node {
  std::string name;
  int parent = kNone;
  std::vector<int> children;
  Vec3 translation{0, 0, 0};
  Quat rotation{};
  Vec3 scale{1, 1, 1};
  std::optional<Transform> matrix;  // instead of the three above; never animated
  std::vector<Track> tracks;
  int mesh = kNone, camera = kNone, light = kNone;
  bool visible = true;
  bool selected = false;                                           // by a script
  std::map<std::string, PlainValue> userProperties;                // the plain values of its extras, for scripts
  int objectId = 0;                                                // from 1, in file order
  std::optional<std::pair<std::uint32_t, std::uint32_t>> classId;  // "standin" override on a node
};

enum class ElementType { beauty, alpha, depth, normal, albedo, position, objectId, directLight, emission };
struct ElementSettings {
  std::string name;
  ElementType type = ElementType::beauty;
  bool enabled = true;
  std::string output;  // native path, absolute; empty: none
};

struct ViewportSettings {
  std::string camera;  // node name; empty: the view below
  Vec3 eye{0, 1, 5}, target{0, 0, 0};
  float fov = 45;  // horizontal, degrees
};

struct RenderSettings {
  int width = 640, height = 480;
  float pixelAspect = 1;
  bool saveFile = true;
  std::string output;  // native path, absolute; empty: none
  bool skipExisting = false;
  int samples = 4;                                  // a pixel
  std::map<std::string, PlainValue> otherSettings;  // that scripts gave the renderer and this one does not have
  std::variant<std::string, std::pair<std::uint32_t, std::uint32_t>> renderer = std::string("default");
  std::vector<int> requirements{3};
  bool elementsActive = true;
};

// Kinds of load problems, each with its message; the host decides what they mean.
struct LoadProblem {
  enum class Kind { missingTexture, missingTexCoords, missingPlugin, missingXref } kind;
  std::string message;
};

struct Scene {
  std::string path;  // native, absolute
  std::vector<Node> nodes;
  std::vector<int> roots;
  std::vector<Mesh> meshes;
  std::vector<Material> materials;
  std::vector<Image> images;
  std::vector<Camera> cameras;
  std::vector<Light> lights;

  int frameRate = 30;
  int firstFrame = 0, lastFrame = 100;
  RenderSettings render;
  std::vector<ElementSettings> elements;
  std::vector<ViewportSettings> viewports;  // never empty after loading
  int activeViewport = 0;
  int lockedViewport = kNone;
  std::vector<std::string> xrefs, plugins;

  std::vector<LoadProblem> problems;
  std::vector<std::string> warnings;  // unknown keys and other things passed over
};

// Ticks of one frame.
inline int ticksPerFrame(const Scene& scene) { return kTicksPerSecond / scene.frameRate; }

}  // namespace standin::scene
