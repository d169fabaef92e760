// Command lines, one a line of the input, through the dispatcher and a fake host: whatever comes, nothing crashes, and
// a line gets one error reply at most (two for a frame, whose result is a reply of its own).
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <sstream>
#include <string>

#include "fuzz/loopback_peer.h"
#include "hostsdk/exceptions.h"
#include "plugin/daemon/dispatch.h"
#include "plugin/util/text.h"
#include "support/fake_clock.h"
#include "support/fake_files.h"
#include "support/fake_host.h"
#include "support/fake_script_runtime.h"

namespace {

// Script texts give back themselves: a string, or something else when they begin with a digit.
hostsdk::Value* echo(support::FakeScriptRuntime& scripts, const std::u16string& source) {
  if (source.size() > 1 && source[1] >= u'0' && source[1] <= u'9') return scripts.newOther(source, source);
  return scripts.newString(source);
}

void requireOneErrorAtMost(const std::string& line, const std::vector<std::string>& messages) {
  const auto errors = std::count_if(messages.begin(), messages.end(),
                                    [](const std::string& message) { return message.rfind("ERROR: ", 0) == 0; });
  const bool aFrame = std::find(messages.begin(), messages.end(), "ERROR: Failed to save file.") != messages.end();
  if (errors <= (aFrame ? 2 : 1)) return;
  std::fprintf(stderr, "%ld error replies to: %s\n", static_cast<long>(errors), line.c_str());
  std::abort();
}

void run(const std::string& line, corvantis::JobState& jobState, corvantis::win32::simple_socket& socket) {
  try {
    corvantis::dispatchCommand(jobState, socket, corvantis::from_utf8(line));
  } catch (const std::exception&) {
    return;  // the daemon run's to report
  } catch (const hostsdk::MAXException&) {
    return;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::LoopbackPeer peer;
  static corvantis::win32::simple_socket socket;
  static support::NoFiles files;
  static const platform::FilesReplacement noFiles(files);
  constexpr int largestSide = 64;

  support::FakeClock clock;
  const platform::ClockReplacement handMoved(clock);
  support::FakeScriptRuntime scripts;
  scripts.evaluation = [&](const std::u16string& source) { return echo(scripts, source); };
  support::FakeHost host(&scripts);
  corvantis::JobState jobState;
  if (!socket.isConnected()) peer.connect(socket);

  std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
  for (std::string line; std::getline(lines, line);) {
    run(line, jobState, socket);
    requireOneErrorAtMost(line, peer.receivedFrom(socket));
    // A blown-up output would only be slow to render, and one of negative size opens no real renderer.
    host.core.renderWidth = std::clamp(host.core.renderWidth, 0, largestSide);
    host.core.renderHeight = std::clamp(host.core.renderHeight, 0, largestSide);
  }
  return 0;
}
