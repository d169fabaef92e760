#include "support/scripted_peer.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "protocol/words.h"
#include "support/peer_conversation.h"

namespace support {
namespace {

std::string header(std::uint32_t size) {
  return {static_cast<char>(size >> 24), static_cast<char>(size >> 16), static_cast<char>(size >> 8),
          static_cast<char>(size)};
}

bool isContinuationByte(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

}  // namespace

std::string escape(const std::string& text) {
  std::ostringstream out;
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (character == '\n') {
      out << "\\n";
    } else if (byte < 0x20 || byte == 0x7F) {
      out << "\\x"
          << "0123456789abcdef"[byte >> 4] << "0123456789abcdef"[byte & 15];
    } else {
      out << character;
    }
  }
  return out.str();
}

std::string describeDifference(const std::string& expected, const std::string& got) {
  const std::string left = escape(expected);
  const std::string right = escape(got);
  const auto end = std::mismatch(left.begin(), left.end(), right.begin(), right.end()).first;
  const auto column = std::count_if(left.begin(), end, [](char byte) { return !isContinuationByte(byte); });
  return "  expected \"" + left + "\"\n  got      \"" + right + "\"\n" +
         std::string(std::string("  expected \"").size() + static_cast<std::size_t>(column), ' ') + "^";
}

ScriptedPeer::ScriptedPeer() : conversation_(std::make_unique<Conversation>()) {}

ScriptedPeer::~ScriptedPeer() {
  if (!conversation_->finished()) finish();
}

std::uint16_t ScriptedPeer::port() const { return conversation_->port(); }

ScriptedPeer& ScriptedPeer::expect(const std::string& message) {
  conversation_->add("expect", [talk = conversation_.get(), message] {
    const std::string got = talk->readMessage();
    if (got != message) throw Departure(describeDifference(message, got));
  });
  return *this;
}

ScriptedPeer& ScriptedPeer::expectPrefix(const std::string& prefix) {
  conversation_->add("expect a beginning", [talk = conversation_.get(), prefix] {
    const std::string got = talk->readMessage();
    if (!got.starts_with(prefix)) throw Departure(describeDifference(prefix, got));
  });
  return *this;
}

ScriptedPeer& ScriptedPeer::expectThat(const testing::Matcher<std::string>& matcher) {
  conversation_->add("expect a match", [talk = conversation_.get(), matcher] {
    const std::string got = talk->readMessage();
    testing::StringMatchResultListener why;
    if (matcher.MatchAndExplain(got, &why)) return;
    std::ostringstream wish;
    matcher.DescribeTo(&wish);
    throw Departure("  expected a message that " + wish.str() + "\n  got      \"" + escape(got) + "\"" + why.str());
  });
  return *this;
}

ScriptedPeer& ScriptedPeer::skipUntil(const std::string& message) {
  conversation_->add("skip until \"" + escape(message) + "\"", [talk = conversation_.get(), message] {
    while (talk->readMessage() != message) {
    }
  });
  return *this;
}

ScriptedPeer& ScriptedPeer::expectRaw(const std::string& bytes) {
  conversation_->add("expect bytes", [talk = conversation_.get(), bytes] {
    const std::string got = talk->readExactly(bytes.size());
    if (got != bytes) throw Departure(describeDifference(bytes, got));
  });
  return *this;
}

ScriptedPeer& ScriptedPeer::expectEnd() {
  conversation_->add("expect the end", [talk = conversation_.get()] { talk->expectEnd(); });
  return *this;
}

ScriptedPeer& ScriptedPeer::send(const std::string& message) {
  return sendRaw(header(static_cast<std::uint32_t>(message.size())) + message);
}

ScriptedPeer& ScriptedPeer::sendRaw(const std::string& bytes) {
  conversation_->add("send", [talk = conversation_.get(), bytes] { talk->write(bytes); });
  return *this;
}

ScriptedPeer& ScriptedPeer::stallAfterHeader(std::uint32_t size) { return sendRaw(header(size)); }

ScriptedPeer& ScriptedPeer::handshake(const std::string& token) {
  return expect(token).send(std::string(protocol::kStartup)).expectPrefix(std::string(protocol::kIdentification));
}

ScriptedPeer& ScriptedPeer::letTimePass(FakeClock& clock, std::uint32_t milliseconds) {
  return then([&clock, milliseconds] {
    if (!clock.awaitWaiter(kSafetyLimit)) throw Departure("  nobody waited, so no time could pass");
    clock.advance(milliseconds);
  });
}

ScriptedPeer& ScriptedPeer::then(std::function<void()> action) {
  conversation_->add("action", std::move(action));
  return *this;
}

ScriptedPeer& ScriptedPeer::close() {
  conversation_->add("close", [talk = conversation_.get()] { talk->endOfSpeech(); });
  return *this;
}

ScriptedPeer& ScriptedPeer::reset() {
  conversation_->add("reset", [talk = conversation_.get()] { talk->breakOff(); });
  return *this;
}

void ScriptedPeer::start() { conversation_->start(); }

void ScriptedPeer::awaitSteps() { conversation_->awaitSteps(); }

void ScriptedPeer::finish() {
  if (const std::string report = finishWithReport(); !report.empty()) ADD_FAILURE() << "scripted peer, " << report;
}

std::string ScriptedPeer::finishWithReport() { return conversation_->finish(); }

const std::vector<std::string>& ScriptedPeer::received() const { return conversation_->received(); }

}  // namespace support
