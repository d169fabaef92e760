// Properties of values.
#pragma once

#include "hostkit/script/machine/runtime.h"

namespace hostkit::script {

// `from` is the structure whose method asks: it sees private members. Throws "Unknown property: ...".
Value getProperty(Runtime& runtime, const Value& value, NameObject* name, const StructObject* from);
void setProperty(Runtime& runtime, const Value& target, NameObject* name, const Value& value, const StructObject* from);
// Whether getProperty would find something. Evaluates no getter except the host's.
bool hasProperty(Runtime& runtime, const Value& value, NameObject* name);
std::vector<NameObject*> propertyNames(Runtime& runtime, const Value& value);
[[noreturn]] void throwPrivateMember(Runtime& runtime, const StructObject& structure, const NameObject* name);

}  // namespace hostkit::script
