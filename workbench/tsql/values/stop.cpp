#include "workbench/tsql/values/stop.h"

#include <atomic>

namespace quillon::tsql {

namespace {

std::atomic<bool> requested{false};
std::atomic<int> ignored{0};  // how many want it to be
// A signal handler may write it.
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

// SQL Server's number for a statement that its client took back.
constexpr int operationCancelled = 3617;

}  // namespace

void requestStop() noexcept {
  requested = true;
}

bool stopRequested() noexcept {
  return requested && ignored == 0;
}

void forgetStop() noexcept {
  requested = false;
}

Stopped::Stopped() : SqlError(operationCancelled, "The statement was stopped before its end.") {}

void endIfStopped() {
  if (stopRequested()) throw Stopped();
}

IgnoreStop::IgnoreStop() noexcept {
  ++ignored;
}

IgnoreStop::~IgnoreStop() {
  --ignored;
}

}  // namespace quillon::tsql
