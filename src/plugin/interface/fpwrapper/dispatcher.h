// One published function: how its types travel, how the host calls it and how it describes itself.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <initializer_list>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "hostsdk/function_publishing.h"

namespace corvantis::max3d::fpwrapper {

// The types of published members: their host type code, and the way from and to the host's FPValue. A member with a
// type that is not listed here cannot be published: it does not compile.

// The text of a script value by its own conversion; empty when it has none.
std::u16string textOf(const hostsdk::FPValue& value);

template <class Type>
struct ParameterType;

template <>
struct ParameterType<float> {
  static constexpr int code = hostsdk::kFpTypeFloat;
  static float from(const hostsdk::FPValue& value) { return value.f; }
};

template <>
struct ParameterType<std::int32_t> {
  static constexpr int code = hostsdk::kFpTypeInt;
  static std::int32_t from(const hostsdk::FPValue& value) { return value.i; }
};

template <>
struct ParameterType<const std::u16string&> {
  static constexpr int code = hostsdk::kFpTypeValue;
  static std::u16string from(const hostsdk::FPValue& value) { return textOf(value); }
};

template <class Type>
struct ResultType;

template <>
struct ResultType<void> {
  static constexpr int code = hostsdk::kFpTypeVoid;
};

template <>
struct ResultType<std::int32_t> {
  static constexpr int code = hostsdk::kFpTypeInt;
  static hostsdk::FPValue load(std::int32_t result) { return hostsdk::FPValue::ofInt(result); }
};

template <>
struct ResultType<hostsdk::Value*> {
  static constexpr int code = hostsdk::kFpTypeValue;
  static hostsdk::FPValue load(hostsdk::Value* result) { return hostsdk::FPValue::ofValue(result); }
};

template <>
struct ResultType<bool> {
  static constexpr int code = hostsdk::kFpTypeBool;
  static hostsdk::FPValue load(bool result) { return hostsdk::FPValue::ofBool(result); }
};

// The buffer in which a descriptor is written for the host: a run of 8-byte slots.
class DescriptorBuffer {
 public:
  // Zero-extended into the low 32 bits of the next slot.
  void addInteger(std::uint32_t value) { slots_.push_back(value); }
  // The address of zero-terminated text, which must live until the host has read the buffer.
  void addText(const char16_t* text) { slots_.push_back(reinterpret_cast<std::uintptr_t>(text)); }

  const std::uint64_t* slots() const { return slots_.data(); }

 private:
  std::vector<std::uint64_t> slots_;
};

class FPDispatcher {
 public:
  // Calls the member on `object`, which must be of the class that the dispatcher was made for. The result slot is left
  // alone by members without a result, and when the call fails. Throws OutOfRangeException when the block holds fewer
  // parameters than the member takes (null counts as an empty block), and MAXException with the text of any
  // std::exception that the member or a conversion throws; the host's own exceptions pass.
  virtual void invoke(hostsdk::FPInterface& object, hostsdk::TimeValue time, hostsdk::FPValue& result,
                      hostsdk::FPParams* params) = 0;
  // Appends the function's entry; a property getter, which has no name, appends nothing.
  virtual void describe(DescriptorBuffer& buffer) const = 0;
  virtual ~FPDispatcher();
};

// Names of the parameters of a function, "Param1" to "Param8" where none is given.
class ParameterNames {
 public:
  static constexpr std::size_t kCount = 8;
  // Names after the eighth are dropped.
  ParameterNames(std::initializer_list<const char16_t*> names);
  const std::u16string& operator[](std::size_t index) const { return names_[index]; }

 private:
  std::array<std::u16string, kCount> names_;
};

// The parts of a dispatcher that do not depend on the signature.
hostsdk::FPValue& parameterAt(hostsdk::FPParams* params, std::size_t index);
void describeFunction(DescriptorBuffer& buffer, std::int16_t id, const std::u16string& name, int resultCode,
                      const int* parameterCodes, std::size_t parameterCount, const ParameterNames& parameterNames);
[[noreturn]] void throwAsHostError(const std::exception& error);

template <class Class, class Signature>
class FPDispatcherImpl;

template <class Class, class Result, class... Parameters>
class FPDispatcherImpl<Class, Result(Parameters...)> final : public FPDispatcher {
  static_assert(sizeof...(Parameters) <= ParameterNames::kCount);

 public:
  using Member = Result (Class::*)(Parameters...);

  FPDispatcherImpl(std::int16_t id, std::u16string name, ParameterNames parameterNames, Member member)
      : id_(id), name_(std::move(name)), parameterNames_(std::move(parameterNames)), member_(member) {}

  void invoke(hostsdk::FPInterface& object, hostsdk::TimeValue, hostsdk::FPValue& result,
              hostsdk::FPParams* params) override {
    try {
      call(static_cast<Class&>(object), result, params, std::index_sequence_for<Parameters...>());
    } catch (const std::exception& error) {
      throwAsHostError(error);
    }
  }

  void describe(DescriptorBuffer& buffer) const override {
    // One entry more than parameters, so that the array is never empty.
    const int codes[] = {ParameterType<Parameters>::code..., 0};
    if (!name_.empty())
      describeFunction(buffer, id_, name_, ResultType<Result>::code, codes, sizeof...(Parameters), parameterNames_);
  }

 private:
  template <std::size_t... Indices>
  void call(Class& object, hostsdk::FPValue& result, [[maybe_unused]] hostsdk::FPParams* params,
            std::index_sequence<Indices...>) {
    // The braces convert from left to right, so that the first missing parameter is the one that fails.
    std::tuple<std::decay_t<Parameters>...> arguments{ParameterType<Parameters>::from(parameterAt(params, Indices))...};
    if constexpr (std::is_void_v<Result>)
      (object.*member_)(std::get<Indices>(arguments)...);
    else
      result = ResultType<Result>::load((object.*member_)(std::get<Indices>(arguments)...));
  }

  std::int16_t id_;
  std::u16string name_;
  ParameterNames parameterNames_;
  Member member_;
};

}  // namespace corvantis::max3d::fpwrapper
