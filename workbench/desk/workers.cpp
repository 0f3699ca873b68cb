#include "workbench/desk/workers.h"

#include <utility>

namespace quillon::workbench::desk {

Workers::Workers(std::size_t count) {
  for (std::size_t i = 0; i < count; ++i)
    threads_.emplace_back([this] { work(); });
}

Workers::~Workers() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
    waiting_.clear();
  }
  changed_.notify_all();
  for (std::thread& thread : threads_)
    thread.join();
}

void Workers::add(std::function<void()> work) {
  {
    const std::lock_guard lock(mutex_);
    waiting_.push_back(std::move(work));
  }
  changed_.notify_one();
}

void Workers::work() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return ending_ || !waiting_.empty(); });
    if (ending_) return;
    auto next = std::move(waiting_.front());
    waiting_.pop_front();
    lock.unlock();
    next();
    next = nullptr;
    lock.lock();
  }
}

}  // namespace quillon::workbench::desk
