#include "plugin/daemon/requests/requests.h"

#include <gmock/gmock.h>
#include <utf8.h>

#include <boost/lexical_cast/bad_lexical_cast.hpp>
#include <functional>
#include <limits>

#include "hostsdk/script_value.h"
#include "platform/environment.h"
#include "support/log_capture.h"
#include "support/packet_socket.h"

namespace corvantis {
namespace {

using namespace std::string_literals;
using testing::ThrowsMessage;

const std::u16string kUnpaired = u"lone \xD83D"s;
constexpr const char* kSendUnconnected = "simple_socket: send called while not connected.";

// Beyond Windows-1252: a character of it, one that it lacks, and one outside the first plane.
const std::u16string kForeignKey = u"\u00FC\u65E5\U0001F600";
constexpr const char* kForeignAsAnsi = "\xC3\xBC???";
constexpr const char* kForeignWhole = "\xC3\xBC\xE6\x97\xA5\xF0\x9F\x98\x80";

class Requests : public win32::PacketSocket {
 protected:
  support::LogCapture log;
};

struct Notice {
  std::string word;
  std::function<void(win32::simple_socket&, const std::u16string&)> send;
  bool logged = false, drains = false;
};

std::vector<Notice> notices() {
  return {{"STDOUT: MaxCorvantis: ", [](auto& to, auto& text) { sendStdoutLine(to, text); }, true},
          {"WARN: MaxCorvantis: ", sendWarnLine, true},
          {"STDOUT: ", relayStdoutLine},
          {"WARN: ", relayWarnLine},
          {"SETTITLE ", sendTitle, false, true}};
}

TEST_F(Requests, NoticesReachTheWorkerWholeAndTheSystemsOwnAreLogged) {
  for (const Notice& notice : notices())
    peer.expect("FUNCTION: " + notice.word + kForeignWhole).expect("FUNCTION: " + notice.word);
  connect();
  std::vector<std::string> logged;
  for (const Notice& notice : notices()) {
    notice.send(socket, kForeignKey);
    notice.send(socket, u"");
    if (notice.logged) logged.insert(logged.end(), {"\xFC???", ""});
    EXPECT_EQ(log.lines(), logged) << notice.word;
  }
  // Text that is no UTF-16 reaches the caller as an error, written to the log before the conversion is tried.
  for (const Notice& notice : notices()) {
    EXPECT_THAT([&] { notice.send(socket, kUnpaired); }, ThrowsMessage<utf8::invalid_utf16>("Invalid UTF-16"));
    if (notice.logged) logged.emplace_back("lone ?");
  }
  EXPECT_EQ(log.lines(), logged);
  peer.finish();
}

// Every question, asked for the same key or index, with what tells it from the others.
struct Question {
  const char* scriptFunction;
  std::string request;
  std::string negativeText;
  std::function<std::u16string(win32::simple_socket&)> ask;
};

std::vector<Question> questions() {
  const auto keyed = [](const char* function, const std::string& word, auto request) {
    return Question{function, "FUNCTION: " + word + " " + kForeignAsAnsi, "Key \xFC??? doesn't exist",
                    [request](auto& connection) { return request(connection, kForeignKey); }};
  };
  return {
      keyed("GetJobInfoEntry", "GETJOBINFOENTRY", requestJobInfoEntry),
      keyed("GetSubmitInfoEntry", "GETSUBMITINFOENTRY", requestSubmitInfoEntry),
      keyed("GetSubmitInfoEntryElementCount", "GETSUBMITINFOENTRYELEMENTCOUNT",
            [](auto&... given) { return to_wstring(requestSubmitInfoEntryElementCount(given...)); }),
      keyed("GetSubmitInfoEntryElement", "GETSUBMITINFOENTRYELEMENT -2147483648",
            [](auto& connection, auto& key) {
              return requestSubmitInfoEntryElement(connection, std::numeric_limits<std::int32_t>::min(), key);
            }),
      {"GetAuxFilename", "FUNCTION: GETAUXFILE -1", "Aux file requested doesn't exist",
       [](auto& connection) { return requestAuxFilename(connection, -1); }},
      {"GetPathMappedFilename", "FUNCTION: GETPATHMAPPEDFILENAME "s + kForeignWhole,
       "GetPathMappedFilename did not return successfully.",
       [](auto& connection) { return requestPathMappedFilename(connection, kForeignKey); }},
  };
}

TEST_F(Requests, AnAnswerIsTakenToTheLetterOrNegative) {
  const std::pair<const char*, std::u16string> positive[] = {{"SUCCESS: ", u""},
                                                             {"SUCCESS:  two ", u" two "},
                                                             {"SUCCESS: SUCCESS: ", u"SUCCESS: "},
                                                             {"SUCCESS: \xC3\xBC\nb", u"\u00FC\nb"}};
  const std::vector<std::string> negative = {"",           "ERROR: no",   "SUCCESS",   "SUCCESS:",  "SUCCESS x",
                                             "success: x", " SUCCESS: x", "SUCCESS:x", "SUCCESS:\t"};
  for (const auto& [answer, value] : positive) peer.expect("FUNCTION: GETAUXFILE 0").answer(answer);
  for (const Question& question : questions()) {
    peer.expect(question.request).answer("SUCCESS: 42");
    for (const std::string& answer : negative) peer.expect(question.request).answer(answer);
  }
  connect();
  for (const auto& [answer, value] : positive) EXPECT_EQ(requestAuxFilename(socket, 0), value);
  for (const Question& question : questions()) {
    EXPECT_EQ(question.ask(socket), u"42") << question.scriptFunction;
    for (const std::string& answer : negative)
      EXPECT_THAT([&] { question.ask(socket); }, ThrowsMessage<std::invalid_argument>(question.negativeText))
          << question.scriptFunction << " answered " << answer;
  }
  peer.finish();
}

TEST_F(Requests, ACountMustBeAnIntegerAndEveryAnswerUtf8) {
  const std::vector<std::string> values = {"", "3 ", "three", "2147483648", "1.5"};
  for (const std::string& value : values)
    peer.skipUntil("FUNCTION: GETSUBMITINFOENTRYELEMENTCOUNT k").answer("SUCCESS: " + value);
  peer.expect("FUNCTION: GETAUXFILE 1").answer("SUCCESS: \xFF");
  connect();
  for (const std::string& value : values) {
    EXPECT_THAT([&] { requestSubmitInfoEntryElementCount(socket, u"k"); },
                ThrowsMessage<boost::bad_lexical_cast>(
                    "bad lexical cast: source type value could not be interpreted as target"))
        << value;
  }
  EXPECT_THAT([&] { requestAuxFilename(socket, 1); }, ThrowsMessage<utf8::invalid_utf8>("Invalid UTF-8"));
  EXPECT_THAT([&] { requestPathMappedFilename(socket, kUnpaired); },
              ThrowsMessage<utf8::invalid_utf16>("Invalid UTF-16"));
  peer.finish();
}

void expectScriptError(const Question& question, win32::simple_socket& connection, const std::string& failure) {
  try {
    question.ask(connection);
    ADD_FAILURE() << question.scriptFunction << " did not fail";
  } catch (const hostsdk::RuntimeError& error) {
    EXPECT_EQ(to_utf8(error.message()), "Error in "s + question.scriptFunction + ": " + failure);
  }
}

TEST_F(Requests, AWorkerThatDoesNotAnswerOrHangsUpIsAScriptError) {
  const Question question = questions().front();
  peer.expect(question.request).letTimePass(clock, 119999).letTimePass(clock, 1);
  peer.expect(question.request).close().expectEnd();
  connect();
  expectScriptError(question, socket, "simple_socket: Timed out waiting for header packet to arrive.");
  EXPECT_TRUE(socket.isConnected());
  expectScriptError(question, socket, "simple_socket::receive: socket was disconnected while reading header.");
  EXPECT_FALSE(socket.isConnected());
  peer.finish();
}

TEST_F(Requests, NoticesNeverFailTheirCaller) {
  const auto drainsOf = [](const auto& operation) {
    const std::uint64_t before = platform::pumpCount();
    operation();
    return platform::pumpCount() - before;
  };
  std::vector<std::string> logged;
  for (const Notice& notice : notices()) {
    EXPECT_EQ(drainsOf([&] { notice.send(socket, u"text"); }), notice.drains ? 1U : 0U) << notice.word;
    if (notice.logged)
      logged.insert(logged.end(), {"text", "  failed to send this message to Tessaryn because: "s + kSendUnconnected});
    EXPECT_EQ(log.lines(), logged) << notice.word;
  }
  EXPECT_EQ(drainsOf([&] { EXPECT_TRUE(sendProgress(socket, 5)); }), 1U);
  EXPECT_EQ(log.lines(), logged);
  // Those of the render callback do, which reports the failure itself.
  EXPECT_THAT([&] { postTitle(socket, u"text"); }, ThrowsMessage<win32::simple_socket_error>(kSendUnconnected));
  EXPECT_THAT([&] { postProgress(socket, 5); }, ThrowsMessage<win32::simple_socket_error>(kSendUnconnected));
  // A question is a script error, and the message queue is drained first.
  for (const Question& question : questions())
    EXPECT_EQ(drainsOf([&] { expectScriptError(question, socket, kSendUnconnected); }), 1U);
}

}  // namespace
}  // namespace corvantis
