#include "workbench/desk/task_thread.h"

#include "workbench/desk/api_error.h"

namespace quillon::workbench::desk {

TaskThread::~TaskThread() {
  std::deque<std::function<void()>> dropped;
  {
    const std::scoped_lock lock(mutex_);
    ending_ = true;
    dropped.swap(tasks_);
  }
  changed_.notify_all();
  dropped.clear();  // whoever waits for one hears that the thread has ended
  thread_.join();
}

void TaskThread::post(std::function<void()> task) {
  {
    const std::scoped_lock lock(mutex_);
    if (ending_) return;
    tasks_.push_back(std::move(task));
  }
  changed_.notify_all();
}

void TaskThread::throwEnded() {
  throw unknown(messages::closedMeanwhile());
}

void TaskThread::work() {
  const tsql::StopScope scope(stop_);
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return ending_ || !tasks_.empty(); });
    if (ending_) return;
    std::function<void()> task = std::move(tasks_.front());
    tasks_.pop_front();
    lock.unlock();
    task();
    task = nullptr;
    lock.lock();
  }
}

}  // namespace quillon::workbench::desk
