#include "hostkit/script/syntax/errors.h"

#include "hostkit/script/syntax/text.h"

namespace hostkit::script {

void throwRuntimeError(std::u16string_view text) { throw ScriptError(u"-- Runtime error: " + std::u16string(text)); }
void throwTypeError(std::u16string_view text) { throw ScriptError(u"-- Type error: " + std::u16string(text)); }

void throwUnableToConvert(std::u16string_view printed, std::u16string_view type) {
  throw ScriptError(u"-- Unable to convert: " + std::u16string(printed) + u" to type: " + std::u16string(type));
}

void throwArgumentCount(std::u16string_view function, std::size_t wanted, std::size_t got) {
  throw ScriptError(u"-- Argument count error: " + std::u16string(function) + u" wanted " + toText(wanted) + u", got " +
                    toText(got));
}

std::u16string toText(std::size_t number) { return widen(std::to_string(number)); }

namespace {

std::u16string describe(const Place& place) {
  if (!place.source) return u"";
  const LineColumn at = place.source->lineColumn(place.offset);
  return u"; filename: " + place.source->name + u"; position: " + toText(place.offset) + u"; line: " + toText(at.line);
}

// The line of the error and a caret below its column.
std::u16string excerpt(const Place& place) {
  const LineColumn at = place.source->lineColumn(place.offset);
  std::u16string margin;
  const std::u16string_view line = place.source->line(at.line);
  for (std::size_t i = 0; i + 1 < at.column && i < line.size(); ++i) margin += line[i] == u'\t' ? u'\t' : u' ';
  return u"--  " + std::u16string(line) + u"\n--  " + margin + u"^\n";
}

}  // namespace

std::u16string errorReport(const ScriptError& error, std::u16string_view scriptKind) {
  const auto& stack = error.stack();
  const std::u16string where = stack.empty() ? u"anonymous codeblock" : stack.front().what;
  std::u16string report = u"-- Error occurred in " + where + describe(error.place()) + u"\n";
  report += u"-- MAXScript " + std::u16string(scriptKind) + u" Exception:\n" + error.message() + u"\n";
  if (error.place().source) report += excerpt(error.place());
  if (stack.empty()) return report;
  report += u"-- MAXScript callstack:\n";
  std::size_t level = 0;
  for (const StackLevel& each : stack) {
    report +=
        u"--\t------------------------------------------------------\n--\t[stack level: " + toText(level++) + u"]\n";
    report += u"--\tIn " + each.what + describe(each.place) + u"\n";
    if (!each.variables.empty()) report += u"--\t\tLocals:\n";
    for (const auto& variable : each.variables) report += u"--\t\t\t" + variable + u"\n";
  }
  return report + u"--\t------------------------------------------------------\n--\tcalled from top-level\n";
}

}  // namespace hostkit::script
