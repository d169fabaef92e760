#include "plugin/render/render_callback.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/clock.h"
#include "platform/environment.h"
#include "plugin/util/log_file.h"
#include "support/fake_clock.h"
#include "support/log_capture.h"
#include "support/scripted_peer.h"

namespace corvantis {
namespace {

using Messages = std::vector<std::string>;

class RenderCallback : public testing::Test {
 protected:
  // The time of the last report outlives each test, so every test starts far from where the last one stood.
  RenderCallback() {
    static std::uint32_t start = 0;
    start += 10'000'000;
    clock.setTickCount(start);
  }

  // Expects `work` on a fresh callback to send the worker exactly these messages.
  void expectSent(const Messages& messages, const std::function<void(CorvantisRenderCallback&)>& work,
                  const std::u16string& passPrefix = u"") {
    support::ScriptedPeer peer;
    for (const std::string& message : messages) peer.expect(message);
    peer.expectEnd();
    peer.start();
    win32::simple_socket connection;
    connection.connect("127.0.0.1", peer.port(), 1);
    CorvantisRenderCallback callback(connection, passPrefix);
    work(callback);
    connection.close(true);
    peer.finish();
  }

  void later(std::uint32_t milliseconds = 1000) { clock.advance(milliseconds); }

  support::FakeClock clock;
  platform::ClockReplacement replacement{clock};
};

TEST_F(RenderCallback, SendsTitlesCleanedUnlessTheyNameTheRenderingPhase) {
  const std::pair<const char16_t*, const char*> cases[] = {
      {u"Preparing lights", "Preparing lights"},
      {u"Line one\r\nLine two\r\n", "Line one Line two"},
      {u"a\n\nb\rc\n\r\n\r", "a  bc"},
      {u"\r\n", ""},
      {nullptr, ""},
      {u"L\u00fcster \u2603", "L\xc3\xbcster \xe2\x98\x83"},
      {u"Compiling geometry 12%", "Compiling geometry 12%"},
      {u"Rendered", "Rendered"},
      {u"rendering ", "rendering "},
      {u"rendering..", "rendering.."},
      {u"50% rendering", "50% rendering"},
      {u"quality reached", "quality reached"},
  };
  for (const auto& [title, sent] : cases) {
    expectSent({std::string("FUNCTION: STDOUT: ") + sent},
               [given = title](auto& callback) { callback.SetTitle(given); });
  }
  for (const char16_t* title : {u"Rendering Image...\r\n", u"Rendering images", u"x rendering image y", u"RENDERING",
                                u"rendering...", u"Quality reached: 0.5", u"50%  Rendering tiles"}) {
    expectSent({}, [&](auto& callback) { callback.SetTitle(title); });
  }
}

TEST_F(RenderCallback, LeavesOutTheScenePreparationsOfRendererB) {
  expectSent(
      {"FUNCTION: STDOUT: Compiling geometry", "FUNCTION: SETTITLE Compiling geometry 12% - 10.0%",
       "FUNCTION: PROGRESS -1"},
      [&](auto& callback) {
        callback.isRendererB = true;
        for (const char16_t* title : {u"Loading Bitmaps a.png", u"Updating object Box01", u"updating instances 3",
                                      u"Updating transformation matrices 4", u"Rendering image"}) {
          callback.SetTitle(title);
        }
        callback.SetTitle(u"Compiling geometry");  // without the blank it is another text
        callback.SetTitle(u"Compiling geometry 12%");
        callback.Progress(10, 100);  // the title was stored all the same
      });
}

TEST_F(RenderCallback, ReportsTitleAndProgress) {
  const struct {
    const char16_t* title;
    int done, total, pass, passes;  // no passes: 0
    Messages sent;
  } cases[] = {
      {u"Rendering Image...", 45, 100, 0, 0, {"SETTITLE Rendering Image... - 45.0%", "PROGRESS 45"}},
      {u"Rendering Image...", 150, 100, 0, 0, {"SETTITLE Rendering Image... - 100.0%", "PROGRESS 100"}},
      {u"Rendering Image...", 1, 3, 0, 0, {"SETTITLE Rendering Image... - 33.3%", "PROGRESS 33.3333"}},
      {u"Rendering Image...", 1, 1000000, 0, 0, {"SETTITLE Rendering Image... - 0.0%", "PROGRESS 0.0001"}},
      // No percentage without progress or under another title.
      {u"Rendering", 0, 100, 0, 0, {"PROGRESS -1"}},
      {nullptr, -5, 100, 0, 0, {"STDOUT: ", "PROGRESS -1"}},
      {nullptr, 10, 100, 0, 0, {"STDOUT: ", "SETTITLE  - 10.0%", "PROGRESS -1"}},
      {u"Preparing", 10, 100, 0, 0, {"STDOUT: Preparing", "SETTITLE Preparing - 10.0%", "PROGRESS -1"}},
      // Each pass is its share of the whole.
      {u"Rendering", 50, 100, 2, 4, {"SETTITLE Pass 2 of 4 - Rendering - 50.0%", "PROGRESS 37.5"}},
      {u"Rendering", 50, 100, 1, 4, {"SETTITLE Pass 1 of 4 - Rendering - 50.0%", "PROGRESS 12.5"}},
      {u"Rendering", 100, 100, 3, 3, {"SETTITLE Pass 3 of 3 - Rendering - 100.0%", "PROGRESS 100"}},
      {u"Rendering", 30, 100, 1, 1, {"SETTITLE Pass 1 of 1 - Rendering - 30.0%", "PROGRESS 30"}},
  };
  for (const auto& c : cases) {
    later();
    Messages messages;
    for (const std::string& text : c.sent) messages.push_back("FUNCTION: " + text);
    expectSent(messages, [&](auto& callback) {
      if (c.passes != 0) callback.setPass(c.pass, c.passes);
      callback.SetTitle(c.title);
      EXPECT_EQ(callback.Progress(c.done, c.total), 1);
    });
  }
  later();
  const auto renderTenth = [](auto& callback) {
    callback.SetTitle(u"Rendering");
    callback.Progress(10, 100);
  };
  expectSent({"FUNCTION: SETTITLE Shadow: Rendering - 10.0%", "FUNCTION: PROGRESS 10"}, renderTenth, u"Shadow: ");
}

TEST_F(RenderCallback, ReportsAtMostOnceASecondOverAllObjects) {
  const auto progress = [](auto& callback) { EXPECT_EQ(callback.Progress(0, 100), 1); };
  const Messages one = {"FUNCTION: PROGRESS -1"};
  expectSent(one, [&](auto& callback) {
    progress(callback);
    later(999);
    progress(callback);
  });
  expectSent({}, progress);
  later(1);
  expectSent(one, progress);
  later(500);
  expectSent({}, progress);

  clock.setTickCount(0xF0000000U);  // far from the last report of whatever ran before, and from 0 where nothing did
  expectSent(one, progress);
  clock.setTickCount(0xFFFFFF00U);
  expectSent(one, progress);
  later(512);  // across the wrap of the counter
  expectSent({}, progress);
  later(488);
  expectSent(one, progress);
}

TEST_F(RenderCallback, DropsWhatCannotBeReportedWithoutUsingItsTurn) {
  const std::uint64_t pumped = platform::pumpCount();
  expectSent({"FUNCTION: STDOUT: Initializing Ray Server"}, [&](auto& callback) {
    EXPECT_EQ(callback.Progress(10, 0), 1);
    callback.SetTitle(u"Initializing Ray Server");
    EXPECT_EQ(callback.Progress(10, 100), 1);
  });
  EXPECT_EQ(platform::pumpCount(), pumped);
  expectSent({"FUNCTION: STDOUT: initializing ray server", "FUNCTION: PROGRESS -1"}, [&](auto& callback) {
    callback.SetTitle(u"initializing ray server");
    callback.Progress(0, 100);
  });
  EXPECT_EQ(platform::pumpCount(), pumped + 1);
}

TEST_F(RenderCallback, LogsAndSwallowsALostConnection) {
  support::LogCapture log;
  win32::simple_socket unconnected;
  CorvantisRenderCallback callback(unconnected, u"");
  callback.SetTitle(u"Preparing lights");  // leaves no trace
  EXPECT_EQ(log.lines(), Messages{});
  EXPECT_EQ(callback.Progress(10, 100), 1);
  EXPECT_EQ(log.lines(), Messages{"caught simple socket excetion when handling progress: simple_socket: send called "
                                  "while not connected."});
  later();
  EXPECT_EQ(callback.Progress(10, 100), 1);  // the lock is free again
}

TEST_F(RenderCallback, SwallowsATitleThatIsNoText) {
  support::LogCapture log;
  expectSent({"FUNCTION: PROGRESS -1", "FUNCTION: PROGRESS -1"}, [&](auto& callback) {
    callback.SetTitle(u"broken \xd800");  // leaves no trace
    callback.Progress(0, 100);
    EXPECT_EQ(log.lines(), Messages{});
    later();
    EXPECT_EQ(callback.Progress(10, 100), 1);
    EXPECT_EQ(log.lines(), Messages{"progress could not be reported: Invalid UTF-16"});
    later();
    callback.Progress(0, 100);  // the lock is free again
  });
}

}  // namespace
}  // namespace corvantis
