#include "plugin/interface/fpwrapper/static_interface.h"

#include <stdexcept>

#include "hostsdk/exceptions.h"
#include "hostsdk/services.h"
#include "plugin/util/text.h"

namespace corvantis::max3d::fpwrapper {
namespace {

// Interfaces are built while a library loads, which may be before its host is bound.
void reportToHost(const std::u16string& text) {
  try {
    hostsdk::Log().LogEntry(hostsdk::LogSys::Level::error, true, u"FF Function Publishing Wrapper", text);
  } catch (const hostsdk::MAXException&) {
    return;
  }
}

}  // namespace

void refuseDefaultId(hostsdk::Interface_ID id, const std::u16string& interfaceName) {
  if (id != hostsdk::Interface_ID()) return;
  const std::u16string text =
      u"FFCreateDescriptor() - The interface ID for the function publishing descriptor \"" + interfaceName +
      u"\" was set to the default value, its value must be set to a randomly selected constant value.";
  reportToHost(text);
  throw std::runtime_error(to_string(text));
}

}  // namespace corvantis::max3d::fpwrapper
