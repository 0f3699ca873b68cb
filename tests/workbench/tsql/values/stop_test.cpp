#include "workbench/tsql/values/stop.h"

#include <gtest/gtest.h>

#include <thread>

namespace quillon::tsql {
namespace {

TEST(StopScope, ARequestStopsItsOwnThreadAlone) {
  const auto request = std::make_shared<StopRequest>();
  const StopScope scope(request);
  EXPECT_FALSE(stopRequested());
  request->request();
  EXPECT_TRUE(stopRequested());
  EXPECT_THROW(endIfStopped(), Stopped);
  bool others = true;
  std::thread([&others] { others = stopRequested(); }).join();
  EXPECT_FALSE(others);
}

TEST(StopScope, AnotherThreadCanWorkForIt) {
  const auto request = std::make_shared<StopRequest>();
  const StopScope scope(request);
  bool stopped = false;
  std::thread worker([&stopped, current = StopScope::current()] {
    const StopScope same(current);
    while (!stopRequested())
      std::this_thread::yield();
    stopped = true;
  });
  request->request();
  worker.join();
  EXPECT_TRUE(stopped);
}

TEST(StopScope, EndsWithTheScope) {
  const auto outer = std::make_shared<StopRequest>(), inner = std::make_shared<StopRequest>();
  const StopScope scope(outer);
  inner->request();
  {
    const StopScope within(inner);
    EXPECT_TRUE(stopRequested());
  }
  EXPECT_FALSE(stopRequested());
  EXPECT_EQ(StopScope::current(), outer);
}

TEST(StopScope, IsIgnoredWhileThingsArePutAway) {
  const auto request = std::make_shared<StopRequest>();
  const StopScope scope(request);
  request->request();
  {
    const IgnoreStop putAway;
    EXPECT_FALSE(stopRequested());
  }
  EXPECT_TRUE(stopRequested());
}

TEST(StopScope, HearsOfARequestToTheWholeProcess) {
  const StopScope scope(std::make_shared<StopRequest>());
  requestStop();
  EXPECT_TRUE(stopRequested());
  forgetStop();
  EXPECT_FALSE(stopRequested());
}

}  // namespace
}  // namespace quillon::tsql
