#include "standin/bindings/script_settings.h"

#include "standin/bindings/script_values.h"

namespace standin::bindings {
namespace {

using hostkit::script::HostTime;
using hostkit::script::HostValue;

// The value as one of the kind that stands there.
HostValue alike(const HostValue& standing, const HostValue& value, const char16_t* name, int ticksPerFrame) {
  if (std::holds_alternative<bool>(standing)) return asBoolean(value, name);
  if (std::holds_alternative<std::int32_t>(standing)) return asInteger(value, name);
  if (std::holds_alternative<float>(standing)) return asFloat(value, name);
  if (std::holds_alternative<HostTime>(standing)) return HostTime{asTime(value, ticksPerFrame, name)};
  if (std::holds_alternative<hostkit::script::HostColor>(standing)) return asColor(value, name);
  return asText(value, name);
}

}  // namespace

ScriptSettings::ScriptSettings() {
  const Setting all[] = {{u"rendTimeType", 1},
                         {u"rendStart", HostTime{}},
                         {u"rendEnd", HostTime{}},
                         {u"rendNThFrame", 1},
                         {u"rendPickupFrames", std::u16string(u"1,3,5-12")},
                         {u"rendFileNumberBase", 0},
                         {u"rendShowVFB", true},
                         {u"rendHidden", false},
                         {u"rendFieldRender", false},
                         {u"rendColorCheck", false},
                         {u"rendSuperBlack", false},
                         {u"rendForce2Side", false},
                         {u"rendAtmosphericEffects", true},
                         {u"rendEffects", true},
                         {u"renderDisplacements", true},
                         {u"rendUseAreaLights", false},
                         {u"rendUseNet", false},
                         {u"useVideoPost", false},
                         {u"usePreRendScript", false},
                         {u"usePostRendScript", false},
                         {u"preRendScript", std::u16string()},
                         {u"postRendScript", std::u16string()},
                         {u"useEnvironmentMap", false},
                         {u"backgroundColor", hostkit::script::HostColor{0, 0, 0, 255}},
                         {u"ambientColor", hostkit::script::HostColor{0, 0, 0, 255}},
                         {u"lightTintColor", hostkit::script::HostColor{255, 255, 255, 255}},
                         {u"lightLevel", 1.0F}};
  for (const Setting& setting : all) settings_.emplace(lowerCase(setting.name), setting);
}

std::vector<std::u16string> ScriptSettings::names() const {
  std::vector<std::u16string> names;
  for (const auto& [key, setting] : settings_) names.emplace_back(setting.name);
  return names;
}

std::optional<HostValue> ScriptSettings::get(std::u16string_view name) const {
  const auto found = settings_.find(name);
  if (found == settings_.end()) return std::nullopt;
  return found->second.value;
}

bool ScriptSettings::set(std::u16string_view name, const HostValue& value, int ticksPerFrame) {
  const auto found = settings_.find(name);
  if (found == settings_.end()) return false;
  Setting& setting = found->second;
  setting.value = alike(setting.value, value, setting.name, ticksPerFrame);
  return true;
}

}  // namespace standin::bindings
