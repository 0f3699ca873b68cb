// Quillon.dll is loaded, used, asked whether it can be unloaded, and unloaded, over and over: each time it is really gone,
// all that it had allocated is free, and the platform's objects that it kept until then are released.
#include <gtest/gtest.h>

#include <iostream>

#include "tests/automation/com_scope.h"
#include "tests/long_life/com_library.h"
#include "tests/long_life/flat_level.h"
#include "tests/long_life/small_account.h"

namespace quillon::long_life {
namespace {

TEST(Reload, LeavesNothing) {
  const int reloads = numberFromEnvironment("QUILLON_RELOADS", 40);
  const automation::test::ComScope apartment;
  const SmallAccount account(1);
  const std::vector<Use> uses = account.uses();

  const auto reload = [&](int round) {
    const long before = automation::LiveCount::value();
    {
      const ComLibrary library;
      EXPECT_NE(account.resultOf(uses[static_cast<std::size_t>(round) % uses.size()]), "");
      const long kept = automation::LiveCount::value();
      EXPECT_GT(kept, before);
      EXPECT_EQ(library.canUnload(), S_OK);
      EXPECT_EQ(automation::LiveCount::value(), kept) << "the answer has released something, round " << round;
    }
    ASSERT_EQ(GetModuleHandleW(L"Quillon.dll"), nullptr) << "round " << round;
    EXPECT_EQ(automation::LiveCount::value(), before) << "something outlived the library, round " << round;
  };
  const int warmUp = 2 * static_cast<int>(uses.size());
  for (int round = 0; round < warmUp; ++round)
    reload(round);

  const ProcessLevel before = processLevel();
  for (int round = 0; round < reloads && !HasFailure(); ++round)
    reload(round);
  const ProcessLevel after = processLevel();
  std::cout << "long life: reloads | " << reloads << " reloads | " << described(before, after) << '\n';
  // What mingw-w64's thread library keeps of each library that was ever loaded, used or not, and of the thread that used
  // it: a few hundred bytes that nobody can release.
  constexpr std::uint64_t keptOfALoad = 512;
  expectFlat(before, after, static_cast<std::uint64_t>(reloads) * keptOfALoad);
}

}  // namespace
}  // namespace quillon::long_life
