// Fault injection into the calls of the ports: every call that the library makes to its platform passes through here and
// is counted; the one that a test chooses throws instead of reaching the platform.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frame/automation_error.h"
#include "tests/faults/memory.h"

namespace quillon::faults {

// The platform's objects by what the library does with them.
enum class ObjectKind {
  session,
  login,
  sharedComponent,  // public component, resource service, unique-name source: kept by the module
  filter,
  other,  // everything that a member takes for its own use: recordsets, items, rows, descriptors, other components
};
inline constexpr std::size_t objectKindCount = 5;

// A call that the library made: the member by the name that its port's header gives it, and the argument that the tests
// look at (a statement, a column, a key).
struct PortCall {
  std::string member;
  std::string text;
};

class FaultInjector {
 public:
  // What a failing call says: no code and no source that anything else here uses.
  static constexpr HResult failure = static_cast<HResult>(0x80043A07U);
  static constexpr std::string_view source = "FaultInjector";
  static std::string description(std::size_t call) { return "call " + std::to_string(call) + " was refused"; }

  FaultInjector() = default;
  FaultInjector(const FaultInjector&) = delete;
  FaultInjector& operator=(const FaultInjector&) = delete;

  // Counts calls from 1 on; call `failAt` throws AutomationError {failure, source, description(failAt)}. 0 fails none.
  void start(std::size_t failAt) {
    calls_.clear();
    failAt_ = failAt;
    counting_ = true;
  }
  // Ends counting and failing. What was counted stays.
  void stop() { counting_ = false; }

  // The calls since start(), in order, the failed one included.
  const std::vector<PortCall>& calls() const { return calls_; }

  // Counts a call and, unless it is the one to fail, gives what `action` gives: the platform's answer. Memory that the
  // platform takes meanwhile is not counted as the library's.
  template <typename Action>
  decltype(auto) call(std::string_view member, std::string_view text, Action action) {
    const AllocationFaultsPaused paused;
    if (counting_) {
      calls_.push_back({std::string(member), std::string(text)});
      if (calls_.size() == failAt_) throw AutomationError(failure, std::string(source), description(failAt_));
    }
    return action();
  }
  template <typename Action>
  decltype(auto) call(std::string_view member, Action action) {
    return call(member, {}, std::move(action));
  }

  // How many of the platform's objects the library keeps alive.
  int liveObjects(ObjectKind kind) const { return live_.at(static_cast<std::size_t>(kind)); }
  int liveObjects() const {
    int all = 0;
    for (const int count : live_)
      all += count;
    return all;
  }

 private:
  friend class LiveObject;

  std::vector<PortCall> calls_;
  std::size_t failAt_ = 0;
  bool counting_ = false;
  std::array<int, objectKindCount> live_{};
};

// Counts as one object of the platform for as long as it lives.
class LiveObject {
 public:
  LiveObject(FaultInjector& injector, ObjectKind kind)
      : injector_(injector), count_(injector.live_.at(static_cast<std::size_t>(kind))) {
    ++count_;
  }
  LiveObject(const LiveObject&) = delete;
  LiveObject& operator=(const LiveObject&) = delete;
  ~LiveObject() { --count_; }

  FaultInjector& injector() const { return injector_; }

 private:
  FaultInjector& injector_;
  int& count_;
};

}  // namespace quillon::faults
