// Render dialog values that this host keeps for scripts and does not act on: the worker names the frames, and there is
// nothing here for the others to switch.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hostkit/script/machine/host_bindings.h"

namespace standin::bindings {

class ScriptSettings {
 public:
  ScriptSettings();

  std::vector<std::u16string> names() const;
  // By lower-case name; nullopt: there is none.
  std::optional<hostkit::script::HostValue> get(std::u16string_view name) const;
  // False: there is none. Throws hostsdk::RuntimeError when the value is of another kind than the one it replaces.
  bool set(std::u16string_view name, const hostkit::script::HostValue& value, int ticksPerFrame);

 private:
  struct Setting {
    const char16_t* name;  // as it is shown
    hostkit::script::HostValue value;
  };
  std::map<std::u16string, Setting, std::less<>> settings_;  // by lower-case name
};

}  // namespace standin::bindings
