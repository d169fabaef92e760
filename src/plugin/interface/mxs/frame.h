// A scope that keeps script values from being collected.
#pragma once

#include <cstddef>

#include "hostsdk/script_runtime.h"

namespace corvantis::mxs {

// One allocation frame of the script runtime: what is made inside it is kept alive until it ends.
class AllocationFrame {
 public:
  explicit AllocationFrame(hostsdk::ScriptRuntime& runtime) : runtime_(runtime) { runtime_.push_alloc_frame(); }
  ~AllocationFrame() { runtime_.pop_alloc_frame(); }
  AllocationFrame(const AllocationFrame&) = delete;
  AllocationFrame& operator=(const AllocationFrame&) = delete;

 private:
  hostsdk::ScriptRuntime& runtime_;
};

// Readies the calling thread for script values. Throws MAXException "No host is bound" when there is no host.
hostsdk::ScriptRuntime& readyRuntime();

[[noreturn]] void throwLinkOutOfBounds(std::size_t capacity);

// An allocation frame with slots for up to `Capacity` values. A value in a slot lives as long as the frame, also when
// it was made inside an inner allocation frame that has ended.
template <std::size_t Capacity>
class frame {
 public:
  frame() : slots_(Capacity), allocations_(readyRuntime()) {}
  frame(const frame&) = delete;
  frame& operator=(const frame&) = delete;

  // The next free slot, holding no value. Throws std::runtime_error
  // "mxs.frame.link: Index out of bounds [<capacity>]" when every slot is taken.
  hostsdk::Value*& link() {
    if (linked_ == Capacity) throwLinkOutOfBounds(Capacity);
    return slots_[linked_++] = nullptr;
  }

 private:
  hostsdk::ScopedValueTempArray slots_;
  AllocationFrame allocations_;  // popped before the slots are released
  std::size_t linked_ = 0;
};

}  // namespace corvantis::mxs
