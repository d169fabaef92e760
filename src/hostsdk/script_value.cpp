#include "hostsdk/script_value.h"

#include <utility>

namespace hostsdk {

Collectable::~Collectable() = default;
Value::~Value() = default;
Array::~Array() = default;
CharStream::~CharStream() = default;
StringStream::~StringStream() = default;
FileStream::~FileStream() = default;

MAXScriptException::~MAXScriptException() = default;
RuntimeError::RuntimeError(std::u16string message) : message_(std::move(message)) {}
RuntimeError::~RuntimeError() = default;
void RuntimeError::sprin1(CharStream& stream) const { stream.puts(u"-- Runtime error: " + message_); }

}  // namespace hostsdk
