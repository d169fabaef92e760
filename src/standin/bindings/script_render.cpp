#include "standin/bindings/script_render.h"

#include <algorithm>
#include <variant>

#include "hostkit/text/utf8.h"
#include "hostsdk/script_value.h"
#include "standin/bindings/scene_object.h"
#include "standin/bindings/script_node.h"

namespace standin::bindings {
namespace {

using hostkit::fromUtf8;
using hostkit::toUtf8;
using hostkit::bindings::asBoolean;
using hostkit::bindings::asInteger;
using hostkit::bindings::asText;
using hostkit::bindings::kAnyCount;

// `samples` acts. Scripts that are written for other renderers may set what those have: it is kept and read back.
class ActiveRenderer : public hostkit::bindings::TableObject<ActiveRenderer> {
 public:
  explicit ActiveRenderer(host::Core& core) : core_(core) {}
  std::u16string className() const override {
    const auto* name = std::get_if<std::string>(&settings().renderer);
    if (!name) return u"Renderer";
    return *name == "default" ? u"Default_Scanline_Renderer" : u"Renderer_" + fromUtf8(*name);
  }
  std::u16string superClassName() const override { return u"RendererClass"; }
  std::u16string printed() const override { return className() + u":" + className(); }
  const void* identity() const override { return &core_; }

  static std::span<const Property<ActiveRenderer>> properties() {
    static constexpr Property<ActiveRenderer> kTable[] = {
        {u"samples", [](ActiveRenderer& r) -> HostValue { return r.settings().samples; },
         [](ActiveRenderer& r, const HostValue& v) { r.settings().samples = asInteger(v, u"samples", 1, 65536); }},
    };
    return kTable;
  }
  std::optional<HostValue> get(std::u16string_view name) override {
    if (auto value = TableObject::get(name)) return value;
    const auto found = settings().otherSettings.find(toUtf8(name));
    if (found == settings().otherSettings.end()) return std::nullopt;
    return hostkit::bindings::ofPlain(found->second);
  }
  bool set(std::u16string_view name, const HostValue& value) override {
    if (!TableObject::set(name, value))
      settings().otherSettings.insert_or_assign(toUtf8(name), hostkit::bindings::asPlain(value, u"A renderer setting"));
    return true;
  }

 private:
  scene::RenderSettings& settings() const { return core_.live().description().render; }
  host::Core& core_;
};

class Renderers : public SceneObject<Renderers> {
 public:
  using SceneObject::SceneObject;
  static constexpr const char16_t* kClassName = u"Renderers";
  static constexpr const char16_t* kPrinted = u"<Renderers>";

  // One renderer does everything here.
  static std::span<const Property<Renderers>> properties() {
    constexpr auto active = [](Renderers& r) -> HostValue { return std::make_shared<ActiveRenderer>(r.core()); };
    static constexpr Property<Renderers> kTable[] = {
        {u"current", active}, {u"production", active}, {u"medit", active}, {u"activeShade", active}};
    return kTable;
  }
};

class Element : public hostkit::bindings::TableObject<Element> {
 public:
  Element(host::Core& core, int index) : core_(core), live_(&core.live()), index_(static_cast<std::size_t>(index)) {}
  std::u16string className() const override { return u"RenderElement"; }
  std::u16string superClassName() const override { return u"RenderElement"; }
  std::u16string printed() const override { return u"RenderElement:" + fromUtf8(settings().name); }
  const void* identity() const override { return &settings(); }

  static std::span<const Property<Element>> properties() {
    static constexpr Property<Element> kTable[] = {
        {u"elementName", [](Element& e) -> HostValue { return fromUtf8(e.settings().name); },
         [](Element& e, const HostValue& v) { e.settings().name = toUtf8(asText(v, u"elementName")); }},
        {u"enabled", [](Element& e) -> HostValue { return e.settings().enabled; },
         [](Element& e, const HostValue& v) { e.settings().enabled = asBoolean(v, u"enabled"); }},
    };
    return kTable;
  }

 private:
  scene::ElementSettings& settings() const {
    if (&core_.live() != live_) throw hostsdk::RuntimeError(u"The render element belongs to a scene that was closed");
    return live_->description().elements[index_];
  }
  host::Core& core_;
  host::LiveScene* live_;
  std::size_t index_;
};

class ElementManager : public SceneObject<ElementManager> {
 public:
  using SceneObject::SceneObject;
  static constexpr const char16_t* kClassName = u"RenderElementMgr";
  static constexpr const char16_t* kPrinted = u"<RenderElementMgr>";

  static std::span<const Function<ElementManager>> functions() {
    using E = ElementManager;
    static constexpr Function<E> kTable[] = {
        {u"NumRenderElements", 0,
         [](E& e, const Arguments&) -> HostValue { return e.core().live().NumRenderElements(); }},
        {u"GetRenderElement", 1,
         [](E& e, const Arguments& a) -> HostValue { return std::make_shared<Element>(e.core(), e.index(a[0])); }},
        {u"GetRenderElementFilename", 1,
         [](E& e, const Arguments& a) -> HostValue { return e.output(a[0]).info.Name(); }},
        {u"SetRenderElementFilename", 2,
         [](E& e, const Arguments& a) -> HostValue {
           e.output(a[0]).info.SetName(asText(a[1], u"SetRenderElementFilename"));
           return true;
         }},
        {u"GetElementsActive", 0, [](E& e, const Arguments&) -> HostValue { return e.core().live().ElementsActive(); }},
        {u"SetElementsActive", 1,
         [](E& e, const Arguments& a) -> HostValue {
           e.scene().render.elementsActive = asBoolean(a[0], u"SetElementsActive");
           return HostOk{};
         }},
    };
    return kTable;
  }

 private:
  int index(const HostValue& value) const {
    const std::int32_t i = asInteger(value, u"Render element index");
    if (i < 0 || i >= core().live().NumRenderElements()) hostkit::bindings::refuseIndex(u"Render element index", i);
    return i;
  }
  hostsdk::ElementOutput& output(const HostValue& number) const { return core().live().elementOutput(index(number)); }
};

class MaxOps : public SceneObject<MaxOps> {
 public:
  using SceneObject::SceneObject;
  static constexpr const char16_t* kClassName = u"MaxOps";
  static constexpr const char16_t* kPrinted = u"<Interface:maxOps>";

  static std::span<const Function<MaxOps>> functions() {
    static constexpr Function<MaxOps> kTable[] = {
        {u"GetCurRenderElementMgr", 0,
         [](MaxOps& m, const Arguments&) -> HostValue { return std::make_shared<ElementManager>(m.core()); }},
    };
    return kTable;
  }
};

class Viewports : public SceneObject<Viewports> {
 public:
  using SceneObject::SceneObject;
  static constexpr const char16_t* kClassName = u"Viewport";
  static constexpr const char16_t* kPrinted = u"<struct:viewport>";

  static std::span<const Property<Viewports>> properties() {
    static constexpr Property<Viewports> kTable[] = {
        {u"numViews", [](Viewports& v) -> HostValue { return v.count(); }},
        {u"activeViewport", [](Viewports& v) -> HostValue { return v.scene().activeViewport + 1; },
         [](Viewports& v, const HostValue& value) { v.activate(asInteger(value, u"activeViewport")); }},
    };
    return kTable;
  }
  static std::span<const Function<Viewports>> functions() {
    constexpr auto accept = [](Viewports&, const Arguments&) -> HostValue { return true; };
    static constexpr Function<Viewports> kTable[] = {
        {u"getCamera", 0, [](Viewports& v, const Arguments&) { return v.cameraNode(); }},
        {u"setCamera", 1, [](Viewports& v, const Arguments& a) { return v.setCamera(a); }},
        {u"getType", 0,
         [](Viewports& v, const Arguments&) -> HostValue {
           return hostkit::script::HostName{v.active().camera.empty() ? u"view_persp_user" : u"view_camera"};
         }},
        {u"setType", kAnyCount, accept},
        {u"setLayout", kAnyCount, accept},
        {u"resetAllViews", kAnyCount, accept},
    };
    return kTable;
  }

 private:
  std::int32_t count() const { return static_cast<std::int32_t>(scene().viewports.size()); }
  scene::ViewportSettings& active() const {
    return scene().viewports[static_cast<std::size_t>(scene().activeViewport)];
  }
  void activate(std::int32_t number) {
    if (number < 1 || number > count()) hostkit::bindings::refuseIndex(u"Viewport index", number);
    scene().activeViewport = number - 1;
  }
  HostValue cameraNode() const {
    const auto& nodes = scene().nodes;
    const auto found = std::find_if(nodes.begin(), nodes.end(), [&](const scene::Node& node) {
      return node.camera != scene::kNone && node.name == active().camera;
    });
    if (found == nodes.end()) return {};
    return scriptNode(core(), static_cast<int>(found - nodes.begin()));
  }
  HostValue setCamera(const Arguments& arguments) {
    const auto* node = std::get_if<std::shared_ptr<HostObject>>(&arguments[0]);
    if (!node || (*node)->superClassName() != u"camera")
      throw hostkit::script::WrongValue{u"viewport.setCamera", u"a camera", arguments[0]};
    active().camera = toUtf8(asText((*node)->get(u"name").value_or(HostValue{}), u"name"));
    return true;
  }
};

class RenderDialog : public SceneObject<RenderDialog> {
 public:
  using SceneObject::SceneObject;
  static constexpr const char16_t* kClassName = u"RenderSceneDialog";
  static constexpr const char16_t* kPrinted = u"<struct:renderSceneDialog>";
  const void* identity() const override { return this; }

  static std::span<const Function<RenderDialog>> functions() {
    constexpr auto nothing = [](RenderDialog&, const Arguments&) -> HostValue { return HostOk{}; };
    static constexpr Function<RenderDialog> kTable[] = {
        {u"open", kAnyCount, nothing},
        {u"close", kAnyCount, nothing},
        {u"update", kAnyCount, nothing},
        {u"commit", kAnyCount, nothing},
        {u"cancel", kAnyCount, nothing},
        {u"isOpen", kAnyCount, [](RenderDialog&, const Arguments&) -> HostValue { return false; }},
    };
    return kTable;
  }
};

}  // namespace

std::shared_ptr<HostObject> scriptRenderers(host::Core& core) { return std::make_shared<Renderers>(core); }
std::shared_ptr<HostObject> scriptMaxOps(host::Core& core) { return std::make_shared<MaxOps>(core); }
std::shared_ptr<HostObject> scriptViewports(host::Core& core) { return std::make_shared<Viewports>(core); }
std::shared_ptr<HostObject> scriptRenderDialog(host::Core& core) { return std::make_shared<RenderDialog>(core); }

}  // namespace standin::bindings
