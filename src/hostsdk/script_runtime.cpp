#include "hostsdk/script_runtime.h"

namespace hostsdk {

GlobalsTable::~GlobalsTable() = default;
Parser::~Parser() = default;
ScriptRuntime::~ScriptRuntime() = default;

ScopedValueTempArray::ScopedValueTempArray(std::size_t count) : count_(count), slots_(new Value* [count] {}) {
  scriptRuntime().link(slots_.get(), count_);
}
ScopedValueTempArray::~ScopedValueTempArray() { scriptRuntime().unlink(slots_.get()); }

}  // namespace hostsdk
