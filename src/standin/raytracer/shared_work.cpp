#include "standin/raytracer/shared_work.h"

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
      helpers_.run([this] {
        while (takePiece()) {
        }
      });
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
  return finished_ == count_;
}

void SharedWork::stop() {
  stopped_ = true;
  arena_.execute([this] { helpers_.wait(); });
}

}  // namespace standin::raytracer
