// Threads that do one piece of work after the other.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace quillon::workbench::desk {

class Workers {
 public:
  explicit Workers(std::size_t count);
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;
  // Waits for the work that is being done; what waits is dropped.
  ~Workers();

  // `work` throws nothing. How much may wait is the caller's to bound.
  void add(std::function<void()> work);

 private:
  void work();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> waiting_;
  bool ending_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace quillon::workbench::desk
