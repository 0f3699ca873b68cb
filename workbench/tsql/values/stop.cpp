#include "workbench/tsql/values/stop.h"

#include <atomic>

namespace quillon::tsql {

namespace {

std::atomic<bool> requested{false};
// A signal handler may write it.
static_assert(std::atomic<bool>::is_always_lock_free);

// SQL Server's number for a statement that its client took back.
constexpr int operationCancelled = 3617;

}  // namespace

void requestStop() noexcept {
  requested = true;
}

bool stopRequested() noexcept {
  return requested;
}

void forgetStop() noexcept {
  requested = false;
}

Stopped::Stopped() : SqlError(operationCancelled, "The statement was stopped before its end.") {}

void endIfStopped() {
  if (stopRequested()) throw Stopped();
}

}  // namespace quillon::tsql
