#include "standin/bindings/script_views.h"

#include <algorithm>

#include "hostkit/services/text.h"
#include "hostsdk/script_value.h"
#include "standin/bindings/script_node.h"
#include "standin/bindings/script_values.h"

namespace standin::bindings {
namespace {

using hostkit::script::HostKeywords;
using hostkit::script::HostObject;
using hostkit::script::HostOk;
using hostkit::script::HostValue;
using Arguments = std::vector<HostValue>;

class Viewports : public HostObject {
 public:
  explicit Viewports(host::Core& core) : core_(core) {}
  std::u16string className() const override { return u"Viewport"; }
  std::u16string printed() const override { return u"<struct:viewport>"; }
  const void* identity() const override { return &core_; }
  std::vector<std::u16string> propertyNames() const override { return {u"numViews", u"activeViewport"}; }
  std::vector<std::u16string> functionNames() const override {
    return {u"getCamera", u"setCamera", u"getType", u"setType", u"setLayout", u"resetAllViews"};
  }
  std::optional<HostValue> get(std::u16string_view name) override {
    if (name == u"numviews") return static_cast<std::int32_t>(scene().viewports.size());
    if (name == u"activeviewport") return scene().activeViewport + 1;
    return std::nullopt;
  }
  bool set(std::u16string_view name, const HostValue& value) override {
    if (name != u"activeviewport") return false;
    const std::int32_t number = asInteger(value, u"activeViewport");
    if (number < 1 || number > static_cast<std::int32_t>(scene().viewports.size()))
      throw hostsdk::RuntimeError(u"Viewport index is out of range: " +
                                  hostkit::services::toWide(std::to_string(number)));
    scene().activeViewport = number - 1;
    return true;
  }
  std::optional<HostValue> call(std::u16string_view name, const Arguments& arguments, const HostKeywords&) override {
    if (name == u"getcamera") return cameraNode();
    if (name == u"setcamera") return setCamera(arguments);
    if (name == u"gettype")
      return hostkit::script::HostName{active().camera.empty() ? u"view_persp_user" : u"view_camera"};
    if (name == u"settype" || name == u"setlayout" || name == u"resetallviews") return true;
    return std::nullopt;
  }

 private:
  scene::Scene& scene() { return core_.live().description(); }
  scene::ViewportSettings& active() { return scene().viewports[static_cast<std::size_t>(scene().activeViewport)]; }
  HostValue cameraNode() {
    const auto& nodes = scene().nodes;
    const auto found = std::find_if(nodes.begin(), nodes.end(), [&](const scene::Node& node) {
      return node.camera != scene::kNone && node.name == active().camera;
    });
    if (found == nodes.end()) return {};
    return scriptNode(core_, static_cast<int>(found - nodes.begin()));
  }
  HostValue setCamera(const Arguments& arguments) {
    const auto* node = arguments.size() == 1 ? std::get_if<std::shared_ptr<HostObject>>(&arguments[0]) : nullptr;
    if (!node || (*node)->superClassName() != u"camera")
      throw hostsdk::RuntimeError(u"viewport.setCamera requires a camera");
    active().camera = hostkit::services::toUtf8(asText((*node)->get(u"name").value_or(HostValue{}), u"name"));
    return true;
  }

  host::Core& core_;
};

class RenderDialog : public HostObject {
 public:
  std::u16string className() const override { return u"RenderSceneDialog"; }
  std::u16string printed() const override { return u"<struct:renderSceneDialog>"; }
  std::vector<std::u16string> functionNames() const override {
    return {u"open", u"close", u"update", u"commit", u"cancel", u"isOpen"};
  }
  std::optional<HostValue> get(std::u16string_view) override { return std::nullopt; }
  std::optional<HostValue> call(std::u16string_view name, const Arguments&, const HostKeywords&) override {
    if (name == u"isopen") return false;
    for (const char16_t* known : {u"open", u"close", u"update", u"commit", u"cancel"})
      if (name == known) return HostOk{};
    return std::nullopt;
  }
};

class RootNode : public HostObject {
 public:
  explicit RootNode(host::Core& core) : core_(core) {}
  std::u16string className() const override { return u"RootNode"; }
  std::u16string superClassName() const override { return u"node"; }
  std::u16string printed() const override { return u"<root node>"; }
  const void* identity() const override { return &core_; }
  std::vector<std::u16string> propertyNames() const override { return {u"name", u"children"}; }
  std::optional<HostValue> get(std::u16string_view name) override {
    if (name == u"name") return std::u16string(u"Scene Root");
    if (name != u"children") return std::nullopt;
    auto list = std::make_shared<hostkit::script::HostList>();
    for (const int root : core_.live().description().roots) list->items.emplace_back(scriptNode(core_, root));
    return list;
  }

 private:
  host::Core& core_;
};

class Material : public HostObject {
 public:
  explicit Material(const scene::Material& material) : material_(material), identity_(&material) {}
  std::u16string className() const override { return u"Physical_Material"; }
  std::u16string superClassName() const override { return u"material"; }
  std::u16string printed() const override { return hostkit::services::toWide(material_.name) + u":" + className(); }
  const void* identity() const override { return identity_; }
  std::vector<std::u16string> propertyNames() const override {
    return {u"name", u"base_color", u"metalness", u"roughness"};
  }
  std::optional<HostValue> get(std::u16string_view name) override {
    const scene::Vec4 c = material_.baseColor;
    if (name == u"name") return hostkit::services::toWide(material_.name);
    if (name == u"base_color") return hostkit::script::HostColor{c.x * 255, c.y * 255, c.z * 255, c.w * 255};
    if (name == u"metalness") return material_.metallic;
    if (name == u"roughness") return material_.roughness;
    return std::nullopt;
  }

 private:
  const scene::Material material_;  // a copy: scripts may keep it longer than the scene lives
  const void* identity_;
};

}  // namespace

std::shared_ptr<HostObject> scriptViewports(host::Core& core) { return std::make_shared<Viewports>(core); }
std::shared_ptr<HostObject> scriptRenderDialog() { return std::make_shared<RenderDialog>(); }
std::shared_ptr<HostObject> scriptRootNode(host::Core& core) { return std::make_shared<RootNode>(core); }

HostValue scriptMaterials(host::Core& core) {
  auto list = std::make_shared<hostkit::script::HostList>();
  for (const scene::Material& material : core.live().description().materials)
    list->items.emplace_back(std::make_shared<Material>(material));
  return list;
}

HostValue scriptMaterialOf(host::Core& core, const scene::Node& node) {
  const scene::Scene& scene = core.live().description();
  if (node.mesh == scene::kNone) return {};
  for (const scene::Primitive& part : scene.meshes[static_cast<std::size_t>(node.mesh)].primitives)
    if (part.material != scene::kNone)
      return std::make_shared<Material>(scene.materials[static_cast<std::size_t>(part.material)]);
  return {};
}

}  // namespace standin::bindings
