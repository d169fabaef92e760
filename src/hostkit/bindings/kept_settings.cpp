#include "hostkit/bindings/kept_settings.h"

#include <algorithm>

#include "hostkit/bindings/script_values.h"

namespace hostkit::bindings {
namespace {

using script::HostTime;
using script::HostValue;

// The value as one of the kind that stands there.
HostValue alike(const HostValue& standing, const HostValue& value, const char16_t* name, int ticksPerFrame) {
  if (std::holds_alternative<bool>(standing)) return asBoolean(value, name);
  if (std::holds_alternative<std::int32_t>(standing)) return asInteger(value, name);
  if (std::holds_alternative<float>(standing)) return asFloat(value, name);
  if (std::holds_alternative<HostTime>(standing)) return HostTime{asTime(value, ticksPerFrame, name)};
  if (std::holds_alternative<script::HostColor>(standing)) return asColor(value, name);
  return asText(value, name);
}

}  // namespace

KeptSettings::KeptSettings()
    : settings_{{u"rendTimeType", 1},
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
                {u"backgroundColor", script::HostColor{0, 0, 0, 255}},
                {u"ambientColor", script::HostColor{0, 0, 0, 255}},
                {u"lightTintColor", script::HostColor{255, 255, 255, 255}},
                {u"lightLevel", 1.0F}} {}

std::vector<std::u16string> KeptSettings::names() const {
  std::vector<std::u16string> names;
  for (const Setting& setting : settings_) names.emplace_back(setting.name);
  return names;
}

const KeptSettings::Setting* KeptSettings::find(std::u16string_view name) const {
  const auto found = std::find_if(settings_.begin(), settings_.end(),
                                  [&](const Setting& setting) { return isNamed(setting.name, name); });
  return found != settings_.end() ? &*found : nullptr;
}

std::optional<HostValue> KeptSettings::get(std::u16string_view name) const {
  const Setting* setting = find(name);
  if (!setting) return std::nullopt;
  return setting->value;
}

bool KeptSettings::set(std::u16string_view name, const HostValue& value, int ticksPerFrame) {
  const Setting* setting = find(name);
  if (!setting) return false;
  settings_[static_cast<std::size_t>(setting - settings_.data())].value =
      alike(setting->value, value, setting->name, ticksPerFrame);
  return true;
}

}  // namespace hostkit::bindings
