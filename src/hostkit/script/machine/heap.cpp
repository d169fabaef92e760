#include "hostkit/script/machine/heap.h"

#include <algorithm>

#include "hostkit/script/syntax/errors.h"

namespace hostkit::script {

void Tracer::mark(Object* object) {
  if (!object || object->marked_) return;
  object->marked_ = true;
  waiting_.push_back(object);
}

Heap::~Heap() {
  while (first_) {
    Object* gone = first_;
    first_ = gone->next_;
    destroy(gone);
  }
}

void Heap::destroy(Object* object) {
  const std::size_t size = object->size_;
  void* memory = dynamic_cast<void*>(object);
  object->~Object();
  lists_.giveBack(memory, size);
}

void Heap::makeRoom() {
  collect();
  if (used_ > limit_)
    throw ScriptError(u"-- Runtime error: Out of memory: the values of the script take too much room");
}

void Heap::collect() {
  markReachable();
  sweep();
  threshold_ = std::min(std::max(used_ * 2, used_ + kNursery), std::max(limit_, used_ + (std::size_t{1} << 20)));
}

void Heap::markReachable() {
  Tracer tracer;
  tracer.markAll(roots_);
  for (const auto& source : rootSources_) source(tracer);
  while (!tracer.waiting_.empty()) {
    const Object* object = tracer.waiting_.back();
    tracer.waiting_.pop_back();
    object->trace(tracer);
  }
}

void Heap::sweep() {
  used_ = 0;
  Object** link = &first_;
  while (Object* object = *link) {
    if (object->marked_) {
      object->marked_ = false;
      used_ += object->footprint();
      link = &object->next_;
    } else {
      *link = object->next_;
      --count_;
      destroy(object);
    }
  }
}

}  // namespace hostkit::script
