#include "standin/bindings/script_layers.h"

#include <algorithm>

#include "hostsdk/script_value.h"
#include "standin/bindings/script_values.h"

namespace standin::bindings {
namespace {

using hostkit::script::HostKeywords;
using hostkit::script::HostObject;
using hostkit::script::HostValue;
using Arguments = std::vector<HostValue>;

constexpr const char16_t* kOnlyLayer = u"0";

class Layer : public HostObject {
 public:
  explicit Layer(host::Core& core) : core_(core) {}
  std::u16string className() const override { return u"LayerProperties"; }
  std::u16string printed() const override { return u"<LayerProperties:0>"; }
  const void* identity() const override { return &core_; }
  std::vector<std::u16string> propertyNames() const override { return {u"name", u"on", u"isHidden", u"current"}; }
  std::optional<HostValue> get(std::u16string_view name) override {
    if (name == u"name") return std::u16string(kOnlyLayer);
    if (name == u"on") return isShown();
    if (name == u"ishidden") return !isShown();
    if (name == u"current") return true;
    return std::nullopt;
  }
  bool set(std::u16string_view name, const HostValue& value) override {
    if (name == u"on") {
      show(asBoolean(value, u"on"));
    } else if (name == u"ishidden") {
      show(!asBoolean(value, u"isHidden"));
    } else {
      return false;
    }
    return true;
  }

 private:
  std::vector<scene::Node>& nodes() const { return core_.live().description().nodes; }
  bool isShown() const {
    return nodes().empty() ||
           std::any_of(nodes().begin(), nodes().end(), [](const scene::Node& node) { return node.visible; });
  }
  void show(bool visible) {
    for (scene::Node& node : nodes()) node.visible = visible;
  }
  host::Core& core_;
};

class LayerManager : public HostObject {
 public:
  explicit LayerManager(host::Core& core) : core_(core) {}
  std::u16string className() const override { return u"LayerManager"; }
  std::u16string printed() const override { return u"<Interface:LayerManager>"; }
  const void* identity() const override { return &core_; }
  std::vector<std::u16string> propertyNames() const override { return {u"count", u"current"}; }
  std::vector<std::u16string> functionNames() const override { return {u"getLayer", u"getLayerFromName"}; }
  std::optional<HostValue> get(std::u16string_view name) override {
    if (name == u"count") return 1;
    if (name == u"current") return std::make_shared<Layer>(core_);
    return std::nullopt;
  }
  std::optional<HostValue> call(std::u16string_view name, const Arguments& arguments, const HostKeywords&) override {
    if (name != u"getlayer" && name != u"getlayerfromname") return std::nullopt;
    if (arguments.size() != 1) throw hostsdk::RuntimeError(u"LayerManager: one layer's index or name is wanted");
    const bool isOnly = name == u"getlayer" ? asInteger(arguments[0], u"getLayer") == 0
                                            : asText(arguments[0], u"getLayerFromName") == kOnlyLayer;
    return isOnly ? HostValue(std::make_shared<Layer>(core_)) : HostValue();
  }

 private:
  host::Core& core_;
};

}  // namespace

std::shared_ptr<HostObject> scriptLayers(host::Core& core) { return std::make_shared<LayerManager>(core); }

}  // namespace standin::bindings
