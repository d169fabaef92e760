// Exceptions of the host. None of them derives from std::exception.
#pragma once

#include <string>

#include "hostsdk/api.h"

namespace hostsdk {

// An error of the host core or of a plug-in, carrying its text.
class HOSTSDK_API MAXException {
 public:
  explicit MAXException(std::u16string message, int errorCode = 0);
  virtual ~MAXException();
  MAXException(const MAXException&) = default;
  MAXException& operator=(const MAXException&) = default;

  const std::u16string& message() const { return message_; }
  int errorCode() const { return errorCode_; }

 private:
  std::u16string message_;
  int errorCode_;
};

// An index outside a host array. Its text is
// "Argument index out of bounds, passed into a MaxSDK::Array::operator[]".
class HOSTSDK_API OutOfRangeException : public MAXException {
 public:
  OutOfRangeException();
  ~OutOfRangeException() override;
};

}  // namespace hostsdk
