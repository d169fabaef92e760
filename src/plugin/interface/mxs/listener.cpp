#include "plugin/interface/mxs/listener.h"

#include "hostsdk/exceptions.h"

namespace corvantis::mxs {
namespace {

hostsdk::ScriptRuntime* boundRuntime() {
  try {
    return &hostsdk::scriptRuntime();
  } catch (const hostsdk::MAXException&) {
    return nullptr;
  }
}

}  // namespace

hostsdk::CharStream& currentOutput(hostsdk::ScriptRuntime& runtime) {
  hostsdk::CharStream* output = runtime.thread_locals().currentStdout;
  return output != nullptr ? *output : runtime.listener();
}

void printToListener(const std::u16string& text) {
  if (hostsdk::ScriptRuntime* runtime = boundRuntime()) currentOutput(*runtime).puts(text);
}

}  // namespace corvantis::mxs
