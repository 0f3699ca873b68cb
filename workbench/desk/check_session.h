// Checks of an account on the desk: while they are made, and what they found.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "workbench/desk/api_error.h"
#include "workbench/desk/discretion.h"
#include "workbench/desk/task_thread.h"
#include "workbench/desk/work_state.h"
#include "workbench/platform/language.h"
#include "workbench/runs/account_check.h"

namespace quillon::workbench::desk {

// The checks are made on a thread of their own, since a large account takes seconds. Members may be called on any thread;
// they throw ApiError.
class CheckSession {
 public:
  using Work = std::function<std::vector<AccountFinding>()>;

  // Begins `work`, which makes the checks.
  CheckSession(Work work, const Discretion& discretion);
  CheckSession(const CheckSession&) = delete;
  CheckSession& operator=(const CheckSession&) = delete;
  // Stops them and waits for their end.
  ~CheckSession();

  bool running() const;
  void stop() noexcept { thread_.stop(); }

  // {"state", "started", "elapsedMs", "error", "checks"}; an error in this language.
  Json info(Language language) const;
  // The same before any checks were begun.
  static Json infoOfNone();
  // {"rowCount", "kept", "rows"}: some of the rows that a check found and that are kept. 404 for a check that is none, 409
  // as long as there is no result.
  Json rows(const std::string& check, std::int64_t offset, std::int64_t limit, Language language) const;

 private:
  using State = WorkState;
  void make(const Work& work);
  std::int64_t elapsedMs() const;

  const Discretion& discretion_;
  const std::chrono::steady_clock::time_point begun_ = std::chrono::steady_clock::now();
  const std::string started_;

  mutable std::mutex mutex_;  // of what follows
  State state_ = State::running;
  std::int64_t endedMs_ = 0;
  Message error_;
  std::vector<AccountFinding> findings_;

  TaskThread thread_;  // last: it uses what stands above
};

}  // namespace quillon::workbench::desk
