#include "plugin/daemon/command.h"

#include <boost/lexical_cast.hpp>

#include "plugin/util/text.h"

namespace corvantis {
namespace {

template <class Number>
std::optional<Number> convert(Number (*parse)(const std::u16string&), const std::u16string& parameter) {
  try {
    return parse(parameter);
  } catch (const boost::bad_lexical_cast&) {
    return std::nullopt;
  }
}

}  // namespace

void sendReply(win32::simple_socket& connection, std::string_view word) { connection.send(word); }

void sendReply(win32::simple_socket& connection, std::string_view word, const std::u16string& text) {
  connection.send(std::string(word) + to_utf8(text));
}

void sendReply(win32::simple_socket& connection, std::string_view word, const std::string& text) {
  connection.send(std::string(word) + to_utf8(text));
}

void replyError(const CommandCall& call, const std::u16string& text) {
  sendReply(call.connection, protocol::kError, to_wstring(std::string(call.row.word)) + u": " + text);
}

std::u16string invalidParameter(const CommandCall& call, std::size_t index, const std::u16string& what,
                                BeforeComma gap) {
  return u"Parameter " + to_wstring(std::uint64_t{index + 1}) + (gap == BeforeComma::blank ? u" , \"" : u", \"") +
         call.parameters[index] + u"\", is not " + what + u".";
}

std::optional<std::int32_t> integerIn(const std::u16string& parameter) { return convert(&parse_int32, parameter); }
std::optional<float> floatIn(const std::u16string& parameter) { return convert(&parse_float, parameter); }

}  // namespace corvantis
