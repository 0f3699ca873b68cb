// Thousands of reports, dialogs and documents in one process through Quillon.dll: at the end the process uses
// no more memory and handles than after the first rounds.
#include <gtest/gtest.h>

#include <iostream>

#include "tests/automation/com_scope.h"
#include "tests/long_life/com_library.h"
#include "tests/long_life/flat_level.h"
#include "tests/long_life/small_account.h"

namespace quillon::long_life {
namespace {

// The engine keeps the translations of statements that come again; what lies between them in the heap settles with them.
constexpr int warmRounds = 4;

TEST(Runs, LeaveNothing) {
  const automation::test::ComScope apartment;
  const ComLibrary library;
  const SmallAccount account(1);
  const std::vector<Use> uses = account.uses();
  // Whole rounds: what the library keeps for the thread depends on what it did last.
  const int round = static_cast<int>(uses.size());
  const int runs = (numberFromEnvironment("QUILLON_RUNS", 200) + round - 1) / round * round;

  std::vector<std::string> known;
  for (const Use& use : uses)
    known.push_back(account.resultOf(use));
  for (int warm = 2; warm <= warmRounds; ++warm) {
    for (std::size_t i = 0; i < uses.size(); ++i)
      EXPECT_EQ(account.resultOf(uses[i]), known[i]);
  }

  EXPECT_EQ(library.canUnload(), S_OK);
  const long objects = automation::LiveCount::value();
  const ProcessLevel before = processLevel();
  for (int run = 0; run < runs; ++run) {
    const std::size_t use = static_cast<std::size_t>(run) % uses.size();
    ASSERT_EQ(account.resultOf(uses[use]), known[use]) << "run " << run;
  }
  EXPECT_EQ(library.canUnload(), S_OK);
  const ProcessLevel after = processLevel();
  std::cout << "long life: runs | " << runs << " runs | " << described(before, after) << '\n';
  expectFlat(before, after);
  EXPECT_EQ(automation::LiveCount::value(), objects);
}

}  // namespace
}  // namespace quillon::long_life
