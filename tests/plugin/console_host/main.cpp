// A host without a window or a scene: loads the plug-in as a host application does, calls what it exports, and hands
// the conversation to it. What the plug-in asks of a host, the fake host of the tests answers.
#include <boost/dll/shared_library.hpp>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>

#include "hostsdk/function_publishing.h"
#include "support/fake_host.h"
#include "support/fake_script_runtime.h"
#include "support/published_entries.h"

namespace {

struct Arguments {
  std::string library;
  std::int32_t port = 0;
  std::string token;
  std::string faultingOperation;  // of the host, such as "LoadFromFile"; empty: none
};

Arguments readArguments(int count, char** values) {
  const bool faults = count == 6 && std::string(values[4]) == "--fault";
  if (count != 4 && !faults) throw std::runtime_error("usage: console-host LIBRARY PORT TOKEN [--fault OPERATION]");
  return {values[1], std::atoi(values[2]), values[3], faults ? values[5] : ""};
}

void printExports(const boost::dll::shared_library& library) {
  const std::u16string description = library.get<const char16_t*()>("LibDescription")();
  std::printf("LibDescription: %s\n", support::narrow(description).c_str());
  std::printf("LibVersion: %08X\n", library.get<std::uint32_t()>("LibVersion")());
  library.get<void()>("LibInit")();
}

bool runDaemon(const Arguments& arguments, support::FakeScriptRuntime& scripts) {
  hostsdk::FPInterfaceDesc& utility = *hostsdk::registeredInterfaces().at(0);
  hostsdk::FPParams parameters;
  const std::u16string token(arguments.token.begin(), arguments.token.end());
  parameters.params = {hostsdk::FPValue::ofInt(arguments.port), hostsdk::FPValue::ofValue(scripts.newString(token))};
  hostsdk::FPValue result;
  utility.Invoke(support::idOf(utility.published(), u"RunCorvantisDaemon"), result, &parameters);
  return result.i != 0;
}

int run(const Arguments& arguments) {
  support::FakeScriptRuntime scripts;
  support::FakeHost host(&scripts);
  if (!arguments.faultingOperation.empty()) host.calls.on(arguments.faultingOperation, support::writingToNull());
  const boost::dll::shared_library library(arguments.library);
  printExports(library);
  const bool ended = runDaemon(arguments, scripts);
  std::printf("RunCorvantisDaemon: %s\n", ended ? "true" : "false");
  return ended ? 0 : 2;
}

}  // namespace

int main(int count, char** values) try {
  return run(readArguments(count, values));
} catch (const std::exception& error) {
  std::fprintf(stderr, "console-host: %s\n", error.what());
  return 1;
}
