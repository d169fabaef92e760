// Conversions: `as`, and what built-in functions do with their arguments. The to... functions throw
// "Unable to convert: <value> to type: <class>".
#pragma once

#include <optional>
#include <string>

#include "hostkit/script/machine/host_bindings.h"
#include "hostkit/script/machine/runtime.h"
#include "hostkit/script/syntax/token.h"

namespace hostkit::script {

Value convert(Runtime& runtime, const Value& value, const Value& target);

float toFloat(Runtime& runtime, const Value& value);
double toDouble(Runtime& runtime, const Value& value);
std::int32_t toInteger(Runtime& runtime, const Value& value);
std::int64_t toInteger64(Runtime& runtime, const Value& value);
bool toBoolean(Runtime& runtime, const Value& value);
std::int32_t toTicks(Runtime& runtime, const Value& value);  // a number counts frames
std::u16string_view toString(Runtime& runtime, const Value& value);
NameObject* toName(Runtime& runtime, const Value& value);
ArrayObject* toArray(Runtime& runtime, const Value& value);
// A tuple of one of the kinds from `first` to `last`.
TupleObject* toTuple(Runtime& runtime, const Value& value, TupleKind first, TupleKind last);
TupleObject* toPoint3(Runtime& runtime, const Value& value);

// A number or time in the representation of `tag`.
Value toNumber(Runtime& runtime, const Value& value, Tag tag);
std::int32_t clampedInteger(double value);

// A number as scripts write it, its type from the syntax; undefined when the text is none.
Value readNumber(std::u16string_view text);

// Times: 4800 ticks a second, frames by the host's frame rate.
std::int32_t ticksOf(const NumberLiteral& time, HostBindings& host);
double framesOf(std::int32_t ticks, HostBindings& host);

}  // namespace hostkit::script
