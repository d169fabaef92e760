// Memory for many small objects that come and go: taken from and given back to a free list of their size.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <new>

#include <boost/pool/pool.hpp>

namespace hostkit::script {

class FreeLists {
 public:
  // Under a sanitizer every object has memory of its own, so that use after the end is found.
#ifdef CORVANTIS_SANITIZED
  static constexpr bool kShared = false;
#else
  static constexpr bool kShared = true;
#endif
  static constexpr std::size_t kLargest = 256;  // bytes; more comes from the system

  // Throws std::bad_alloc.
  void* take(std::size_t size) {
    if (!kShared || size > kLargest) return ::operator new(size);
    std::unique_ptr<boost::pool<>>& list = lists_[listOf(size)];
    if (!list) list = std::make_unique<boost::pool<>>((listOf(size) + 1) * kStep);
    if (void* taken = list->malloc()) return taken;
    throw std::bad_alloc();
  }
  // `size` as it was taken.
  void giveBack(void* memory, std::size_t size) {
    if (!kShared || size > kLargest) return ::operator delete(memory);
    lists_[listOf(size)]->free(memory);
  }

 private:
  static constexpr std::size_t kStep = 16;  // bytes from one list to the next
  static std::size_t listOf(std::size_t size) { return (size - 1) / kStep; }

  std::array<std::unique_ptr<boost::pool<>>, kLargest / kStep + 1> lists_;
};

}  // namespace hostkit::script
