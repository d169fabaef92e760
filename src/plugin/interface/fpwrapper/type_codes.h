// How the types of published members travel: their host type code, and the way from and to the host's FPValue.
// A member with a type that is not listed here cannot be published: it does not compile.
#pragma once

#include <cstdint>
#include <string>

#include "hostsdk/function_publishing.h"

namespace corvantis::max3d::fpwrapper {

// The text of a script value by its own conversion; empty when it has none.
std::u16string textOf(const hostsdk::FPValue& value);

template <class Type>
struct ParameterType;

template <>
struct ParameterType<float> {
  static constexpr int code = hostsdk::kTypeFloat;
  static float from(const hostsdk::FPValue& value) { return value.f; }
};

template <>
struct ParameterType<std::int32_t> {
  static constexpr int code = hostsdk::kTypeInt;
  static std::int32_t from(const hostsdk::FPValue& value) { return value.i; }
};

template <>
struct ParameterType<const std::u16string&> {
  static constexpr int code = hostsdk::kTypeValue;
  static std::u16string from(const hostsdk::FPValue& value) { return textOf(value); }
};

template <class Type>
struct ResultType;

template <>
struct ResultType<void> {
  static constexpr int code = hostsdk::kTypeVoid;
};

template <>
struct ResultType<std::int32_t> {
  static constexpr int code = hostsdk::kTypeInt;
  static hostsdk::FPValue load(std::int32_t result) { return hostsdk::FPValue::ofInt(result); }
};

template <>
struct ResultType<hostsdk::Value*> {
  static constexpr int code = hostsdk::kTypeValue;
  static hostsdk::FPValue load(hostsdk::Value* result) { return hostsdk::FPValue::ofValue(result); }
};

template <>
struct ResultType<bool> {
  static constexpr int code = hostsdk::kTypeBool;
  static hostsdk::FPValue load(bool result) { return hostsdk::FPValue::ofBool(result); }
};

}  // namespace corvantis::max3d::fpwrapper
