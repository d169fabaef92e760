// Reading what scripts hand to the host. Each function throws hostsdk::RuntimeError when the value is of another kind;
// `what` names it there.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "hostkit/script/machine/host_bindings.h"
#include "standin/scene/description.h"

namespace standin::bindings {

bool asBoolean(const hostkit::script::HostValue& value, const char16_t* what);
std::int32_t asInteger(const hostkit::script::HostValue& value, const char16_t* what);
float asFloat(const hostkit::script::HostValue& value, const char16_t* what);
scene::PlainValue asPlain(const hostkit::script::HostValue& value, const char16_t* what);
hostkit::script::HostValue ofPlain(const scene::PlainValue& value);
hostkit::script::HostColor asColor(const hostkit::script::HostValue& value, const char16_t* what);
std::u16string asText(const hostkit::script::HostValue& value, const char16_t* what);
scene::Vec3 asPoint(const hostkit::script::HostValue& value, const char16_t* what);
// A time, or a number of frames. The result is in ticks.
std::int32_t asTime(const hostkit::script::HostValue& value, int ticksPerFrame, const char16_t* what);

// ASCII letters in lower case, as names arrive from scripts.
std::u16string lowerCase(std::u16string_view text);

}  // namespace standin::bindings
