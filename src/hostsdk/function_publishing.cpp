#include "hostsdk/function_publishing.h"

#include <algorithm>

namespace hostsdk {
namespace {

std::vector<FPInterfaceDesc*>& registry() {
  static std::vector<FPInterfaceDesc*> interfaces;
  return interfaces;
}

// Walks the slots of a descriptor and names the entry that breaks its rules.
class DescriptorReader {
 public:
  explicit DescriptorReader(const std::uint64_t* slot) : slot_(slot) {}

  std::uint32_t peek() const { return static_cast<std::uint32_t>(*slot_); }
  std::uint32_t integer(const char16_t* what) {
    if (*slot_ > 0xFFFFFFFFu) fail(what, u"an integer");
    return static_cast<std::uint32_t>(*slot_++);
  }
  std::u16string text(const char16_t* what) {
    if (*slot_ == 0) fail(what, u"a text");
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a descriptor holds its texts as addresses in integer slots
    return reinterpret_cast<const char16_t*>(static_cast<std::uintptr_t>(*slot_++));
  }
  void zero(const char16_t* what) {
    if (integer(what) != 0) fail(what, u"0");
  }
  [[noreturn]] static void fail(const char16_t* what, const char16_t* expected) {
    throw MAXException(std::u16string(u"Malformed interface descriptor: expected ") + expected + u" as " + what);
  }

 private:
  const std::uint64_t* slot_;
};

PublishedFunction readFunction(DescriptorReader& reader) {
  PublishedFunction function;
  function.id = static_cast<FunctionID>(reader.integer(u"function id"));
  function.name = reader.text(u"function name");
  reader.zero(u"function description");
  function.resultType = static_cast<int>(reader.integer(u"result type"));
  reader.zero(u"function flags");
  const std::uint32_t count = reader.integer(u"parameter count");
  if (count > 64) DescriptorReader::fail(u"parameter count", u"at most 64");
  for (std::uint32_t i = 0; i < count; ++i) {
    PublishedParameter parameter;
    parameter.name = reader.text(u"parameter name");
    reader.zero(u"parameter description");
    parameter.type = static_cast<int>(reader.integer(u"parameter type"));
    function.parameters.push_back(std::move(parameter));
  }
  return function;
}

PublishedProperty readProperty(DescriptorReader& reader) {
  PublishedProperty property;
  property.getter = static_cast<FunctionID>(reader.integer(u"getter id"));
  property.setter = static_cast<FunctionID>(reader.integer(u"setter id"));
  property.name = reader.text(u"property name");
  reader.zero(u"property description");
  property.type = static_cast<int>(reader.integer(u"property type"));
  return property;
}

}  // namespace

FPValue FPValue::ofFloat(float value) {
  FPValue result;
  result.type = kFpTypeFloat;
  result.f = value;
  return result;
}
FPValue FPValue::ofInt(std::int32_t value) {
  FPValue result;
  result.type = kFpTypeInt;
  result.i = value;
  return result;
}
FPValue FPValue::ofBool(bool value) {
  FPValue result;
  result.type = kFpTypeBool;
  result.i = value ? 1 : 0;
  return result;
}
FPValue FPValue::ofValue(Value* value) {
  FPValue result;
  result.type = kFpTypeValue;
  result.v = value;
  return result;
}

FPValue& FPParams::at(std::size_t index) {
  if (index >= params.size()) throw OutOfRangeException();
  return params[index];
}

PublishedInterface readDescriptor(Interface_ID id, const std::u16string& name, std::uint32_t flags,
                                  const std::uint64_t* buffer) {
  PublishedInterface published;
  published.id = id;
  published.name = name;
  published.flags = flags;
  DescriptorReader reader(buffer);
  while (reader.peek() != kTagProperties && reader.peek() != kTagEnd)
    published.functions.push_back(readFunction(reader));
  if (reader.peek() == kTagProperties) {
    reader.integer(u"property tag");
    while (reader.peek() != kTagEnd) published.properties.push_back(readProperty(reader));
  }
  return published;
}

FPInterface::~FPInterface() = default;
int FPInterface::Invoke(FunctionID id, TimeValue time, FPValue& result, FPParams* params) {
  return dispatchFunction(id, time, result, params);
}
int FPInterface::Invoke(FunctionID id, FPValue& result, FPParams* params) {
  return dispatchFunction(id, 0, result, params);
}

FPInterfaceDesc::FPInterfaceDesc() = default;
FPInterfaceDesc::~FPInterfaceDesc() { std::erase(registry(), this); }

void FPInterfaceDesc::load_descriptor(Interface_ID id, const std::u16string& name, int, ClassDesc*, std::uint32_t flags,
                                      const std::uint64_t* buffer) {
  published_ = readDescriptor(id, name, flags, buffer);
  if (std::find(registry().begin(), registry().end(), this) == registry().end()) registry().push_back(this);
}

FPStaticInterface::~FPStaticInterface() = default;

const std::vector<FPInterfaceDesc*>& registeredInterfaces() { return registry(); }

}  // namespace hostsdk
