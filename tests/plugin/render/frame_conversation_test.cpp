#include "frame_fixture.h"
#include "support/scripted_peer.h"

namespace corvantis {
namespace {

class FrameConversation : public support::FrameFixture {
 protected:
  // Renders the frame and expects the worker to be sent exactly these messages from the first of them on.
  void expectSent(std::int32_t frame, const std::vector<std::string>& messages) {
    support::ScriptedPeer peer;
    peer.skipUntil(messages.front());
    for (auto message = messages.begin() + 1; message != messages.end(); ++message) peer.expect(*message);
    peer.expectEnd();
    peer.start();
    connection.connect("127.0.0.1", peer.port(), 1);
    EXPECT_EQ(render(frame), "");
    connection.close(true);
    peer.finish();
  }
  static std::string line(const std::string& text) { return "FUNCTION: STDOUT: MaxCorvantis: " + text; }
  std::string file(const std::string& name) const { return support::narrow(at(name)); }
};

TEST_F(FrameConversation, CarriesStagesProgressAndWarnings) {
  addElement(u"Z", u"");
  host.core.progress = {{u"Rendering Image...", 50, 100}};
  clock.setTickCount(3'000'000'000U);
  expectSent(7, {line("Render frame 7"),
                 line("Rendering frame \"" + file("beauty0007.exr") + "\""),
                 line("Rendering 1 render elements"),
                 line("Setting up render parameters"),
                 line("Rendering viewport"),
                 line("Opening renderer"),
                 line("Multipass disabled"),
                 line("Rendering 1 passes"),
                 line("Checking output paths"),
                 line("Checking default actions"),
                 line("  TYPE_MISSING_EXTERNAL_FILES = FAIL"),
                 line("  TYPE_MISSING_UVWS = FAIL"),
                 line("  TYPE_MISSING_DLL_FILES = FAIL"),
                 line("  TYPE_MISSING_XREF_FILES = FAIL"),
                 line("Calling renderer"),
                 "FUNCTION: SETTITLE Rendering Image... - 50.0%",
                 "FUNCTION: PROGRESS 50",
                 line("CallCurRendererRenderFrame returned code 1"),
                 line("Render done"),
                 line("Writing to output file: " + file("beauty0007.exr")),
                 line("Checking render elements"),
                 "FUNCTION: WARN: MaxCorvantis: Not saving render element 0 because its output path is empty"});
}

TEST_F(FrameConversation, SpreadsTheProgressOverThePasses) {
  useMultipass(4);
  job.isRendererB = true;
  job.settings.saveRenderElements = false;
  host.core.progress = {{u"Compiling geometry 12%"}, {u"Reading lights"}, {u"Rendering", 50, 100}};
  clock.setTickCount(2'000'000'000U);
  host.calls.on("CurRendererRenderFrame", [this]() -> std::optional<int> {
    clock.advance(2000);
    return std::nullopt;
  });
  std::vector<std::string> messages = {line("Rendering multipass effect:")};
  for (int pass = 1; pass <= 4; ++pass) {
    const std::string of = std::to_string(pass) + " of 4";
    const char* overall[] = {"12.5", "37.5", "62.5", "87.5"};
    messages.insert(messages.end(), {line("  Rendering pass " + of), "FUNCTION: STDOUT: Reading lights",
                                     "FUNCTION: SETTITLE Pass " + of + " - Rendering - 50.0%",
                                     std::string("FUNCTION: PROGRESS ") + overall[pass - 1],
                                     line("  CallCurRendererRenderFrame returned code 1"),
                                     line("  Accumulating bitmap"), line("  Success")});
  }
  messages.push_back(line("Render done"));
  messages.push_back(line("Writing to output file: " + file("beauty0008.exr")));

  ASSERT_EQ(render(7), "");  // opens the renderer without a connection
  expectSent(8, messages);
}

}  // namespace
}  // namespace corvantis
