// The collector: precise mark and sweep. Whoever holds values outside the heap registers as a source of roots or keeps
// them in a Root while other values are made.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <utility>
#include <vector>

#include "hostkit/script/machine/free_lists.h"
#include "hostkit/script/machine/object.h"

namespace hostkit::script {

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
  // Runs when what is reachable is known and before the rest goes, for tables that hold objects weakly.
  void addWeakTable(std::function<void(const Heap&)> sweep) { weakTables_.push_back(std::move(sweep)); }
  bool isMarked(const Object* object) const { return object->marked_; }
  void collect();
  // Values that Roots keep: how many there are, and back to so many when those who made the others were abandoned.
  std::size_t roots() const { return roots_.size(); }
  void dropRoots(std::size_t count) {
    while (roots_.size() > count) roots_.pop_back();
  }
  std::size_t collections() const { return collections_; }
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
  std::size_t used_ = 0, threshold_ = kNursery, count_ = 0, collections_ = 0;
  std::deque<Value> roots_;  // a value stays where it is when others come and go
  std::vector<std::function<void(Tracer&)>> rootSources_;
  std::vector<std::function<void(const Heap&)>> weakTables_;
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
