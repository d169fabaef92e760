#include "standin/raytracer/shared_work.h"

#include <fmt/format.h>

#include <stdexcept>

#include "platform/fault_guard.h"
#include "platform/modules.h"

namespace standin::raytracer {

// Takes a piece and does it; false when there is none left.
bool SharedWork::takePiece() {
  if (stopped_) return false;
  const int piece = next_.fetch_add(1);
  if (piece >= count_) return false;
  piece_(piece);
  finished_.fetch_add(1);
  return true;
}

bool SharedWork::run(int helpers, const std::function<bool(int finished)>& goOn) {
  // The arena is entered to hand out tasks and to wait, never while the caller's own code may run.
  arena_.execute([&] {
    for (int i = 0; i < helpers; ++i) {
      helpers_.run([this] { help(); });
    }
  });
  try {
    while (takePiece()) {
      if (!goOn(finished_)) break;
    }
  } catch (...) {
    stop();
    throw;
  }
  stop();
  if (hasFaulted()) throw std::runtime_error(faultText());
  return finished_ == count_;
}

// A guard of the helper's own: whoever guards the calling thread guards no other.
void SharedWork::help() {
  Place place;
  const auto takeAll = [](void* work) {
    while (static_cast<SharedWork*>(work)->takePiece()) {
    }
  };
  const auto filter = [](void* noted, const platform::FaultContext& fault) {
    *static_cast<Place*>(noted) = {fault.code, fault.address};
    return true;
  };
  if (platform::runGuarded(takeAll, this, filter, &place) != 0) note(place);
}

void SharedWork::note(const Place& place) {
  std::uint32_t none = 0;
  if (faultCode_.compare_exchange_strong(none, place.code)) faultAddress_ = place.address;
  stopped_ = true;
}

std::string SharedWork::faultText() const {
  platform::ModuleAt module;
  platform::findModule(faultAddress_, module);
  return fmt::format("Ray tracer: machine fault {:08X} on a helper thread, at {}+{:X}", faultCode_.load(),
                     module.path.data(), faultAddress_ - module.base);
}

void SharedWork::stop() {
  stopped_ = true;
  arena_.execute([this] { helpers_.wait(); });
}

}  // namespace standin::raytracer
