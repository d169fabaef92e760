// Work on folders that may not answer, such as those of a share: done by a thread of its own, one piece after the
// other, so that nobody who must go on waits for them.
#pragma once

#include <functional>
#include <memory>

namespace worker {

class Errand {
 public:
  Errand();
  // Work that has not come back is left to itself: it must own all that it uses.
  ~Errand();
  Errand(const Errand&) = delete;
  Errand& operator=(const Errand&) = delete;

  // Does `work` when what was given before is done. It must not throw.
  void run(std::function<void()> work);
  // Everything given is done.
  bool isDone() const;

 private:
  struct Queue;
  std::shared_ptr<Queue> queue_;
};

}  // namespace worker
