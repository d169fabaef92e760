// Any bytes as a script that runs: bounded in steps and memory, without files. Collects at every allocation when the
// first byte is odd.
#include <cstddef>
#include <cstdint>

#include "hostkit/script/engine/engine.h"
#include "hostkit/script/syntax/source.h"
#include "support/fake_clock.h"

namespace {

class Host : public hostkit::script::HostBindings {
  std::optional<hostkit::script::HostValue> get(std::u16string_view) override { return std::nullopt; }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hostkit::script;
  if (size == 0) return 0;
  support::FakeClock clock;  // on which sleep() passes at once
  const platform::ClockReplacement handMoved(clock);
  Host host;
  EngineOptions options;
  options.stepLimit = 20000;
  options.heapLimit = std::size_t{32} << 20;
  options.fileAccess = false;
  options.collectAlways = data[0] % 2 == 1;
  if (options.collectAlways) options.stepLimit = 500;
  Engine engine(host, options);
  engine.runText(decodeScript(std::string(data + 1, data + size)));
  return 0;
}
