#include "workbench/tsql/values/stop.h"

#include <atomic>
#include <utility>

namespace quillon::tsql {

namespace {

std::atomic<bool> requested{false};
std::atomic<int> ignored{0};  // how many want it to be
// A signal handler may write it.
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

// This thread's innermost scope; null outside of all. A plain pointer, since it needs no destructor: mingw-w64 runs those of
// a thread's own objects when it has given their memory back.
constinit thread_local const StopScope* innermost = nullptr;

// SQL Server's number for a statement that its client took back.
constexpr int operationCancelled = 3617;

}  // namespace

void requestStop() noexcept {
  requested = true;
}

bool stopRequested() noexcept {
  if (requested && ignored == 0) return true;
  return innermost != nullptr && innermost->requested();
}

void forgetStop() noexcept {
  requested = false;
}

Stopped::Stopped() : SqlError(operationCancelled, "The statement was stopped before its end.") {}

void endIfStopped() {
  if (stopRequested()) throw Stopped();
}

StopScope::StopScope(std::shared_ptr<StopRequest> request) noexcept
    : request_(std::move(request)), before_(std::exchange(innermost, this)) {}

StopScope::~StopScope() {
  innermost = before_;
}

std::shared_ptr<StopRequest> StopScope::current() noexcept {
  return innermost == nullptr ? nullptr : innermost->request_;
}

IgnoreStop::IgnoreStop() noexcept : request_(StopScope::current()) {
  ++ignored;
  if (request_) ++request_->ignored_;
}

IgnoreStop::~IgnoreStop() {
  --ignored;
  if (request_) --request_->ignored_;
}

}  // namespace quillon::tsql
