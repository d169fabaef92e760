// Render dialog values that a host keeps for scripts and does not act on: the worker names the frames, and a host
// without a dialog has nothing for the others to switch.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hostkit/script/machine/host_bindings.h"

namespace hostkit::bindings {

class KeptSettings {
 public:
  KeptSettings();

  // As they are shown.
  std::vector<std::u16string> names() const;
  // By lower-case name; nullopt: there is none.
  std::optional<script::HostValue> get(std::u16string_view name) const;
  // False: there is none. Throws hostsdk::RuntimeError when the value is of another kind than the one it replaces.
  bool set(std::u16string_view name, const script::HostValue& value, int ticksPerFrame);

 private:
  struct Setting {
    const char16_t* name;  // as it is shown
    script::HostValue value;
  };
  const Setting* find(std::u16string_view name) const;

  std::vector<Setting> settings_;
};

}  // namespace hostkit::bindings
