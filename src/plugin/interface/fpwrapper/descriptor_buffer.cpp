#include "plugin/interface/fpwrapper/descriptor_buffer.h"

namespace corvantis::max3d::fpwrapper {
namespace {
constexpr std::size_t kSlot = sizeof(std::uint64_t);
constexpr std::size_t kInitialBytes = 1024;
constexpr std::size_t kFreeForInteger = 20;
constexpr std::size_t kFreeForText = 24;
}  // namespace

DescriptorBuffer::DescriptorBuffer() : capacity_(kInitialBytes), slots_(kInitialBytes / kSlot) {}

void DescriptorBuffer::addInteger(std::uint32_t value) {
  growUnlessFree(kFreeForInteger);
  add(value);
}

void DescriptorBuffer::addText(const char16_t* text) {
  growUnlessFree(kFreeForText);
  add(reinterpret_cast<std::uintptr_t>(text));
}

void DescriptorBuffer::growUnlessFree(std::size_t bytes) {
  if (capacity_ - count_ * kSlot >= bytes) return;
  capacity_ += capacity_ / 2;
  slots_.resize(capacity_ / kSlot);
}

}  // namespace corvantis::max3d::fpwrapper
