// The fake worker judges every other conversation, so it is judged here: it must notice what does not go as stated.
#include "support/scripted_peer.h"

#include <gmock/gmock.h>

#include "plugin/transport/simple_socket.h"

namespace corvantis::win32 {
namespace {

using support::ScriptedPeer;
using testing::ElementsAre;
using testing::HasSubstr;

class PeerOfATest : public testing::Test {
 protected:
  void connect() {
    peer.start();
    socket.connect("127.0.0.1", peer.port(), 1);
  }

  ScriptedPeer peer;
  simple_socket socket;
};

TEST_F(PeerOfATest, CarriesAWholeConversation) {
  peer.handshake("token").send("SetTitle").skipUntil("done").expectThat(HasSubstr("42")).answer("").close().expectEnd();
  connect();
  socket.send("token");
  EXPECT_EQ(socket.receive(-1), "TessarynStartup");
  socket.send("Corvantis May 27 2019 17:22:03 R");
  EXPECT_EQ(socket.receive(-1), "SetTitle");
  for (const char* message : {"one", "two", "done", "it is 42"}) socket.send(message);
  EXPECT_EQ(socket.receive(-1), "");
  EXPECT_THROW(socket.receive(-1), simple_socket_disconnect_error);
  peer.finish();
  EXPECT_THAT(peer.received(),
              ElementsAre("token", "Corvantis May 27 2019 17:22:03 R", "one", "two", "done", "it is 42"));
}

TEST_F(PeerOfATest, ShowsWhereAMessageDiffers) {
  peer.send("hello").expect("FUNCTION: GETAUXFILE 1");
  connect();
  socket.receive(-1);
  socket.send("FUNCTION: GETAUXFILE 2\n");
  EXPECT_EQ(peer.finishWithReport(),
            "step 2, expect:\n"
            "  expected \"FUNCTION: GETAUXFILE 1\"\n"
            "  got      \"FUNCTION: GETAUXFILE 2\\n\"\n"
            "                                 ^");
}

TEST_F(PeerOfATest, HangsUpAfterADifference) {
  peer.expectPrefix("ERROR: ").send("never");
  connect();
  socket.send("SUCCESS");
  EXPECT_THROW(socket.receive(-1), simple_socket_error);
  EXPECT_THAT(peer.finishWithReport(), HasSubstr("step 1, expect a beginning"));
}

TEST_F(PeerOfATest, NoticesWhatWasNotExpected) {
  peer.expect("first");
  connect();
  socket.send("first");
  socket.send("second");
  EXPECT_THAT(peer.finishWithReport(), HasSubstr("got more than was expected: \"\\x00\\x00\\x00\\x06second\""));
}

TEST_F(PeerOfATest, NoticesAMessageInPlaceOfTheEnd) {
  peer.expectEnd();
  connect();
  socket.send("");
  socket.close(true);
  EXPECT_THAT(peer.finishWithReport(), HasSubstr("expected the end of the connection"));
}

TEST_F(PeerOfATest, NoticesAnEarlyEnd) {
  peer.expect("message");
  connect();
  socket.close(true);
  EXPECT_THAT(peer.finishWithReport(), HasSubstr("the client closed the connection"));
}

TEST_F(PeerOfATest, SaysWhatWouldHaveMatched) {
  peer.expectThat(HasSubstr("42"));
  connect();
  socket.send("41");
  EXPECT_THAT(peer.finishWithReport(), HasSubstr("expected a message that has substring \"42\"\n  got      \"41\""));
}

}  // namespace
}  // namespace corvantis::win32
