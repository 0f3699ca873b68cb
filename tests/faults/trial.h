// One run of a member of the library with one failing call, and what is said of it by all tests of faults.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "frame/automation_error.h"
#include "tests/faults/outside.h"

namespace quillon::faults {

// How a member ended: with the error that it passed on, or without one.
using Ending = std::optional<AutomationError>;

// Runs `member` with call `failAt` failing; 0 fails none.
template <typename Member>
Ending runWithFault(Outside& outside, std::size_t failAt, Member member) {
  Ending ending;
  outside.count(failAt);
  try {
    member();
  } catch (const AutomationError& error) {
    ending = error;
  } catch (const std::exception& error) {
    ADD_FAILURE() << "something else was thrown: " << error.what();
  }
  outside.rest();
  return ending;
}

// The failing call's own error left the member, as it was, and nothing more was called.
inline void expectPassedOn(const Ending& ending, const Outside& outside, std::size_t failAt) {
  EXPECT_EQ(outside.calls().size(), failAt) << "the outside was called after a call had failed";
  ASSERT_TRUE(ending.has_value()) << "the error was not passed on";
  EXPECT_EQ(ending->code(), Outside::failure);
  EXPECT_EQ(ending->source(), Outside::source);
  EXPECT_EQ(ending->description(), Outside::description(failAt));
}

// How many calls of `member` were answered.
inline int answered(const Outside& outside, std::size_t failAt, std::string_view member) {
  int count = 0;
  for (std::size_t i = 0; i < outside.calls().size(); ++i) {
    if (i + 1 != failAt && outside.calls()[i].member == member) ++count;
  }
  return count;
}

// What a failing test shows of a call.
inline std::string shown(const OutsideCall& call) {
  constexpr std::size_t enough = 80;
  return call.member + " " + call.text.substr(0, enough);
}

}  // namespace quillon::faults
