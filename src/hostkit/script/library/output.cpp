// print and format.
#include "hostkit/script/library/builtins.h"
#include "hostkit/script/machine/access.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/machine/streams.h"

namespace hostkit::script {
namespace {

// To the stream of to:, else to where scripts print.
void write(const Call& call, std::u16string_view text) {
  const Value to = call.keyword(u"to");
  if (to.isUnsupplied() || to.isUndefined()) {
    call.runtime.print(text);
    return;
  }
  auto* stream = as<TextStreamObject>(to);
  if (!stream) throwTypeError(u"to: requires a stream, got: " + printed(call.runtime, to));
  stream->write(text);
  if (!stream->isFile()) call.runtime.heap().grew(text.size() * 2);
}

bool isNoMap(const Value& value) {
  const auto* name = as<NameObject>(value);
  return name && name->folded == u"nomap";
}

// A collection prints one element a line unless #noMap.
Value print(const Call& call) {
  const bool whole = call.count() > 1 && isNoMap(call[1]);
  if (whole || !isCollection(call[0])) {
    write(call, printed(call.runtime, call[0]) + u"\n");
    return call[0];
  }
  const Root elements(call.runtime.heap(), elementsOf(call.runtime, call[0]));
  const auto* array = as<ArrayObject>(elements.value);
  for (std::size_t i = 0; i < array->items.size(); ++i) write(call, printed(call.runtime, array->items[i]) + u"\n");
  return call[0];
}

// Each % takes the next value; \% is a percent sign. Without a value the % stays.
Value format(const Call& call) {
  const std::u16string_view pattern = toString(call.runtime, call[0]);
  std::u16string out;
  std::size_t next = 1;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] == u'\\' && i + 1 < pattern.size() && pattern[i + 1] == u'%') {
      out += pattern[++i];
    } else if (pattern[i] == u'%' && next < call.count()) {
      out += asText(call.runtime, call[next++]);
    } else {
      out += pattern[i];
    }
  }
  write(call, out);
  return Value::ok();
}

Value nothing(const Call&) { return Value::ok(); }

constexpr BuiltinEntry kEntries[] = {
    {u"print", 1, 2, print},
    {u"format", 1, -1, format},
    {u"clearListener", 0, 0, nothing},
};

}  // namespace

std::span<const BuiltinEntry> outputBuiltins() { return kEntries; }

}  // namespace hostkit::script
