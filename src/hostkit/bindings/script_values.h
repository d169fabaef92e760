// Reading what scripts hand to a host. Each function throws script::WrongValue when the value is of another kind;
// `what` names it there.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "hostkit/script/machine/host_bindings.h"

namespace hostkit::bindings {

// A value that a host can keep for scripts in plain data. Text is UTF-8.
using PlainValue = std::variant<bool, std::int32_t, float, std::string>;

bool asBoolean(const script::HostValue& value, const char16_t* what);
std::int32_t asInteger(const script::HostValue& value, const char16_t* what);
// In this range, both ends included.
std::int32_t asInteger(const script::HostValue& value, const char16_t* what, std::int32_t lowest, std::int32_t highest);
float asFloat(const script::HostValue& value, const char16_t* what);
PlainValue asPlain(const script::HostValue& value, const char16_t* what);
script::HostValue ofPlain(const PlainValue& value);
script::HostColor asColor(const script::HostValue& value, const char16_t* what);
script::HostPoint3 asPoint(const script::HostValue& value, const char16_t* what);
script::HostQuat asQuat(const script::HostValue& value, const char16_t* what);
script::HostInterval asInterval(const script::HostValue& value, const char16_t* what);
std::u16string asText(const script::HostValue& value, const char16_t* what);
// A time, or a number of frames. The result is in ticks.
std::int32_t asTime(const script::HostValue& value, int ticksPerFrame, const char16_t* what);

// Whether a name as it is shown is this one in lower case; ASCII letters alone have two cases.
bool isNamed(std::u16string_view shown, std::u16string_view lowerCase);

// Throws the script's error "-- Argument count error: f wanted 1, got 2".
[[noreturn]] void refuseCount(const char16_t* function, int wanted, std::size_t got);
// Throws hostsdk::RuntimeError: "Viewport index is out of range: 7".
[[noreturn]] void refuseIndex(const char16_t* what, std::int32_t index);

}  // namespace hostkit::bindings
