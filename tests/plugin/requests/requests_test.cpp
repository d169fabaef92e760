#include "plugin/daemon/requests/requests.h"

#include <gmock/gmock.h>
#include <utf8.h>

#include <boost/lexical_cast/bad_lexical_cast.hpp>
#include <functional>
#include <limits>

#include "hostsdk/script_value.h"
#include "platform/environment.h"
#include "plugin/util/log_file.h"
#include "support/fake_clock.h"
#include "support/scripted_peer.h"
#include "support/temporary_folder.h"

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

class Requests : public testing::Test {
 protected:
  Requests() { log_file.open(folder.wide("log")); }
  ~Requests() override { log_file.close(); }

  void connect() {
    peer.start();
    connection.connect("127.0.0.1", peer.port(), 1);
  }
  std::string log() const { return folder.readText("log"); }

  support::TemporaryFolder folder;
  support::FakeClock clock;
  platform::ClockReplacement replacement{clock};
  support::ScriptedPeer peer;
  win32::simple_socket connection;
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
  std::string logged;
  for (const Notice& notice : notices()) {
    notice.send(connection, kForeignKey);
    notice.send(connection, u"");
    if (notice.logged) logged += "\xFC???\n\n";
    EXPECT_EQ(log(), logged) << notice.word;
  }
  peer.finish();
}

TEST_F(Requests, ProgressIsWrittenWithSixDigits) {
  const struct {
    float percent;
    const char* text;
  } rows[] = {{0.0F, "0"},     {50.0F, "50"}, {12.5F, "12.5"}, {33.333333F, "33.3333"},
              {100.0F, "100"}, {-1.0F, "-1"}, {1e-7F, "1e-07"}};
  for (const auto& row : rows) peer.expect("FUNCTION: PROGRESS "s + row.text);
  connect();
  for (const auto& row : rows) EXPECT_TRUE(sendProgress(connection, row.percent));
  peer.finish();
}

TEST_F(Requests, NoticesNeverFailTheirCaller) {
  std::string logged;
  for (const Notice& notice : notices()) {
    notice.send(connection, u"text");
    if (notice.logged) logged += "text\n  failed to send this message to Tessaryn because: "s + kSendUnconnected + "\n";
    EXPECT_EQ(log(), logged) << notice.word;
  }
  EXPECT_TRUE(sendProgress(connection, 5));
  EXPECT_EQ(log(), logged);
  // Those of the render callback do, which reports the failure itself.
  EXPECT_THAT([&] { postTitle(connection, u"text"); }, ThrowsMessage<win32::simple_socket_error>(kSendUnconnected));
  EXPECT_THAT([&] { postProgress(connection, 5); }, ThrowsMessage<win32::simple_socket_error>(kSendUnconnected));
}

TEST_F(Requests, TextThatIsNoUtf16ReachesTheCallerAsAnError) {
  connect();
  for (const Notice& notice : notices())
    EXPECT_THAT([&] { notice.send(connection, kUnpaired); }, ThrowsMessage<utf8::invalid_utf16>("Invalid UTF-16"));
  EXPECT_THAT([&] { requestPathMappedFilename(connection, kUnpaired); },
              ThrowsMessage<utf8::invalid_utf16>("Invalid UTF-16"));
  EXPECT_EQ(log(), "lone ?\nlone ?\n");  // written before the conversion was tried
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

TEST_F(Requests, TheValueOfAPositiveAnswerIsTakenToTheLetter) {
  const struct {
    const char* answer;
    std::u16string value;
  } rows[] = {{"SUCCESS: ", u""},
              {"SUCCESS:  two ", u" two "},
              {"SUCCESS: SUCCESS: ", u"SUCCESS: "},
              {"SUCCESS: \xC3\xBC\nb", u"\u00FC\nb"}};
  for (const Question& question : questions()) peer.expect(question.request).answer("SUCCESS: 42");
  for (const auto& row : rows) peer.expect("FUNCTION: GETAUXFILE 0").answer(row.answer);
  connect();
  for (const Question& question : questions()) EXPECT_EQ(question.ask(connection), u"42") << question.scriptFunction;
  for (const auto& row : rows) EXPECT_EQ(requestAuxFilename(connection, 0), row.value);
  peer.finish();
}

TEST_F(Requests, AnyOtherAnswerIsNegative) {
  const std::vector<std::string> answers = {"",           "ERROR: no",   "SUCCESS",   "SUCCESS:",  "SUCCESS x",
                                            "success: x", " SUCCESS: x", "SUCCESS:x", "SUCCESS:\t"};
  for (const std::string& answer : answers) {
    for (const Question& question : questions()) peer.expect(question.request).answer(answer);
  }
  connect();
  for (const std::string& answer : answers) {
    for (const Question& question : questions()) {
      EXPECT_THAT([&] { question.ask(connection); }, ThrowsMessage<std::invalid_argument>(question.negativeText))
          << question.scriptFunction << " answered " << answer;
    }
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
    EXPECT_THAT([&] { requestSubmitInfoEntryElementCount(connection, u"k"); },
                ThrowsMessage<boost::bad_lexical_cast>(
                    "bad lexical cast: source type value could not be interpreted as target"))
        << value;
  }
  EXPECT_THAT([&] { requestAuxFilename(connection, 1); }, ThrowsMessage<utf8::invalid_utf8>("Invalid UTF-8"));
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
  expectScriptError(question, connection, "simple_socket: Timed out waiting for header packet to arrive.");
  EXPECT_TRUE(connection.isConnected());
  expectScriptError(question, connection, "simple_socket::receive: socket was disconnected while reading header.");
  EXPECT_FALSE(connection.isConnected());
  peer.finish();
}

TEST_F(Requests, AMissingConnectionIsAScriptErrorButTheMessageQueueIsDrainedFirst) {
  const auto drainsOf = [](const auto& operation) {
    const std::uint64_t before = platform::pumpCount();
    operation();
    return platform::pumpCount() - before;
  };
  for (const Question& question : questions())
    EXPECT_EQ(drainsOf([&] { expectScriptError(question, connection, kSendUnconnected); }), 1U);
  for (const Notice& notice : notices())
    EXPECT_EQ(drainsOf([&] { notice.send(connection, u"t"); }), notice.drains ? 1U : 0U) << notice.word;
  EXPECT_EQ(drainsOf([&] { sendProgress(connection, 1); }), 1U);
  EXPECT_EQ(drainsOf([&] { pump_messages(); }), 1U);
}

}  // namespace
}  // namespace corvantis
