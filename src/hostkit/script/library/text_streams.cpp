// print and format, text files and string streams.
#include "hostkit/script/library/library.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/elements.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/machine/streams.h"
#include "hostkit/script/syntax/parser.h"
#include "hostkit/script/syntax/text.h"

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

// Reading

TextStreamObject& stream(const Call& call) {
  auto* found = as<TextStreamObject>(call[0]);
  if (!found) throwUnableToConvert(printed(call.runtime, call[0]), u"FileStream");
  if (!found->isOpen()) throwRuntimeError(u"File is not open: " + found->path());
  return *found;
}

[[noreturn]] void throwEnd() { throwRuntimeError(u"Read past end of file"); }

// undefined when the file cannot be opened.
Value open(const Call& call, std::u16string_view mode) {
  requireFileAccess(call.runtime);
  const Root made(call.runtime.heap(), call.runtime.heap().make<TextStreamObject>(filePath(call, 0), u"", false));
  if (!TextStreamObject::open(*as<TextStreamObject>(made.value), mode)) return {};
  call.runtime.heap().grew(as<TextStreamObject>(made.value)->content().size() * 2);
  return made.value;
}

Value createFile(const Call& call) { return open(call, u"w"); }
Value openFile(const Call& call) {
  const Value mode = call.keyword(u"mode");
  return open(call, mode.isUnsupplied() ? u"r" : std::u16string(toString(call.runtime, mode)));
}
Value closeFile(const Call& call) {
  if (auto* found = as<TextStreamObject>(call[0])) found->close();
  return Value::ok();
}
Value flushFile(const Call& call) {
  stream(call).flush();
  return Value::ok();
}

std::u16string takeLine(TextStreamObject& from) {
  const std::u16string_view rest = from.rest();
  const std::size_t end = rest.find_first_of(u"\r\n");
  if (end == std::u16string_view::npos) {
    from.seek(from.content().size());
    return std::u16string(rest);
  }
  std::u16string line(rest.substr(0, end));
  from.seek(from.position() + end + (rest.substr(end, 2) == u"\r\n" ? 2 : 1));
  return line;
}

Value readLine(const Call& call) {
  auto& from = stream(call);
  if (from.atEnd()) throwEnd();
  return call.runtime.newString(takeLine(from));
}

Value readChar(const Call& call) {
  auto& from = stream(call);
  if (from.atEnd()) throwEnd();
  const std::u16string text(from.rest().substr(0, 1));
  from.seek(from.position() + 1);
  return call.runtime.newString(text);
}

Value readChars(const Call& call) {
  auto& from = stream(call);
  const std::int32_t count = toInteger(call.runtime, call[1]);
  if (count < 0 || static_cast<std::size_t>(count) > from.rest().size()) throwEnd();
  const std::u16string text(from.rest().substr(0, static_cast<std::size_t>(count)));
  from.seek(from.position() + text.size());
  return call.runtime.newString(text);
}

Value readDelimitedString(const Call& call) {
  auto& from = stream(call);
  const std::u16string_view delimiters = toString(call.runtime, call[1]);
  if (from.atEnd()) throwEnd();
  const std::u16string_view rest = from.rest();
  const std::size_t end = std::min(rest.find_first_of(delimiters), rest.size());
  const std::u16string text(rest.substr(0, end));
  from.seek(from.position() + end + 1);
  return call.runtime.newString(text);
}

// ok when the text was found and passed, undefined when not.
Value skipToString(const Call& call) {
  auto& from = stream(call);
  const std::u16string_view wanted = toString(call.runtime, call[1]);
  const std::size_t found = from.rest().find(wanted);
  if (found == std::u16string_view::npos) {
    from.seek(from.content().size());
    return {};
  }
  from.seek(from.position() + found + wanted.size());
  return Value::ok();
}

Value skipToNextLine(const Call& call) {
  takeLine(stream(call));
  return Value::ok();
}

// Reads the next expression of the stream and evaluates it.
Value readExpr(const Call& call) {
  auto& from = stream(call);
  if (from.atEnd()) throwEnd();
  const auto source = std::make_shared<const Source>(Source{from.path(), std::u16string(from.rest())});
  ScriptParser parser(source, call.runtime.scriptFinder());
  Tree tree;
  if (!parser.nextExpression(tree)) throwEnd();
  const std::size_t length = parser.consumed();
  from.seek(from.position() + length);
  return call.runtime.runSource(std::make_shared<const Source>(Source{u"", source->text.substr(0, length)}));
}

Value atEnd(const Call& call) { return Value::ofBoolean(stream(call).atEnd()); }
Value filePos(const Call& call) { return Value::ofInteger(static_cast<std::int32_t>(stream(call).position())); }
Value seek(const Call& call) {
  const std::int32_t position = toInteger(call.runtime, call[1]);
  if (position < 0) throwRuntimeError(u"seek position must not be negative");
  stream(call).seek(static_cast<std::size_t>(position));
  return Value::ok();
}

constexpr BuiltinEntry kEntries[] = {
    {u"print", 1, 2, print},
    {u"format", 1, -1, format},
    {u"clearListener", 0, 0, nothing},
    {u"createFile", 1, 1, createFile},
    {u"openFile", 1, 1, openFile},
    {u"close", 1, 1, closeFile},
    {u"flush", 1, 1, flushFile},
    {u"readLine", 1, 1, readLine},
    {u"readChar", 1, 1, readChar},
    {u"readChars", 2, 2, readChars},
    {u"readDelimitedString", 2, 2, readDelimitedString},
    {u"skipToString", 2, 2, skipToString},
    {u"skipToNextLine", 1, 1, skipToNextLine},
    {u"readExpr", 1, 1, readExpr},
    {u"readValue", 1, 1, readExpr},
    {u"eof", 1, 1, atEnd},
    {u"filePos", 1, 1, filePos},
    {u"seek", 2, 2, seek},
};

}  // namespace

std::span<const BuiltinEntry> textStreamBuiltins() { return kEntries; }

}  // namespace hostkit::script
