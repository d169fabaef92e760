// What a host finds in a published interface.
#pragma once

#include <stdexcept>
#include <string>

#include "hostsdk/function_publishing.h"
#include "support/call_log.h"

namespace support {

// The id of a function or a property's getter; std::runtime_error for a name that is not published.
inline hostsdk::FunctionID idOf(const hostsdk::PublishedInterface& published, const std::u16string& name) {
  for (const hostsdk::PublishedFunction& function : published.functions)
    if (function.name == name) return function.id;
  for (const hostsdk::PublishedProperty& property : published.properties)
    if (property.name == name) return property.getter;
  throw std::runtime_error("nothing is published as " + narrow(name));
}

}  // namespace support
