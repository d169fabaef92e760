// Publishing native functions to scripts: the values that travel, the descriptor, and the registry of interfaces.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hostsdk/api.h"
#include "hostsdk/exceptions.h"
#include "hostsdk/types.h"

namespace hostsdk {

class Value;

// Type codes in descriptors and values.
inline constexpr int kFpTypeFloat = 0;
inline constexpr int kFpTypeInt = 1;
inline constexpr int kFpTypeVoid = 46;
inline constexpr int kFpTypeValue = 64;  // a script value; text parameters travel as one
inline constexpr int kFpTypeBool = 66;

// Descriptor tags, function ids and dispatch states.
inline constexpr std::uint32_t kTagEnd = 0xC0000400;
inline constexpr std::uint32_t kTagProperties = 0xC0000401;
inline constexpr std::uint16_t kNoFunction = 65535;
inline constexpr int kDispatchOk = 1;
inline constexpr int kDispatchNoSuchFunction = -1;

using FunctionID = std::uint16_t;

// One parameter or result. `type` tells which member holds.
struct HOSTSDK_API FPValue {
  int type = kFpTypeVoid;
  union {
    float f;
    std::int32_t i;  // also booleans: 0 or 1
    Value* v;
  };
  FPValue() : v(nullptr) {}
  static FPValue ofFloat(float value);
  static FPValue ofInt(std::int32_t value);
  static FPValue ofBool(bool value);
  static FPValue ofValue(Value* value);
};

// The parameter block of a call.
class HOSTSDK_API FPParams {
 public:
  std::vector<FPValue> params;
  // Throws OutOfRangeException when there is no such parameter.
  FPValue& at(std::size_t index);
};

// A host plug-in class behind an interface; static interfaces have none.
class ClassDesc;

// What a descriptor says, in the order it says it.
struct PublishedParameter {
  std::u16string name;
  int type = kFpTypeVoid;
};
struct PublishedFunction {
  FunctionID id = 0;
  std::u16string name;
  int resultType = kFpTypeVoid;
  std::vector<PublishedParameter> parameters;
};
struct PublishedProperty {
  FunctionID getter = kNoFunction, setter = kNoFunction;
  std::u16string name;
  int type = kFpTypeVoid;
};
struct PublishedInterface {
  Interface_ID id;
  std::u16string name;
  std::uint32_t flags = 0;
  std::vector<PublishedFunction> functions;
  std::vector<PublishedProperty> properties;
};

// Reads a descriptor buffer: 8-byte slots, integers zero-extended in the low 32 bits, texts as pointers to
// zero-terminated UTF-16. For each function: id, name, 0, result type, 0, N, then N times name, 0, type. Then, if there
// are properties, kTagProperties and for each: getter id, setter id, name, 0, type. Then kTagEnd. Texts are copied.
// Throws MAXException when the buffer breaks these rules before kTagEnd.
HOSTSDK_API PublishedInterface readDescriptor(Interface_ID id, const std::u16string& name, std::uint32_t flags,
                                              const std::uint64_t* buffer);

// A set of functions that scripts can call.
class HOSTSDK_API FPInterface {
 public:
  virtual ~FPInterface();
  // Calls function `id` at scene time `time`; `result` is left alone by functions without a result.
  int Invoke(FunctionID id, TimeValue time, FPValue& result, FPParams* params);
  int Invoke(FunctionID id, FPValue& result, FPParams* params);

 protected:
  // kDispatchOk, or kDispatchNoSuchFunction.
  virtual int dispatchFunction(FunctionID id, TimeValue time, FPValue& result, FPParams* params) = 0;
};

// An interface with a descriptor; registered with the host from load_descriptor to destruction.
class HOSTSDK_API FPInterfaceDesc : public FPInterface {
 public:
  FPInterfaceDesc();
  ~FPInterfaceDesc() override;
  FPInterfaceDesc(const FPInterfaceDesc&) = delete;
  FPInterfaceDesc& operator=(const FPInterfaceDesc&) = delete;

  const PublishedInterface& published() const { return published_; }

 protected:
  // Hands the host the finished descriptor. `description` is a resource number, 0 for none.
  void load_descriptor(Interface_ID id, const std::u16string& name, int description, ClassDesc* classDescriptor,
                       std::uint32_t flags, const std::uint64_t* buffer);

 private:
  PublishedInterface published_;
};

// An interface of the library itself, not of an object.
class HOSTSDK_API FPStaticInterface : public FPInterfaceDesc {
 public:
  ~FPStaticInterface() override;
};

// The registered interfaces, oldest first. Borrowed; each is valid until its library unloads.
HOSTSDK_API const std::vector<FPInterfaceDesc*>& registeredInterfaces();

}  // namespace hostsdk
