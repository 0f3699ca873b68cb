#include "workbench/tsql/values/stop.h"

#include <atomic>
#include <utility>

namespace quillon::tsql {

namespace {

std::atomic<bool> requested{false};
std::atomic<int> ignored{0};  // how many want it to be
// A signal handler may write it.
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

// Of this thread.
std::shared_ptr<StopRequest>& currentRequest() noexcept {
  thread_local std::shared_ptr<StopRequest> request;
  return request;
}

// SQL Server's number for a statement that its client took back.
constexpr int operationCancelled = 3617;

}  // namespace

void requestStop() noexcept {
  requested = true;
}

bool stopRequested() noexcept {
  if (requested && ignored == 0) return true;
  const StopRequest* const own = currentRequest().get();
  return own != nullptr && own->requested();
}

void forgetStop() noexcept {
  requested = false;
}

Stopped::Stopped() : SqlError(operationCancelled, "The statement was stopped before its end.") {}

void endIfStopped() {
  if (stopRequested()) throw Stopped();
}

StopScope::StopScope(std::shared_ptr<StopRequest> request) noexcept
    : before_(std::exchange(currentRequest(), std::move(request))) {}

StopScope::~StopScope() {
  currentRequest() = std::move(before_);
}

std::shared_ptr<StopRequest> StopScope::current() noexcept {
  return currentRequest();
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
