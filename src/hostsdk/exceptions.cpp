#include "hostsdk/exceptions.h"

#include <utility>

namespace hostsdk {

MAXException::MAXException(std::u16string message, int errorCode)
    : message_(std::move(message)), errorCode_(errorCode) {}
MAXException::~MAXException() = default;

OutOfRangeException::OutOfRangeException()
    : MAXException(u"Argument index out of bounds, passed into a MaxSDK::Array::operator[]") {}
OutOfRangeException::~OutOfRangeException() = default;

}  // namespace hostsdk
