#include "plugin/interface/fpwrapper/dispatcher.h"

#include "hostsdk/exceptions.h"
#include "hostsdk/script_value.h"
#include "plugin/util/text.h"

namespace corvantis::max3d::fpwrapper {

FPDispatcher::~FPDispatcher() = default;

ParameterNames::ParameterNames(std::initializer_list<const char16_t*> names) {
  for (std::size_t i = 0; i < kCount; ++i) {
    if (i < names.size())
      names_[i] = names.begin()[i];
    else
      names_[i] = u"Param" + to_wstring(static_cast<int>(i + 1));
  }
}

std::u16string textOf(const hostsdk::FPValue& value) {
  return value.v == nullptr ? std::u16string() : value.v->text().value_or(std::u16string());
}

hostsdk::FPValue& parameterAt(hostsdk::FPParams* params, std::size_t index) {
  if (params == nullptr) throw hostsdk::OutOfRangeException();
  return params->at(index);
}

void describeFunction(DescriptorBuffer& buffer, std::int16_t id, const std::u16string& name, int resultCode,
                      const int* parameterCodes, std::size_t parameterCount, const ParameterNames& parameterNames) {
  constexpr std::uint32_t noDescription = 0, noFlags = 0;
  buffer.addInteger(static_cast<std::uint16_t>(id));
  buffer.addText(name.c_str());
  buffer.addInteger(noDescription);
  buffer.addInteger(static_cast<std::uint32_t>(resultCode));
  buffer.addInteger(noFlags);
  buffer.addInteger(static_cast<std::uint32_t>(parameterCount));
  for (std::size_t i = 0; i < parameterCount; ++i) {
    buffer.addText(parameterNames[i].c_str());
    buffer.addInteger(noDescription);
    buffer.addInteger(static_cast<std::uint32_t>(parameterCodes[i]));
  }
}

void throwAsHostError(const std::exception& error) { throw hostsdk::MAXException(to_wstring(error.what()), 0); }

}  // namespace corvantis::max3d::fpwrapper
