// Work in numbered pieces that several threads take from, with the calling thread among them.
#pragma once

#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include <atomic>
#include <functional>

namespace standin::raytracer {

// Keeps nothing on the stack of run(): when the caller is torn out of it by a jump, the helpers go on safely until the
// work is stopped or done.
class SharedWork {
 public:
  // `piece` is called with each number below `count`, on any thread, and must not throw. `arena` must outlive the work.
  SharedWork(tbb::task_arena& arena, int count, std::function<void(int)> piece)
      : arena_(arena), count_(count), piece_(std::move(piece)) {}
  ~SharedWork() { stop(); }
  SharedWork(const SharedWork&) = delete;
  SharedWork& operator=(const SharedWork&) = delete;

  // Works on the calling thread and on `helpers` threads of the arena. After each piece of its own the calling thread
  // asks `goOn` with the number of pieces finished by all; false, or an exception (which is passed on), stops the work.
  // Returns when no thread is at work any more: true when every piece is done.
  bool run(int helpers, const std::function<bool(int finished)>& goOn);

  // Hands out no more pieces and waits for those in hand.
  void stop();

 private:
  bool takePiece();

  tbb::task_arena& arena_;
  const int count_;
  const std::function<void(int)> piece_;
  tbb::task_group helpers_;
  std::atomic<int> next_{0}, finished_{0};
  std::atomic<bool> stopped_{false};
};

}  // namespace standin::raytracer
