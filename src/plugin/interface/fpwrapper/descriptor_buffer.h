// The buffer in which a descriptor is written for the host: a growing run of 8-byte slots.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace corvantis::max3d::fpwrapper {

class DescriptorBuffer {
 public:
  DescriptorBuffer();

  // Zero-extended into the low 32 bits of the next slot.
  void addInteger(std::uint32_t value);
  // The address of zero-terminated text, which must live until the host has read the buffer.
  void addText(const char16_t* text);

  const std::uint64_t* slots() const { return slots_.data(); }
  std::size_t slotCount() const { return count_; }
  // Bytes that the buffer can hold before it grows: 1024 at first, each time half as much again.
  std::size_t capacity() const { return capacity_; }

 private:
  void growUnlessFree(std::size_t bytes);
  void add(std::uint64_t slot) { slots_[count_++] = slot; }

  std::size_t capacity_;
  std::vector<std::uint64_t> slots_;
  std::size_t count_ = 0;
};

}  // namespace corvantis::max3d::fpwrapper
