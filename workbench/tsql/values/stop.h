// Ending what runs before its time: the person at the program pressed Ctrl-C, or the system asks it to end.
#pragma once

#include <atomic>
#include <memory>

#include "workbench/tsql/values/sql_error.h"

namespace quillon::tsql {

// Asks everything that runs in this process to end. May be called on any thread and by a signal handler.
void requestStop() noexcept;
bool stopRequested() noexcept;  // false while an IgnoreStop lives
// Takes the request back, for a program that goes on.
void forgetStop() noexcept;

// A request of its own for one of several things that a process does at the same time, each on a thread of its own.
class StopRequest {
 public:
  // From any thread.
  void request() noexcept { requested_ = true; }
  bool requested() const noexcept { return requested_ && ignored_ == 0; }

 private:
  friend class IgnoreStop;
  std::atomic<bool> requested_{false};
  std::atomic<int> ignored_{0};
};

// While it lives, stopRequested() answers on this thread for the request, too. One replaces the other.
class StopScope {
 public:
  explicit StopScope(std::shared_ptr<StopRequest> request) noexcept;
  StopScope(const StopScope&) = delete;
  StopScope& operator=(const StopScope&) = delete;
  ~StopScope();

  // This thread's, for a thread that works for it; null when it has none.
  static std::shared_ptr<StopRequest> current() noexcept;

  bool requested() const noexcept { return request_ && request_->requested(); }

 private:
  std::shared_ptr<StopRequest> request_;
  const StopScope* before_;  // the one that it replaces
};

// What statements, and loops that ask endIfStopped(), throw after requestStop().
class Stopped : public SqlError {
 public:
  Stopped();
};

void endIfStopped();

// For what has to be put away after a stop: while it lives, in whatever thread, statements run as if nobody had asked the
// process; and those of this thread's StopScope as if nobody had asked that.
class IgnoreStop {
 public:
  IgnoreStop() noexcept;
  IgnoreStop(const IgnoreStop&) = delete;
  IgnoreStop& operator=(const IgnoreStop&) = delete;
  ~IgnoreStop();

 private:
  std::shared_ptr<StopRequest> request_;
};

}  // namespace quillon::tsql
