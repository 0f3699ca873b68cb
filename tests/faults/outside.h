// The border between the library and everything that it calls: each call that the library makes to the outside is
// counted here, and the one that a test names fails instead of reaching what lies behind.
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

// What the library holds of the outside.
enum class Thing {
  session,
  login,
  sharedComponent,  // public component, resource service, unique-name source: kept by the module
  filter,
  other,  // everything that a member takes for its own use: recordsets, items, rows, descriptors, other components
};
inline constexpr std::size_t thingCount = 5;

// A call that the library made: the member by the name that its port's header gives it, and what was passed, where the
// tests look at it (a statement, a column, a key).
struct OutsideCall {
  std::string member;
  std::string text;
};

class Outside {
 public:
  // What a failing call says: no code and no source that anything else here uses.
  static constexpr HResult failure = static_cast<HResult>(0x80043A07U);
  static constexpr std::string_view source = "Outside";
  static std::string description(std::size_t call) { return "call " + std::to_string(call) + " was refused"; }

  Outside() = default;
  Outside(const Outside&) = delete;
  Outside& operator=(const Outside&) = delete;

  // Counts from 1 from here on; call `failAt` throws AutomationError {failure, source, description(failAt)}.
  void count(std::size_t failAt) {
    calls_.clear();
    failAt_ = failAt;
    counting_ = true;
  }
  // Neither counts nor fails from here on. What was counted stays.
  void rest() { counting_ = false; }

  // In order, since count(); a call that failed is the last one that it could be.
  const std::vector<OutsideCall>& calls() const { return calls_; }

  // Runs `action` as the outside's answer to a call. Memory that is taken meanwhile is not the library's.
  template <typename Action>
  decltype(auto) call(std::string_view member, std::string_view text, Action action) {
    const NotTheLibrary away;
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

  // How many objects of the outside the library holds.
  int held(Thing thing) const { return held_.at(static_cast<std::size_t>(thing)); }
  int held() const {
    int all = 0;
    for (const int count : held_)
      all += count;
    return all;
  }

 private:
  friend class Held;

  std::vector<OutsideCall> calls_;
  std::size_t failAt_ = 0;
  bool counting_ = false;
  std::array<int, thingCount> held_{};
};

// Counts an object for as long as it lives.
class Held {
 public:
  Held(Outside& outside, Thing thing) : outside_(outside), count_(outside.held_.at(static_cast<std::size_t>(thing))) {
    ++count_;
  }
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;
  ~Held() { --count_; }

  Outside& outside() const { return outside_; }

 private:
  Outside& outside_;
  int& count_;
};

}  // namespace quillon::faults
