// The classes of values.
#pragma once

#include <array>
#include <map>
#include <span>

#include "hostkit/script/machine/runtime.h"

namespace hostkit::script {

struct Classes {
  // A superclass stands before its classes.
  Classes(Runtime& runtime, std::span<const ClassRow> rows);

  ClassObject* find(std::u16string_view name) const;  // null when there is none
  // One class for each name; made when it is missing.
  ClassObject* ofName(Runtime& runtime, std::u16string_view name, std::u16string_view super);
  ClassObject* add(Runtime& runtime, std::u16string_view name, ClassObject* super, BuiltinFunction constructor);

  ClassObject* value = nullptr;
  ClassObject* string = nullptr;
  // By tag, kind of object and kind of tuple; null where the value itself must be asked.
  std::array<ClassObject*, 13> ofTag{};
  std::array<ClassObject*, 32> ofKind{};
  std::array<ClassObject*, kTupleShapes.size()> ofTuple{};
  std::map<std::u16string, ClassObject*, std::less<>> byName;  // lower case

 private:
  void fillTables();
};

// What classOf answers: a class, or for instances their structure.
Value classOf(Runtime& runtime, const Value& value);
ClassObject* nativeClassOf(Runtime& runtime, const Value& value);
bool isKindOf(Runtime& runtime, const Value& value, const Value& type);

}  // namespace hostkit::script
