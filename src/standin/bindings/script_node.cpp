#include "standin/bindings/script_node.h"

#include <array>
#include <cmath>
#include <numbers>
#include <string_view>

#include "hostkit/bindings/table_object.h"
#include "hostkit/text/utf8.h"
#include "hostsdk/script_value.h"
#include "standin/bindings/script_scene.h"
#include "standin/scene/animation.h"

namespace standin::bindings {
namespace {

using hostkit::bindings::Arguments;
using hostkit::bindings::asBoolean;
using hostkit::bindings::asFloat;
using hostkit::bindings::asText;
using hostkit::bindings::Function;
using hostkit::bindings::Property;
using hostkit::script::HostValue;

class ScriptNode : public hostkit::bindings::TableObject<ScriptNode> {
 public:
  ScriptNode(host::Core& core, int index) : core_(core), live_(&core.live()), index_(index) {}

  std::u16string className() const override {
    if (!valid() || node().mesh != scene::kNone) return u"Editable_mesh";
    if (node().camera != scene::kNone) return u"Freecamera";
    if (node().light == scene::kNone) return u"Dummy";
    switch (light().kind) {
      case scene::Light::Kind::directional:
        return u"Directionallight";
      case scene::Light::Kind::spot:
        return u"freeSpot";
      case scene::Light::Kind::point:
        break;
    }
    return u"Omnilight";
  }
  std::u16string superClassName() const override {
    if (!valid() || node().mesh != scene::kNone) return u"GeometryClass";
    if (node().camera != scene::kNone) return u"camera";
    return node().light != scene::kNone ? u"light" : u"helper";
  }
  std::u16string printed() const override {
    if (!valid()) return u"<Deleted scene node>";
    const scene::Vec3 at = position();
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), " @ [%f,%f,%f]", static_cast<double>(at.x), static_cast<double>(at.y),
                  static_cast<double>(at.z));
    return u"$" + className() + u":" + hostkit::fromUtf8(node().name) + hostkit::fromUtf8(text.data());
  }
  const void* identity() const override { return valid() ? static_cast<const void*>(live_->node(index_)) : this; }

  static std::span<const Property<ScriptNode>> properties();
  static std::span<const Function<ScriptNode>> functions();
  // Its functions are reached through the global ones of their names alone, not as members.
  std::vector<std::u16string> functionNames() const override { return {}; }
  // A function that is called with another count of arguments is none of the node's.
  std::optional<HostValue> call(std::u16string_view name, const Arguments& arguments,
                                const hostkit::script::HostKeywords& keywords) override;

  // For the tables.
  bool valid() const { return &core_.live() == live_; }
  host::Core& core() { return core_; }
  scene::Node& node() { return live_->description().nodes[static_cast<std::size_t>(index_)]; }
  const scene::Node& node() const { return live_->description().nodes[static_cast<std::size_t>(index_)]; }
  scene::Camera& camera() { return live_->description().cameras[static_cast<std::size_t>(node().camera)]; }
  scene::Light& light() { return live_->description().lights[static_cast<std::size_t>(node().light)]; }
  const scene::Light& light() const { return live_->description().lights[static_cast<std::size_t>(node().light)]; }
  scene::Transform world() const { return scene::worldTransform(live_->description(), index_, core_.GetTime()); }
  scene::Vec3 position() const {
    const scene::Transform t = world();
    return {t.m[3], t.m[7], t.m[11]};
  }

  // Puts the node's placement at this time into its three parts and ends the animation of one of them.
  void settle(scene::Track::Path path);
  void setPosition(scene::Vec3 at) {
    scene::Transform parent;
    if (node().parent != scene::kNone)
      parent = scene::worldTransform(live_->description(), node().parent, core_.GetTime());
    settle(scene::Track::Path::translation);
    node().translation = scene::transformPoint(scene::inverse(parent), at);
  }

 private:
  host::Core& core_;
  host::LiveScene* live_;
  int index_;
};

// The parts of an affine transform; shear is lost.
void decompose(const scene::Transform& t, scene::Node& node) {
  const auto column = [&](std::size_t i) { return scene::Vec3{t.m[i], t.m[4 + i], t.m[8 + i]}; };
  node.translation = {t.m[3], t.m[7], t.m[11]};
  node.scale = {scene::length(column(0)), scene::length(column(1)), scene::length(column(2))};
  const scene::Vec3 x = scene::normalize(column(0)), y = scene::normalize(column(1)), z = scene::normalize(column(2));
  const float trace = x.x + y.y + z.z;
  scene::Quat q;
  if (trace > 0) {
    const float s = std::sqrt(trace + 1) * 2;
    q = {(y.z - z.y) / s, (z.x - x.z) / s, (x.y - y.x) / s, s / 4};
  } else if (x.x > y.y && x.x > z.z) {
    const float s = std::sqrt(1 + x.x - y.y - z.z) * 2;
    q = {s / 4, (y.x + x.y) / s, (z.x + x.z) / s, (y.z - z.y) / s};
  } else if (y.y > z.z) {
    const float s = std::sqrt(1 + y.y - x.x - z.z) * 2;
    q = {(y.x + x.y) / s, s / 4, (z.y + y.z) / s, (z.x - x.z) / s};
  } else {
    const float s = std::sqrt(1 + z.z - x.x - y.y) * 2;
    q = {(z.x + x.z) / s, (z.y + y.z) / s, s / 4, (x.y - y.x) / s};
  }
  node.rotation = q;
}

void ScriptNode::settle(scene::Track::Path path) {
  const scene::Transform local = scene::localTransform(node(), core_.GetTime());
  scene::Node now;
  decompose(local, now);
  if (node().matrix) {
    node().matrix.reset();
    node().translation = now.translation;
    node().rotation = now.rotation;
    node().scale = now.scale;
  }
  std::erase_if(node().tracks, [&](const scene::Track& track) { return track.path == path; });
}

float degrees(float radians) { return radians * 180.0F / std::numbers::pi_v<float>; }
float radians(float degrees) { return degrees * std::numbers::pi_v<float> / 180.0F; }

// The shape that a camera's field of view is measured for.
double aspectOf(ScriptNode& n) {
  const scene::RenderSettings& render = n.core().live().description().render;
  return static_cast<double>(render.width) * render.pixelAspect / render.height;
}

HostValue nodeOrUndefined(host::Core& core, int index) {
  return index == scene::kNone ? HostValue{} : HostValue{scriptNode(core, index)};
}

// What a property applies to. A node of a scene that was closed has none.
bool any(const ScriptNode& n) { return n.valid(); }
bool isCamera(const ScriptNode& n) { return n.valid() && n.node().camera != scene::kNone; }
bool isLight(const ScriptNode& n) { return n.valid() && n.node().light != scene::kNone; }

scene::Vec3 pointOf(const HostValue& value, const char16_t* what) {
  const hostkit::script::HostPoint3 point = hostkit::bindings::asPoint(value, what);
  return {point.x, point.y, point.z};
}

HostValue getPosition(ScriptNode& n) {
  const scene::Vec3 at = n.position();
  return hostkit::script::HostPoint3{at.x, at.y, at.z};
}
void setPosition(ScriptNode& n, const HostValue& value) { n.setPosition(pointOf(value, u"position")); }

HostValue getColor(ScriptNode& n) {
  const scene::Vec3 c = n.light().color;
  return hostkit::script::HostColor{c.x * 255, c.y * 255, c.z * 255, 255};
}
void setColor(ScriptNode& n, const HostValue& value) {
  const hostkit::script::HostColor color = hostkit::bindings::asColor(value, u"color");
  n.light().color = {color.r / 255, color.g / 255, color.b / 255};
}
HostValue getMultiplier(ScriptNode& n) { return n.light().intensity; }
void setMultiplier(ScriptNode& n, const HostValue& value) { n.light().intensity = asFloat(value, u"multiplier"); }

HostValue getLightOn(ScriptNode& n) { return n.light().on; }
void setLightOn(ScriptNode& n, const HostValue& value) { n.light().on = asBoolean(value, u"on"); }

HostValue getScale(ScriptNode& n) {
  scene::Node now;
  decompose(scene::localTransform(n.node(), n.core().GetTime()), now);
  return hostkit::script::HostPoint3{now.scale.x, now.scale.y, now.scale.z};
}
void setScale(ScriptNode& n, const HostValue& value) {
  n.settle(scene::Track::Path::scale);
  n.node().scale = pointOf(value, u"scale");
}
HostValue getRotation(ScriptNode& n) {
  scene::Node now;
  decompose(scene::localTransform(n.node(), n.core().GetTime()), now);
  return hostkit::script::HostQuat{now.rotation.x, now.rotation.y, now.rotation.z, now.rotation.w};
}
void setRotation(ScriptNode& n, const HostValue& value) {
  const hostkit::script::HostQuat q = hostkit::bindings::asQuat(value, u"rotation");
  n.settle(scene::Track::Path::rotation);
  n.node().rotation = {q.x, q.y, q.z, q.w};
}
HostValue getTransform(ScriptNode& n) {
  const auto m = n.world().m;
  return hostkit::script::HostMatrix3{{m[0], m[4], m[8], m[1], m[5], m[9], m[2], m[6], m[10], m[3], m[7], m[11]}};
}
HostValue getFov(ScriptNode& n) {
  return degrees(static_cast<float>(2 * std::atan(std::tan(n.camera().yfov / 2.0) * aspectOf(n))));
}
void setFov(ScriptNode& n, const HostValue& value) {
  const float fov = asFloat(value, u"fov");
  if (!(fov > 0 && fov < 180)) throw hostsdk::RuntimeError(u"fov requires a number of degrees above 0 and below 180");
  n.camera().yfov = static_cast<float>(2 * std::atan(std::tan(radians(fov) / 2.0) / aspectOf(n)));
}

// User properties, which the script language reads and writes through the global functions of these names.
HostValue getUserProp(ScriptNode& n, const Arguments& arguments) {
  const auto& properties = n.node().userProperties;
  const auto found = properties.find(hostkit::toUtf8(asText(arguments[0], u"getUserProp")));
  return found == properties.end() ? HostValue{} : hostkit::bindings::ofPlain(found->second);
}
HostValue setUserProp(ScriptNode& n, const Arguments& arguments) {
  n.node().userProperties.insert_or_assign(hostkit::toUtf8(asText(arguments[0], u"setUserProp")),
                                           hostkit::bindings::asPlain(arguments[1], u"setUserProp"));
  return hostkit::script::HostOk{};
}

constexpr Property<ScriptNode> kProperties[] = {
    {u"name", [](ScriptNode& n) -> HostValue { return hostkit::fromUtf8(n.node().name); },
     [](ScriptNode& n, const HostValue& v) { n.node().name = hostkit::toUtf8(asText(v, u"name")); }, any},
    {u"parent", [](ScriptNode& n) { return nodeOrUndefined(n.core(), n.node().parent); }, nullptr, any},
    {u"children", [](ScriptNode& n) { return scriptNodeList(n.core(), n.node().children); }, nullptr, any},
    {u"position", getPosition, setPosition, any},
    {u"pos", getPosition, setPosition, any},
    {u"rotation", getRotation, setRotation, any},
    {u"scale", getScale, setScale, any},
    {u"transform", getTransform, nullptr, any},
    {u"isHidden", [](ScriptNode& n) -> HostValue { return !n.node().visible; },
     [](ScriptNode& n, const HostValue& v) { n.node().visible = !asBoolean(v, u"isHidden"); }, any},
    {u"isSelected", [](ScriptNode& n) -> HostValue { return n.node().selected; },
     [](ScriptNode& n, const HostValue& v) { n.node().selected = asBoolean(v, u"isSelected"); }, any},
    {u"visibility", [](ScriptNode& n) -> HostValue { return n.node().visible; },
     [](ScriptNode& n, const HostValue& v) { n.node().visible = asBoolean(v, u"visibility"); }, any},
    {u"renderable", [](ScriptNode& n) -> HostValue { return n.node().visible; },
     [](ScriptNode& n, const HostValue& v) { n.node().visible = asBoolean(v, u"renderable"); }, any},
    {u"material", [](ScriptNode& n) { return scriptMaterialOf(n.core(), n.node()); }, nullptr, any},
    {u"fov", getFov, setFov, isCamera},
    {u"on", getLightOn, setLightOn, isLight},
    {u"enabled", getLightOn, setLightOn, isLight},
    {u"multiplier", getMultiplier, setMultiplier, isLight},
    {u"intensity", getMultiplier, setMultiplier, isLight},
    {u"color", getColor, setColor, isLight},
    {u"rgb", getColor, setColor, isLight},
};

constexpr Function<ScriptNode> kFunctions[] = {
    {u"getUserProp", 1, getUserProp},
    {u"setUserProp", 2, setUserProp},
};

std::span<const Property<ScriptNode>> ScriptNode::properties() { return kProperties; }
std::span<const Function<ScriptNode>> ScriptNode::functions() { return kFunctions; }

std::optional<HostValue> ScriptNode::call(std::u16string_view name, const Arguments& arguments,
                                          const hostkit::script::HostKeywords& keywords) {
  const auto* function = hostkit::bindings::find(functions(), name);
  if (!valid() || !function || arguments.size() != static_cast<std::size_t>(function->count)) return std::nullopt;
  return TableObject::call(name, arguments, keywords);
}

}  // namespace

std::shared_ptr<hostkit::script::HostObject> scriptNode(host::Core& core, int index) {
  return std::make_shared<ScriptNode>(core, index);
}

std::vector<std::shared_ptr<hostkit::script::HostObject>> scriptNodes(host::Core& core) {
  const auto count = core.live().description().nodes.size();
  std::vector<std::shared_ptr<hostkit::script::HostObject>> nodes;
  nodes.reserve(count);
  for (std::size_t i = 0; i < count; ++i) nodes.push_back(scriptNode(core, static_cast<int>(i)));
  return nodes;
}

HostValue scriptNodeList(host::Core& core, const std::vector<int>& indices) {
  auto list = std::make_shared<hostkit::script::HostList>();
  for (const int index : indices) list->items.emplace_back(scriptNode(core, index));
  return list;
}

}  // namespace standin::bindings
