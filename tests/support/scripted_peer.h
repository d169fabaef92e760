// A fake worker on a real loopback socket. A test states the conversation as a list of steps; the peer carries them out
// on a thread of its own and reports the first one that did not go as stated:
//
//   ScriptedPeer peer;
//   peer.handshake("token").send("StartJob,a.max").expect("SUCCESS Scene loaded successfully").close();
//   peer.start();
//   ... let the code under test connect to peer.port() ...
//   peer.finish();
#pragma once

#include <gmock/gmock.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "support/fake_clock.h"

namespace support {

// Where two texts part, for people: both, quoted and escaped, and a caret below the first difference.
std::string describeDifference(const std::string& expected, const std::string& got);

class ScriptedPeer {
 public:
  // Listens on a free port of 127.0.0.1.
  ScriptedPeer();
  // Finishes if the test has not.
  ~ScriptedPeer();
  ScriptedPeer(const ScriptedPeer&) = delete;
  ScriptedPeer& operator=(const ScriptedPeer&) = delete;

  std::uint16_t port() const;

  // Steps that listen. Each waits for the next message; a message that does not fit, an end of the connection, or
  // silence for 20 seconds of real time ends the conversation.
  ScriptedPeer& expect(const std::string& message);
  ScriptedPeer& expectPrefix(const std::string& prefix);
  ScriptedPeer& expectThat(const testing::Matcher<std::string>& matcher);
  // Passes over every message up to and with this one.
  ScriptedPeer& skipUntil(const std::string& message);
  // The next bytes as they are, whatever their message.
  ScriptedPeer& expectRaw(const std::string& bytes);
  // The client closes the connection, in order, without another message.
  ScriptedPeer& expectEnd();

  // Steps that speak.
  ScriptedPeer& send(const std::string& message);
  // The same; reads better after a question.
  ScriptedPeer& answer(const std::string& message) { return send(message); }
  ScriptedPeer& sendRaw(const std::string& bytes);
  // The header of a message of `size` bytes that never come, unless by sendRaw.
  ScriptedPeer& stallAfterHeader(std::uint32_t size);

  // The opening of every conversation: token, "TessarynStartup", "Corvantis " + some version.
  ScriptedPeer& handshake(const std::string& token);

  // Waits until the client waits for the peer, then lets that time pass on its clock.
  ScriptedPeer& letTimePass(FakeClock& clock, std::uint32_t milliseconds);
  // Does something on the peer's thread.
  ScriptedPeer& then(std::function<void()> action);

  // Last steps: the peer has nothing more to say, or breaks the connection off. Without either of them the connection
  // stays open until finish().
  ScriptedPeer& close();
  ScriptedPeer& reset();

  // No step can be added any more.
  void start();
  // Blocks until every step has been carried out, or one has failed.
  void awaitSteps();
  // The same, then ends the connection. What the client sent beyond the steps is a failure too. Fails the test with
  // the report of what went wrong.
  void finish();
  // As finish(), but hands the report over instead; empty when all went as stated.
  std::string finishWithReport();

  // Every whole message that arrived, in order. Only after finish().
  const std::vector<std::string>& received() const;

 private:
  class Conversation;
  std::unique_ptr<Conversation> conversation_;
};

}  // namespace support
