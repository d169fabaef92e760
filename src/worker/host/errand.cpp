#include "worker/host/errand.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace worker {

struct Errand::Queue {
  mutable std::mutex mutex;
  std::condition_variable changed;
  std::deque<std::function<void()>> work;  // the first is being done
  bool closed = false;
};

Errand::Errand() : queue_(std::make_shared<Queue>()) {
  // Shared, for the thread may outlive the object.
  std::thread([queue = queue_] {
    std::unique_lock lock(queue->mutex);
    for (;;) {
      queue->changed.wait(lock, [&] { return !queue->work.empty() || queue->closed; });
      if (queue->work.empty()) return;
      const std::function<void()> next = queue->work.front();
      lock.unlock();
      next();
      lock.lock();
      queue->work.pop_front();
    }
  }).detach();
}

Errand::~Errand() {
  const std::lock_guard lock(queue_->mutex);
  queue_->closed = true;
  queue_->changed.notify_all();
}

void Errand::run(std::function<void()> work) {
  const std::lock_guard lock(queue_->mutex);
  queue_->work.push_back(std::move(work));
  queue_->changed.notify_all();
}

bool Errand::isDone() const {
  const std::lock_guard lock(queue_->mutex);
  return queue_->work.empty();
}

}  // namespace worker
