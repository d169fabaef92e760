#include "plugin/interface/mxs/frame.h"

#include <cstdint>
#include <stdexcept>

#include "plugin/util/text.h"

namespace corvantis::mxs {

hostsdk::ScriptRuntime& readyRuntime() {
  hostsdk::ScriptRuntime& runtime = hostsdk::scriptRuntime();
  runtime.init_thread_locals();
  return runtime;
}

void throwLinkOutOfBounds(std::size_t capacity) {
  throw std::runtime_error("mxs.frame.link: Index out of bounds [" + to_string(static_cast<std::uint64_t>(capacity)) +
                           "]");
}

}  // namespace corvantis::mxs
