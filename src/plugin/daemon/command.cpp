#include "plugin/daemon/command.h"

#include <boost/lexical_cast.hpp>

#include "plugin/daemon/reply.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

void replyCountError(const CommandCall& call, std::size_t expected) {
  sendReply(call.socket, u"ERROR: " + std::u16string(call.word) + u": Expected " + to_wstring(std::uint64_t{expected}) +
                             (expected == 1 ? u" parameter, got " : u" parameters, got ") +
                             to_wstring(std::uint64_t{call.parameters.size()}));
}

void logCountError(const CommandCall& call, std::size_t expected) {
  log_file << std::u16string(call.word) << ": requires " << std::uint64_t{expected} << " parameters, got "
           << std::uint64_t{call.parameters.size()} << ", setting to false" << LogFile::endl;
}

template <class Number>
std::optional<Number> convert(Number (*parse)(const std::u16string&), const std::u16string& parameter) {
  try {
    return parse(parameter);
  } catch (const boost::bad_lexical_cast&) {
    return std::nullopt;
  }
}

}  // namespace

void runCommand(const CommandRow& row, const CommandCall& call) {
  using Kind = CountRule::Kind;
  if (row.begin != nullptr) row.begin(call);
  const std::size_t expected = row.parameters.count, received = call.parameters.size();
  if (row.parameters.kind == Kind::exactly && received != expected) return replyCountError(call, expected);
  if (row.parameters.kind == Kind::atLeast && received < expected) return replyCountError(call, expected);
  if (row.parameters.kind == Kind::exactlyOrOff && received != expected) {
    logCountError(call, expected);
    return row.turnOff(call);
  }
  row.run(call);
}

std::optional<std::int32_t> integerIn(const std::u16string& parameter) { return convert(&parse_int32, parameter); }
std::optional<float> floatIn(const std::u16string& parameter) { return convert(&parse_float, parameter); }

}  // namespace corvantis
