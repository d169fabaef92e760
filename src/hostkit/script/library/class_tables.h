// The tables behind the classes: what they are called, what makes their values, which properties these have.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "hostkit/script/machine/structures.h"

namespace hostkit::script {

struct PropertyRow {
  std::u16string_view name;
  ClassObject::Getter get;
  ClassObject::Setter set = nullptr;
};
struct ClassRow {
  std::u16string_view name, super;  // a superclass stands before its classes
  BuiltinFunction constructor;      // null: none
  std::vector<PropertyRow> properties;
};

// All classes that the runtime itself knows.
std::vector<ClassRow> classRows();

// Parts of it
std::vector<ClassRow> plainClassRows();      // numbers, texts, collections, functions
std::vector<ClassRow> geometricClassRows();  // points, colors, rotations, matrices, intervals

}  // namespace hostkit::script
