// Work in numbered pieces that several threads take from, with the calling thread among them.
#pragma once

#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>

namespace standin::raytracer {

// Keeps nothing on the stack of run(): when the caller is torn out of it by a jump, as a trapped machine fault tears
// it, the helpers go on safely until the work is stopped or done. A machine fault on a helper stops the work.
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
  // Returns when no thread is at work any more: true when every piece is done. Throws std::runtime_error "Ray tracer:
  // machine fault <Windows exception code> on a helper thread, at <module>+<offset>" after the first of such faults.
  bool run(int helpers, const std::function<bool(int finished)>& goOn);

  // Hands out no more pieces and waits for those in hand.
  void stop();

  // Whether a helper has run into a machine fault: what the pieces work on may be damaged.
  bool hasFaulted() const { return faultCode_ != 0; }

 private:
  // Where a fault happened, told to the thread that has it.
  struct Place {
    std::uint32_t code = 0;
    std::uintptr_t address = 0;
  };

  bool takePiece();
  void help();
  void note(const Place& place);
  std::string faultText() const;

  tbb::task_arena& arena_;
  const int count_;
  const std::function<void(int)> piece_;
  tbb::task_group helpers_;
  std::atomic<int> next_{0}, finished_{0};
  std::atomic<bool> stopped_{false};
  std::atomic<std::uintptr_t> faultAddress_{0};
  std::atomic<std::uint32_t> faultCode_{0};  // of the first fault on a helper
};

}  // namespace standin::raytracer
