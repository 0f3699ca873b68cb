// A thread that does one thing after the other. What belongs to a thread, such as a session or an instance of a class of
// the library, is made, used and destroyed in its tasks.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>
#include <utility>

#include "workbench/tsql/values/stop.h"

namespace quillon::workbench::desk {

class TaskThread {
 public:
  TaskThread() : thread_([this] { work(); }) {}
  TaskThread(const TaskThread&) = delete;
  TaskThread& operator=(const TaskThread&) = delete;
  // Waits for the task that runs; those that wait are not begun.
  ~TaskThread();

  // Asks the statements of the present task and of all that come to end (tsql::StopRequest).
  void stop() noexcept { stop_->request(); }
  bool stopped() const noexcept { return stop_->requested(); }

  void post(std::function<void()> task);

  // Does `task` on the thread, waits for it, and gives or throws what it gives or throws. Throws ApiError 404 when the
  // thread ends before. Not from a task.
  template <typename Task>
  auto call(Task task) {
    using Result = std::invoke_result_t<Task&>;
    auto packaged = std::make_shared<std::packaged_task<Result()>>(std::move(task));
    std::future<Result> result = packaged->get_future();
    post([packaged] { (*packaged)(); });
    packaged.reset();
    return taken(result);
  }

 private:
  template <typename Result>
  static Result taken(std::future<Result>& result) {
    try {
      return result.get();
    } catch (const std::future_error&) {
      throwEnded();
    }
  }
  [[noreturn]] static void throwEnded();
  void work();

  std::shared_ptr<tsql::StopRequest> stop_ = std::make_shared<tsql::StopRequest>();
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> tasks_;
  bool ending_ = false;
  std::thread thread_;  // last: it uses what stands above
};

}  // namespace quillon::workbench::desk
