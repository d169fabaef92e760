#include "hostkit/script/engine/engine.h"

#include <algorithm>

#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/host_values.h"
#include "hostkit/script/machine/port.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/syntax/text.h"
#include "hostsdk/function_publishing.h"

namespace hostkit::script {
namespace {

class InterfaceObject final : public HostObject {
 public:
  InterfaceObject(Runtime& runtime, hostsdk::FPInterfaceDesc& interface) : runtime_(runtime), interface_(interface) {}

  std::u16string className() const override { return u"Interface"; }
  std::u16string printed() const override { return u"<Interface:" + interface_.published().name + u">"; }
  const void* identity() const override { return &interface_; }

  std::vector<std::u16string> propertyNames() const override {
    std::vector<std::u16string> names;
    for (const auto& property : interface_.published().properties) names.push_back(property.name);
    return names;
  }
  std::vector<std::u16string> functionNames() const override {
    std::vector<std::u16string> names;
    for (const auto& function : interface_.published().functions) names.push_back(function.name);
    return names;
  }

  std::optional<HostValue> get(std::u16string_view name) override {
    const auto* property = find(interface_.published().properties, name);
    if (!property) return std::nullopt;
    return invoke(property->name, property->getter, property->type, nullptr);
  }

  bool set(std::u16string_view name, const HostValue& value) override {
    const auto* property = find(interface_.published().properties, name);
    if (!property || property->setter == hostsdk::kNoFunction) return false;
    hostsdk::FPParams parameters;
    parameters.params.push_back(argument(value, property->type, property->name));
    invoke(property->name, property->setter, hostsdk::kFpTypeVoid, &parameters);
    return true;
  }

  std::optional<HostValue> call(std::u16string_view name, const std::vector<HostValue>& arguments,
                                const HostKeywords&) override {
    const auto* function = find(interface_.published().functions, name);
    if (!function) return std::nullopt;
    if (arguments.size() != function->parameters.size())
      throwArgumentCount(function->name, function->parameters.size(), arguments.size());
    hostsdk::FPParams parameters;
    for (std::size_t i = 0; i < arguments.size(); ++i)
      parameters.params.push_back(argument(arguments[i], function->parameters[i].type, function->name));
    return invoke(function->name, function->id, function->resultType, &parameters);
  }

 private:
  template <class Entry>
  static const Entry* find(const std::vector<Entry>& entries, std::u16string_view name) {
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](const Entry& e) { return equalFolded(e.name, name); });
    return found == entries.end() ? nullptr : &*found;
  }

  // For the member `name`. The caller holds an allocation frame.
  hostsdk::FPValue argument(const HostValue& given, int type, const std::u16string& name) {
    const Root value(runtime_.heap(), fromHost(runtime_, given));
    switch (type) {
      case hostsdk::kFpTypeFloat:
        return hostsdk::FPValue::ofFloat(toFloat(runtime_, value.value));
      case hostsdk::kFpTypeInt:
        return hostsdk::FPValue::ofInt(toInteger(runtime_, value.value));
      case hostsdk::kFpTypeBool:
        return hostsdk::FPValue::ofBool(toBoolean(runtime_, value.value));
      default: {
        hostsdk::Value* published = runtime_.port().publish(value.value);
        if (!published->text()) warnOfNoText(name, value.value);
        return hostsdk::FPValue::ofValue(published);
      }
    }
  }

  // What a plug-in is handed as a value it reads as text, and a value without one is empty there.
  void warnOfNoText(const std::u16string& name, const Value& value) {
    runtime_.report(u"-- Warning: " + interface_.published().name + u"." + name +
                    u" takes a text and finds an empty one in: " + script::printed(runtime_, value) +
                    u"; convert it with \"as string\"\n");
  }

  HostValue invoke(const std::u16string& name, hostsdk::FunctionID id, int type, hostsdk::FPParams* parameters) {
    hostsdk::FPValue result;
    hostsdk::FPParams none;
    if (interface_.Invoke(id, runtime_.host().time(), result, parameters ? parameters : &none) != hostsdk::kDispatchOk)
      throwRuntimeError(u"Interface function is not implemented: " + name);
    switch (type) {
      case hostsdk::kFpTypeFloat:
        return result.f;
      case hostsdk::kFpTypeInt:
        return result.i;
      case hostsdk::kFpTypeBool:
        return result.i != 0;
      case hostsdk::kFpTypeVoid:
        return HostOk{};
      default:
        return result.v ? HostValue(result.v) : HostValue(std::monostate{});
    }
  }

  Runtime& runtime_;
  hostsdk::FPInterfaceDesc& interface_;
};

}  // namespace

void Engine::publishInterfaces() {
  Runtime& runtime = *runtime_;
  for (hostsdk::FPInterfaceDesc* each : hostsdk::registeredInterfaces()) {
    GlobalObject* global = runtime.addGlobal(runtime.name(each->published().name));
    global->value = runtime.heap().make<HostValueObject>(std::make_shared<InterfaceObject>(runtime, *each));
  }
}

}  // namespace hostkit::script
