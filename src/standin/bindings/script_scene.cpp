#include "standin/bindings/script_scene.h"

#include <algorithm>

#include "hostkit/text/utf8.h"
#include "hostsdk/script_value.h"
#include "standin/bindings/scene_object.h"
#include "standin/bindings/script_node.h"

namespace standin::bindings {
namespace {

using hostkit::bindings::asBoolean;
using hostkit::bindings::asInteger;
using hostkit::bindings::asText;

constexpr const char16_t* kOnlyLayer = u"0";

class Layer : public SceneObject<Layer> {
 public:
  using SceneObject::SceneObject;
  static constexpr const char16_t* kClassName = u"LayerProperties";
  static constexpr const char16_t* kPrinted = u"<LayerProperties:0>";

  static std::span<const Property<Layer>> properties() {
    static constexpr Property<Layer> kTable[] = {
        {u"name", [](Layer&) -> HostValue { return std::u16string(kOnlyLayer); }},
        {u"on", [](Layer& l) -> HostValue { return l.isShown(); },
         [](Layer& l, const HostValue& v) { l.show(asBoolean(v, u"on")); }},
        {u"isHidden", [](Layer& l) -> HostValue { return !l.isShown(); },
         [](Layer& l, const HostValue& v) { l.show(!asBoolean(v, u"isHidden")); }},
        {u"current", [](Layer&) -> HostValue { return true; }},
    };
    return kTable;
  }

 private:
  bool isShown() const {
    const auto& nodes = scene().nodes;
    return nodes.empty() ||
           std::any_of(nodes.begin(), nodes.end(), [](const scene::Node& node) { return node.visible; });
  }
  void show(bool visible) {
    for (scene::Node& node : scene().nodes) node.visible = visible;
  }
};

class LayerManager : public SceneObject<LayerManager> {
 public:
  using SceneObject::SceneObject;
  static constexpr const char16_t* kClassName = u"LayerManager";
  static constexpr const char16_t* kPrinted = u"<Interface:LayerManager>";

  static std::span<const Property<LayerManager>> properties() {
    static constexpr Property<LayerManager> kTable[] = {
        {u"count", [](LayerManager&) -> HostValue { return 1; }},
        {u"current", [](LayerManager& m) -> HostValue { return std::make_shared<Layer>(m.core()); }},
    };
    return kTable;
  }
  static std::span<const Function<LayerManager>> functions() {
    static constexpr Function<LayerManager> kTable[] = {
        {u"getLayer", 1,
         [](LayerManager& m, const Arguments& a) { return m.layerIf(asInteger(a[0], u"getLayer") == 0); }},
        {u"getLayerFromName", 1,
         [](LayerManager& m, const Arguments& a) {
           return m.layerIf(asText(a[0], u"getLayerFromName") == kOnlyLayer);
         }},
    };
    return kTable;
  }

 private:
  HostValue layerIf(bool isOnly) const { return isOnly ? HostValue(std::make_shared<Layer>(core())) : HostValue(); }
};

class RootNode : public SceneObject<RootNode> {
 public:
  using SceneObject::SceneObject;
  static constexpr const char16_t* kClassName = u"RootNode";
  static constexpr const char16_t* kPrinted = u"<root node>";
  std::u16string superClassName() const override { return u"node"; }

  static std::span<const Property<RootNode>> properties() {
    static constexpr Property<RootNode> kTable[] = {
        {u"name", [](RootNode&) -> HostValue { return std::u16string(u"Scene Root"); }},
        {u"children", [](RootNode& r) { return scriptNodeList(r.core(), r.scene().roots); }},
    };
    return kTable;
  }
};

class Material : public hostkit::bindings::TableObject<Material> {
 public:
  explicit Material(const scene::Material& material) : material_(material), identity_(&material) {}
  std::u16string className() const override { return u"Physical_Material"; }
  std::u16string superClassName() const override { return u"material"; }
  std::u16string printed() const override { return hostkit::fromUtf8(material_.name) + u":" + className(); }
  const void* identity() const override { return identity_; }

  static std::span<const Property<Material>> properties() {
    static constexpr Property<Material> kTable[] = {
        {u"name", [](Material& m) -> HostValue { return hostkit::fromUtf8(m.material_.name); }},
        {u"base_color",
         [](Material& m) -> HostValue {
           const scene::Vec4 c = m.material_.baseColor;
           return hostkit::script::HostColor{c.x * 255, c.y * 255, c.z * 255, c.w * 255};
         }},
        {u"metalness", [](Material& m) -> HostValue { return m.material_.metallic; }},
        {u"roughness", [](Material& m) -> HostValue { return m.material_.roughness; }},
    };
    return kTable;
  }

 private:
  const scene::Material material_;  // a copy: scripts may keep it longer than the scene lives
  const void* identity_;
};

}  // namespace

std::shared_ptr<HostObject> scriptLayers(host::Core& core) { return std::make_shared<LayerManager>(core); }
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
