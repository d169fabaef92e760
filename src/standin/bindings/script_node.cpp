#include "standin/bindings/script_node.h"

#include <array>
#include <cmath>
#include <numbers>
#include <string_view>

#include "hostkit/services/text.h"
#include "hostsdk/script_value.h"
#include "standin/bindings/script_values.h"
#include "standin/bindings/script_views.h"
#include "standin/scene/animation.h"

namespace standin::bindings {
namespace {

using hostkit::script::HostValue;

class ScriptNode;
using Getter = HostValue (*)(ScriptNode&);
using Setter = void (*)(ScriptNode&, const HostValue&);
struct Property {
  const char16_t* name;  // lower case
  Getter get;
  Setter set;  // null: read-only
  bool (*applies)(const scene::Node&);
};

class ScriptNode : public hostkit::script::HostObject {
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
    return u"$" + className() + u":" + hostkit::services::toWide(node().name) + hostkit::services::toWide(text.data());
  }
  const void* identity() const override { return valid() ? static_cast<const void*>(live_->node(index_)) : this; }

  std::vector<std::u16string> propertyNames() const override;
  std::optional<HostValue> get(std::u16string_view name) override;
  bool set(std::u16string_view name, const HostValue& value) override;
  std::optional<HostValue> call(std::u16string_view name, const std::vector<HostValue>& arguments,
                                const hostkit::script::HostKeywords& keywords) override;

  // For the properties.
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
  bool valid() const { return &core_.live() == live_; }
  const Property* find(std::u16string_view name) const;

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

HostValue children(ScriptNode& n) {
  auto list = std::make_shared<hostkit::script::HostList>();
  for (const int child : n.node().children) list->items.emplace_back(scriptNode(n.core(), child));
  return list;
}

bool any(const scene::Node&) { return true; }
bool isCamera(const scene::Node& node) { return node.camera != scene::kNone; }
bool isLight(const scene::Node& node) { return node.light != scene::kNone; }

HostValue getPosition(ScriptNode& n) {
  const scene::Vec3 at = n.position();
  return hostkit::script::HostPoint3{at.x, at.y, at.z};
}
void setPosition(ScriptNode& n, const HostValue& value) { n.setPosition(asPoint(value, u"position")); }

HostValue getColor(ScriptNode& n) {
  const scene::Vec3 c = n.light().color;
  return hostkit::script::HostColor{c.x * 255, c.y * 255, c.z * 255, 255};
}
void setColor(ScriptNode& n, const HostValue& value) {
  const hostkit::script::HostColor color = asColor(value, u"color");
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
  n.node().scale = asPoint(value, u"scale");
}
HostValue getRotation(ScriptNode& n) {
  scene::Node now;
  decompose(scene::localTransform(n.node(), n.core().GetTime()), now);
  return hostkit::script::HostQuat{now.rotation.x, now.rotation.y, now.rotation.z, now.rotation.w};
}
void setRotation(ScriptNode& n, const HostValue& value) {
  const auto* q = std::get_if<hostkit::script::HostQuat>(&value);
  if (!q) throw hostsdk::RuntimeError(u"rotation requires Quat");
  n.settle(scene::Track::Path::rotation);
  n.node().rotation = {q->x, q->y, q->z, q->w};
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

const std::array kProperties{
    Property{u"name", [](ScriptNode& n) -> HostValue { return hostkit::services::toWide(n.node().name); },
             [](ScriptNode& n, const HostValue& v) { n.node().name = hostkit::services::toUtf8(asText(v, u"name")); },
             any},
    Property{u"parent", [](ScriptNode& n) { return nodeOrUndefined(n.core(), n.node().parent); }, nullptr, any},
    Property{u"children", children, nullptr, any},
    Property{u"position", getPosition, setPosition, any},
    Property{u"pos", getPosition, setPosition, any},
    Property{u"rotation", getRotation, setRotation, any},
    Property{u"scale", getScale, setScale, any},
    Property{u"transform", getTransform, nullptr, any},
    Property{u"ishidden", [](ScriptNode& n) -> HostValue { return !n.node().visible; },
             [](ScriptNode& n, const HostValue& v) { n.node().visible = !asBoolean(v, u"isHidden"); }, any},
    Property{u"isselected", [](ScriptNode& n) -> HostValue { return n.node().selected; },
             [](ScriptNode& n, const HostValue& v) { n.node().selected = asBoolean(v, u"isSelected"); }, any},
    Property{u"visibility", [](ScriptNode& n) -> HostValue { return n.node().visible; },
             [](ScriptNode& n, const HostValue& v) { n.node().visible = asBoolean(v, u"visibility"); }, any},
    Property{u"renderable", [](ScriptNode& n) -> HostValue { return n.node().visible; },
             [](ScriptNode& n, const HostValue& v) { n.node().visible = asBoolean(v, u"renderable"); }, any},
    Property{u"material", [](ScriptNode& n) { return scriptMaterialOf(n.core(), n.node()); }, nullptr, any},
    Property{u"fov", getFov, setFov, isCamera},
    Property{u"on", getLightOn, setLightOn, isLight},
    Property{u"enabled", getLightOn, setLightOn, isLight},
    Property{u"multiplier", getMultiplier, setMultiplier, isLight},
    Property{u"intensity", getMultiplier, setMultiplier, isLight},
    Property{u"color", getColor, setColor, isLight},
    Property{u"rgb", getColor, setColor, isLight},
};

const Property* ScriptNode::find(std::u16string_view name) const {
  if (!valid()) return nullptr;
  for (const Property& property : kProperties)
    if (name == property.name && property.applies(node())) return &property;
  return nullptr;
}

std::vector<std::u16string> ScriptNode::propertyNames() const {
  std::vector<std::u16string> names;
  for (const Property& property : kProperties)
    if (valid() && property.applies(node())) names.emplace_back(property.name);
  return names;
}

std::optional<HostValue> ScriptNode::get(std::u16string_view name) {
  const Property* property = find(name);
  if (!property) return std::nullopt;
  return property->get(*this);
}

bool ScriptNode::set(std::u16string_view name, const HostValue& value) {
  const Property* property = find(name);
  if (!property || !property->set) return false;
  property->set(*this, value);
  return true;
}

// User properties: getUserProp and setUserProp of the script language.
std::optional<HostValue> ScriptNode::call(std::u16string_view name, const std::vector<HostValue>& arguments,
                                          const hostkit::script::HostKeywords&) {
  if (!valid()) return std::nullopt;
  auto& properties = node().userProperties;
  if (name == u"getuserprop" && arguments.size() == 1) {
    const auto found = properties.find(hostkit::services::toUtf8(asText(arguments[0], u"getUserProp")));
    return found == properties.end() ? HostValue{} : ofPlain(found->second);
  }
  if (name == u"setuserprop" && arguments.size() == 2) {
    properties.insert_or_assign(hostkit::services::toUtf8(asText(arguments[0], u"setUserProp")),
                                asPlain(arguments[1], u"setUserProp"));
    return hostkit::script::HostOk{};
  }
  return std::nullopt;
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

}  // namespace standin::bindings
