#include "plugin/render/render_callback.h"

#include <gtest/gtest.h>
#include <utf8.h>

#include <cstdint>
#include <functional>
#include <string>
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

TEST_F(RenderCallback, KnowsTheTitlesOfTheRenderingPhase) {
  for (const char16_t* title : {u"Rendering Image...", u"Rendering images", u"x rendering image y", u"RENDERING",
                                u"rendering...", u"Quality reached: 0.5", u"50%  Rendering tiles"}) {
    EXPECT_TRUE(isRenderingTitle(title)) << utf8::utf16to8(std::u16string(title));
  }
  for (const char16_t* title :
       {u"", u"Rendered", u"rendering ", u"rendering..", u"50% rendering", u"quality reached", u"Preparing lights"}) {
    EXPECT_FALSE(isRenderingTitle(title)) << utf8::utf16to8(std::u16string(title));
  }
}

TEST_F(RenderCallback, SendsInformativeTitlesCleaned) {
  struct Case {
    const char16_t* title;
    const char* sent;
  };
  const Case cases[] = {
      {u"Preparing lights", "FUNCTION: STDOUT: Preparing lights"},
      {u"Line one\r\nLine two\r\n", "FUNCTION: STDOUT: Line one Line two"},
      {u"a\n\nb\rc\n\r\n\r", "FUNCTION: STDOUT: a  bc"},
      {u"\r\n", "FUNCTION: STDOUT: "},
      {nullptr, "FUNCTION: STDOUT: "},
      {u"L\u00fcster \u2603", "FUNCTION: STDOUT: L\xc3\xbcster \xe2\x98\x83"},
      {u"Compiling geometry 12%", "FUNCTION: STDOUT: Compiling geometry 12%"},
  };
  for (const Case& c : cases) {
    expectSent({c.sent}, [&](CorvantisRenderCallback& callback) { callback.SetTitle(c.title); });
  }
  expectSent({}, [](CorvantisRenderCallback& callback) { callback.SetTitle(u"Rendering Image...\r\n"); });
}

TEST_F(RenderCallback, LeavesOutTheScenePreparationsOfRendererB) {
  expectSent(
      {"FUNCTION: STDOUT: Compiling geometry", "FUNCTION: SETTITLE Compiling geometry 12% - 10.0%",
       "FUNCTION: PROGRESS -1"},
      [&](CorvantisRenderCallback& callback) {
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

TEST_F(RenderCallback, ReportsProgressUnderARenderingTitle) {
  struct Case {
    int done, total;
    const char* title;
    const char* progress;
  };
  const Case cases[] = {
      {45, 100, "Rendering Image... - 45.0%", "45"},       {150, 100, "Rendering Image... - 100.0%", "100"},
      {1, 3, "Rendering Image... - 33.3%", "33.3333"},     {1, 8, "Rendering Image... - 12.5%", "12.5"},
      {1, 1000000, "Rendering Image... - 0.0%", "0.0001"},
  };
  for (const Case& c : cases) {
    later();
    expectSent({std::string("FUNCTION: SETTITLE ") + c.title, std::string("FUNCTION: PROGRESS ") + c.progress},
               [&](CorvantisRenderCallback& callback) {
                 callback.SetTitle(u"Rendering Image...");
                 EXPECT_EQ(callback.Progress(c.done, c.total), 1);
               });
  }
}

TEST_F(RenderCallback, ReportsNoPercentageWithoutProgressOrUnderOtherTitles) {
  expectSent({"FUNCTION: PROGRESS -1"}, [&](CorvantisRenderCallback& callback) {
    callback.SetTitle(u"Rendering");
    callback.Progress(0, 100);
  });
  later();
  expectSent({"FUNCTION: PROGRESS -1"}, [&](CorvantisRenderCallback& callback) { callback.Progress(-5, 100); });
  later();
  expectSent(
      {"FUNCTION: STDOUT: Preparing lights", "FUNCTION: SETTITLE Preparing lights - 10.0%", "FUNCTION: PROGRESS -1"},
      [&](CorvantisRenderCallback& callback) {
        callback.SetTitle(u"Preparing lights");
        callback.Progress(10, 100);
      });
  later();
  expectSent({"FUNCTION: SETTITLE  - 10.0%", "FUNCTION: PROGRESS -1"},
             [&](CorvantisRenderCallback& callback) { callback.Progress(10, 100); });
}

TEST_F(RenderCallback, SpreadsTheProgressOverThePasses) {
  struct Case {
    int pass, passes, done;
    const char* title;
    const char* progress;
  };
  const Case cases[] = {{2, 4, 50, "Pass 2 of 4 - Rendering - 50.0%", "37.5"},
                        {1, 4, 50, "Pass 1 of 4 - Rendering - 50.0%", "12.5"},
                        {3, 3, 100, "Pass 3 of 3 - Rendering - 100.0%", "100"},
                        {1, 1, 30, "Pass 1 of 1 - Rendering - 30.0%", "30"}};
  for (const Case& c : cases) {
    later();
    expectSent({std::string("FUNCTION: SETTITLE ") + c.title, std::string("FUNCTION: PROGRESS ") + c.progress},
               [&](CorvantisRenderCallback& callback) {
                 callback.setPass(c.pass, c.passes);
                 callback.SetTitle(u"Rendering");
                 callback.Progress(c.done, 100);
               });
  }
  later();
  expectSent(
      {"FUNCTION: SETTITLE Shadow: Rendering - 30.0%", "FUNCTION: PROGRESS 30"},
      [&](CorvantisRenderCallback& callback) {
        callback.SetTitle(u"Rendering");
        callback.Progress(30, 100);
      },
      u"Shadow: ");
}

TEST_F(RenderCallback, ReportsAtMostOnceASecondOverAllObjects) {
  const auto progress = [](CorvantisRenderCallback& callback) { EXPECT_EQ(callback.Progress(0, 100), 1); };
  expectSent({"FUNCTION: PROGRESS -1"}, [&](CorvantisRenderCallback& callback) {
    progress(callback);
    later(999);
    progress(callback);
  });
  expectSent({}, progress);
  later(1);
  expectSent({"FUNCTION: PROGRESS -1"}, progress);
  later(500);
  expectSent({}, progress);
}

TEST_F(RenderCallback, ThrottlesAcrossTheWrapOfTheTickCounter) {
  const auto progress = [](CorvantisRenderCallback& callback) { callback.Progress(0, 100); };
  clock.setTickCount(0xF0000000U);  // far from the last report of whatever ran before, and from 0 where nothing did
  expectSent({"FUNCTION: PROGRESS -1"}, progress);
  clock.setTickCount(0xFFFFFF00U);
  expectSent({"FUNCTION: PROGRESS -1"}, progress);
  clock.setTickCount(0x00000100U);  // 512 ms later
  expectSent({}, progress);
  clock.setTickCount(0x000002E8U);  // 1000 ms later
  expectSent({"FUNCTION: PROGRESS -1"}, progress);
}

TEST_F(RenderCallback, DropsWhatCannotBeReportedWithoutUsingItsTurn) {
  const std::uint64_t pumped = platform::pumpCount();
  expectSent({"FUNCTION: STDOUT: Initializing Ray Server"}, [&](CorvantisRenderCallback& callback) {
    EXPECT_EQ(callback.Progress(10, 0), 1);
    callback.SetTitle(u"Initializing Ray Server");
    EXPECT_EQ(callback.Progress(10, 100), 1);
  });
  EXPECT_EQ(platform::pumpCount(), pumped);
  expectSent({"FUNCTION: STDOUT: initializing ray server", "FUNCTION: PROGRESS -1"},
             [&](CorvantisRenderCallback& callback) {
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
  expectSent({"FUNCTION: PROGRESS -1"}, [&](CorvantisRenderCallback& callback) {
    callback.SetTitle(u"broken \xd800");
    callback.Progress(0, 100);
    later();
    EXPECT_THROW(callback.Progress(10, 100), utf8::invalid_utf16);
  });
}

TEST_F(RenderCallback, IgnoresTheHostsOtherNotifications) {
  expectSent({}, [](CorvantisRenderCallback& callback) {
    callback.SetCurrentField(1);
    callback.SetSceneStatistics(1, 2, 3, 4, 5);
    callback.SetStep(1, 2);
  });
}

}  // namespace
}  // namespace corvantis
