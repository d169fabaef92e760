// Answers to the questions that scripts ask the worker. The first byte chooses the question, and whether the rest is
// one message or the connection's raw bytes.
#include <cstdint>
#include <exception>
#include <iterator>
#include <string_view>

#include "fuzz/loopback_peer.h"
#include "hostsdk/exceptions.h"
#include "hostsdk/script_value.h"
#include "plugin/interface/corvantis_interface.h"
#include "support/fake_clock.h"
#include "support/fake_host.h"
#include "support/fake_script_runtime.h"

namespace {

using corvantis::CorvantisInterface;
using Question = void (*)(CorvantisInterface& tessarynUtil);

constexpr Question kQuestions[] = {
    [](CorvantisInterface& tessarynUtil) { tessarynUtil.GetJobInfoEntry(u"key"); },
    [](CorvantisInterface& tessarynUtil) { tessarynUtil.GetSubmitInfoEntry(u"key"); },
    [](CorvantisInterface& tessarynUtil) { tessarynUtil.GetSubmitInfoEntryElementCount(u"key"); },
    [](CorvantisInterface& tessarynUtil) { tessarynUtil.GetSubmitInfoEntryElement(1, u"key"); },
    [](CorvantisInterface& tessarynUtil) { tessarynUtil.GetAuxFilename(0); },
    [](CorvantisInterface& tessarynUtil) { tessarynUtil.GetPathMappedFilename(u"C:\\a"); },
};

void ask(CorvantisInterface& tessarynUtil, Question question) {
  try {
    question(tessarynUtil);
  } catch (const std::exception&) {
    return;  // becomes a host error
  } catch (const hostsdk::RuntimeError&) {
    return;  // the script's to handle
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::LoopbackPeer peer;
  static corvantis::win32::simple_socket socket;
  if (size == 0) return 0;
  const std::string_view answer(reinterpret_cast<const char*>(data) + 1, size - 1);
  const bool raw = (data[0] & 0x80) != 0;

  support::FakeClock clock;
  clock.passSilentWaits();
  const platform::ClockReplacement handMoved(clock);
  support::FakeScriptRuntime scripts;
  support::FakeHost host(&scripts);
  corvantis::JobState jobState;
  bool daemonRunning = true;
  CorvantisInterface tessarynUtil(jobState, socket, daemonRunning);
  peer.connect(socket);

  if (raw)
    peer.sendRaw(answer);
  else
    peer.send(answer);
  ask(tessarynUtil, kQuestions[(data[0] & 0x7F) % std::size(kQuestions)]);
  return 0;
}
