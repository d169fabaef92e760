#include "standin/bindings/script_render.h"

#include <variant>

#include "hostkit/services/text.h"
#include "hostsdk/script_value.h"
#include "platform/files.h"
#include "standin/bindings/script_values.h"

namespace standin::bindings {
namespace {

using hostkit::script::HostKeywords;
using hostkit::script::HostObject;
using hostkit::script::HostValue;
using Arguments = std::vector<HostValue>;

const HostValue& argument(const Arguments& arguments, std::size_t index, const char16_t* function, std::size_t wanted) {
  if (arguments.size() != wanted)
    throw hostsdk::RuntimeError(std::u16string(u"Argument count error: ") + function + u" wanted " +
                                hostkit::services::toWide(std::to_string(wanted)) + u", got " +
                                hostkit::services::toWide(std::to_string(arguments.size())));
  return arguments[index];
}

// `samples` acts. Scripts that are written for other renderers may set what those have: it is kept and read back.
class CurrentRenderer : public HostObject {
 public:
  explicit CurrentRenderer(host::Core& core) : core_(core) {}
  std::u16string className() const override {
    const auto& renderer = core_.live().description().render.renderer;
    const auto* name = std::get_if<std::string>(&renderer);
    if (!name) return u"Renderer";
    return *name == "default" ? u"Default_Scanline_Renderer" : u"Renderer_" + hostkit::services::toWide(*name);
  }
  std::u16string superClassName() const override { return u"RendererClass"; }
  std::u16string printed() const override { return className() + u":" + className(); }
  const void* identity() const override { return &core_; }
  std::vector<std::u16string> propertyNames() const override { return {u"samples"}; }
  std::optional<HostValue> get(std::u16string_view name) override {
    if (name == u"samples") return core_.live().description().render.samples;
    const auto& others = core_.live().description().render.otherSettings;
    const auto found = others.find(hostkit::services::toUtf8(name));
    if (found == others.end()) return std::nullopt;
    return ofPlain(found->second);
  }
  bool set(std::u16string_view name, const HostValue& value) override {
    if (name != u"samples") {
      core_.live().description().render.otherSettings.insert_or_assign(hostkit::services::toUtf8(name),
                                                                       asPlain(value, u"A renderer setting"));
      return true;
    }
    const std::int32_t samples = asInteger(value, u"samples");
    if (samples < 1 || samples > 65536) throw hostsdk::RuntimeError(u"samples requires an Integer from 1 to 65536");
    core_.live().description().render.samples = samples;
    return true;
  }

 private:
  host::Core& core_;
};

class Renderers : public HostObject {
 public:
  explicit Renderers(host::Core& core) : core_(core) {}
  std::u16string className() const override { return u"Renderers"; }
  std::u16string printed() const override { return u"<Renderers>"; }
  const void* identity() const override { return &core_; }
  std::vector<std::u16string> propertyNames() const override {
    return {u"current", u"production", u"medit", u"activeShade"};
  }
  std::optional<HostValue> get(std::u16string_view name) override {
    // One renderer does everything here.
    if (name != u"current" && name != u"production" && name != u"medit" && name != u"activeshade") return std::nullopt;
    return std::make_shared<CurrentRenderer>(core_);
  }

 private:
  host::Core& core_;
};

class Element : public HostObject {
 public:
  Element(host::Core& core, int index) : core_(core), live_(&core.live()), index_(static_cast<std::size_t>(index)) {}
  std::u16string className() const override { return u"RenderElement"; }
  std::u16string superClassName() const override { return u"RenderElement"; }
  std::u16string printed() const override { return u"RenderElement:" + hostkit::services::toWide(settings().name); }
  const void* identity() const override { return &settings(); }
  std::vector<std::u16string> propertyNames() const override { return {u"elementName", u"enabled"}; }
  std::optional<HostValue> get(std::u16string_view name) override {
    if (name == u"elementname") return hostkit::services::toWide(settings().name);
    if (name == u"enabled") return settings().enabled;
    return std::nullopt;
  }
  bool set(std::u16string_view name, const HostValue& value) override {
    if (name == u"elementname")
      settings().name = hostkit::services::toUtf8(asText(value, u"elementName"));
    else if (name == u"enabled")
      settings().enabled = asBoolean(value, u"enabled");
    else
      return false;
    return true;
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

class ElementManager : public HostObject {
 public:
  explicit ElementManager(host::Core& core) : core_(core) {}
  std::u16string className() const override { return u"RenderElementMgr"; }
  std::u16string printed() const override { return u"<RenderElementMgr>"; }
  const void* identity() const override { return &core_; }
  std::vector<std::u16string> functionNames() const override {
    return {u"NumRenderElements",        u"GetRenderElement",  u"GetRenderElementFilename",
            u"SetRenderElementFilename", u"GetElementsActive", u"SetElementsActive"};
  }
  std::optional<HostValue> get(std::u16string_view) override { return std::nullopt; }
  std::optional<HostValue> call(std::u16string_view name, const Arguments& arguments, const HostKeywords&) override {
    if (name == u"numrenderelements") return static_cast<std::int32_t>(core_.live().NumRenderElements());
    if (name == u"getrenderelement")
      return std::make_shared<Element>(core_, index(argument(arguments, 0, u"GetRenderElement", 1)));
    if (name == u"getrenderelementfilename")
      return core_.live().elementOutput(index(argument(arguments, 0, u"GetRenderElementFilename", 1))).info.Name();
    if (name == u"setrenderelementfilename") {
      const int i = index(argument(arguments, 0, u"SetRenderElementFilename", 2));
      core_.live().elementOutput(i).info.SetName(asText(arguments[1], u"SetRenderElementFilename"));
      return true;
    }
    if (name == u"getelementsactive") return core_.live().ElementsActive();
    if (name == u"setelementsactive") {
      core_.live().description().render.elementsActive =
          asBoolean(argument(arguments, 0, u"SetElementsActive", 1), u"SetElementsActive");
      return hostkit::script::HostOk{};
    }
    return std::nullopt;
  }

 private:
  int index(const HostValue& value) const {
    const std::int32_t i = asInteger(value, u"Render element index");
    if (i < 0 || i >= core_.live().NumRenderElements())
      throw hostsdk::RuntimeError(u"Render element index is out of range: " +
                                  hostkit::services::toWide(std::to_string(i)));
    return i;
  }
  host::Core& core_;
};

class MaxOps : public HostObject {
 public:
  explicit MaxOps(host::Core& core) : core_(core) {}
  std::u16string className() const override { return u"MaxOps"; }
  std::u16string printed() const override { return u"<Interface:maxOps>"; }
  const void* identity() const override { return &core_; }
  std::vector<std::u16string> functionNames() const override { return {u"GetCurRenderElementMgr"}; }
  std::optional<HostValue> get(std::u16string_view) override { return std::nullopt; }
  std::optional<HostValue> call(std::u16string_view name, const Arguments&, const HostKeywords&) override {
    if (name != u"getcurrenderelementmgr") return std::nullopt;
    return std::make_shared<ElementManager>(core_);
  }

 private:
  host::Core& core_;
};

}  // namespace

std::shared_ptr<HostObject> scriptRenderers(host::Core& core) { return std::make_shared<Renderers>(core); }
std::shared_ptr<HostObject> scriptMaxOps(host::Core& core) { return std::make_shared<MaxOps>(core); }

}  // namespace standin::bindings
