// Elements of values, and collections.
#pragma once

#include "hostkit/script/machine/runtime.h"

namespace hostkit::script {

Value getElement(Runtime& runtime, const Value& collection, const Value& index);
void setElement(Runtime& runtime, const Value& collection, const Value& index, const Value& value);

// What `for` walks and mapped functions map over.
bool isCollection(const Value& value);
// A new array of the elements, or the array itself.
Value elementsOf(Runtime& runtime, const Value& collection);
// A new array of the string's characters, each a string.
Value charactersOf(Runtime& runtime, const Value& string);

// Throws when the array would pass kMaxArrayLength.
void appendTo(Runtime& runtime, ArrayObject& array, const Value& value);
void setBits(Runtime& runtime, BitArrayObject& bits, const Value& first, const Value& last);
// A 1-based index as a 0-based one; throws below 1.
std::size_t toIndex(Runtime& runtime, const Value& index);

}  // namespace hostkit::script
