// Reading what scripts hand to the host. Each function throws hostsdk::RuntimeError when the value is of another kind;
// `what` names it there.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "standin/maxscript/host_bindings.h"
#include "standin/scene/description.h"

namespace standin::app {

bool asBoolean(const maxscript::HostValue& value, const char16_t* what);
std::int32_t asInteger(const maxscript::HostValue& value, const char16_t* what);
float asFloat(const maxscript::HostValue& value, const char16_t* what);
scene::PlainValue asPlain(const maxscript::HostValue& value, const char16_t* what);
maxscript::HostValue ofPlain(const scene::PlainValue& value);
maxscript::HostColor asColor(const maxscript::HostValue& value, const char16_t* what);
std::u16string asText(const maxscript::HostValue& value, const char16_t* what);
scene::Vec3 asPoint(const maxscript::HostValue& value, const char16_t* what);
// A time, or a number of frames. The result is in ticks.
std::int32_t asTime(const maxscript::HostValue& value, int ticksPerFrame, const char16_t* what);

// ASCII letters in lower case, as names arrive from scripts.
std::u16string lowerCase(std::u16string_view text);

}  // namespace standin::app
