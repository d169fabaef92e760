// Operators on points, colors, rotations and matrices.
#pragma once

#include <optional>

#include "hostkit/script/machine/runtime.h"
#include "hostkit/script/syntax/syntax_tree.h"

namespace hostkit::script {

// nullopt: there is no such operator for these.
std::optional<Value> tupleArithmetic(Runtime& runtime, BinaryOperator op, const Value& left, const Value& right);

TupleObject* newTuple(Runtime& runtime, TupleKind kind, const std::array<float, 12>& values);
TupleObject* newPoint3(Runtime& runtime, float x, float y, float z);
// Angles in degrees, turned about x, then y, then z.
std::array<float, 12> matrixOf(const TupleObject& rotation);
std::array<float, 12> quatOf(const TupleObject& rotation);
std::array<float, 12> eulerOf(const TupleObject& rotation);

}  // namespace hostkit::script
