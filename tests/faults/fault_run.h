// One run of a member of the library with one failing call, and what all tests of faults expect of it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "frame/automation_error.h"
#include "tests/faults/fault_injector.h"

namespace quillon::faults {

// How a member ended: with the error that it passed on, or without one.
using Ending = std::optional<AutomationError>;

// Runs `member` with call `failAt` failing; 0 fails none.
template <typename Member>
Ending runWithFault(FaultInjector& injector, std::size_t failAt, Member member) {
  Ending ending;
  injector.start(failAt);
  try {
    member();
  } catch (const AutomationError& error) {
    ending = error;
  } catch (const std::exception& error) {
    ADD_FAILURE() << "something else was thrown: " << error.what();
  }
  injector.stop();
  return ending;
}

// The failing call's own error left the member, as it was, and nothing more was called.
inline void expectPassedOn(const Ending& ending, const FaultInjector& injector, std::size_t failAt) {
  EXPECT_EQ(injector.calls().size(), failAt) << "the platform was called after a call had failed";
  ASSERT_TRUE(ending.has_value()) << "the error was not passed on";
  EXPECT_EQ(ending->code(), FaultInjector::failure);
  EXPECT_EQ(ending->source(), FaultInjector::source);
  EXPECT_EQ(ending->description(), FaultInjector::description(failAt));
}

// How many calls of `member` were answered.
inline int answered(const FaultInjector& injector, std::size_t failAt, std::string_view member) {
  int count = 0;
  for (std::size_t i = 0; i < injector.calls().size(); ++i) {
    if (i + 1 != failAt && injector.calls()[i].member == member) ++count;
  }
  return count;
}

// What a failing test shows of a call.
inline std::string shown(const PortCall& call) {
  constexpr std::size_t enough = 80;
  return call.member + " " + call.text.substr(0, enough);
}

}  // namespace quillon::faults
