// The collector: precise mark and sweep. Whoever holds values outside the heap registers as a source of roots or keeps
// them in a Root while other values are made.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include <boost/pool/pool.hpp>

#include "hostkit/script/machine/value.h"

namespace hostkit::script {

// Memory for many small objects that come and go: taken from and given back to a free list of their size.
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

class Heap {
 public:
  // collectAlways: collect at every allocation. Past `limit` bytes of live objects make() throws a ScriptError.
  Heap(bool collectAlways, std::size_t limit) : collectAlways_(collectAlways), limit_(limit) {}
  ~Heap();
  Heap(const Heap&) = delete;
  Heap& operator=(const Heap&) = delete;

  // May collect before it constructs: objects among the arguments must be reachable already.
  template <class T, class... Arguments>
  T* make(Arguments&&... arguments) {
    if (started_ && (collectAlways_ || used_ >= threshold_)) makeRoom();
    void* memory = lists_.take(sizeof(T));
    T* made = nullptr;
    try {
      made = ::new (memory) T(std::forward<Arguments>(arguments)...);
    } catch (...) {
      lists_.giveBack(memory, sizeof(T));
      throw;
    }
    adopt(made, sizeof(T));
    return made;
  }
  // Until this nothing is collected: what is made while the runtime sets itself up needs no roots.
  void start() { started_ = true; }
  bool isStarted() const { return started_; }
  // An object grew by `bytes` since it was made.
  void grew(std::size_t bytes) { used_ += bytes; }

  void addRoots(std::function<void(Tracer&)> source) { rootSources_.push_back(std::move(source)); }
  void collect();
  // Values that Roots keep: how many there are, and back to so many when those who made the others were abandoned.
  std::size_t roots() const { return roots_.size(); }
  void dropRoots(std::size_t count) {
    while (roots_.size() > count) roots_.pop_back();
  }
  std::size_t liveObjects() const { return count_; }

 private:
  friend class Root;
  void adopt(Object* object, std::size_t size) {
    object->size_ = static_cast<std::uint32_t>(size);
    object->next_ = first_;
    first_ = object;
    used_ += object->footprint();
    ++count_;
  }
  void destroy(Object* object);
  void makeRoom();
  void markReachable();
  void sweep();

  // What may be made before the first collection, and at least between two: it stays in the processor's cache.
  static constexpr std::size_t kNursery = std::size_t{1} << 20;  // bytes

  bool collectAlways_, started_ = false;
  std::size_t limit_;
  FreeLists lists_;
  Object* first_ = nullptr;
  std::size_t used_ = 0, threshold_ = kNursery, count_ = 0;
  std::deque<Value> roots_;  // a value stays where it is when others come and go
  std::vector<std::function<void(Tracer&)>> rootSources_;
};

// Keeps one value alive for a stretch of native code. Last made, first gone. The value is the heap's: a Root whose
// stack was abandoned on a fault leaves nothing that points there.
class Root {
 public:
  Root(Heap& heap, const Value& kept)
      : value(heap.roots_.emplace_back(kept)), heap_(heap), before_(heap.roots_.size() - 1) {}
  ~Root() { heap_.dropRoots(before_); }
  Root(const Root&) = delete;
  Root& operator=(const Root&) = delete;

  Value& value;

 private:
  Heap& heap_;
  std::size_t before_;
};

}  // namespace hostkit::script
