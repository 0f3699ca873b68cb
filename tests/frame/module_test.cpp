#include "frame/module.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/frame/fakes.h"

namespace quillon {
namespace {

using testing::ElementsAre;

TEST(Module, CreatesAComponentOnFirstUseAndKeepsIt) {
  fakes::FakePlatform platform;
  Module module(platform);
  EXPECT_TRUE(platform.record.calls.empty());
  PublicComponent& component = module.publicComponent();
  ResourceService& resources = module.resources();
  UniqueNameSource& names = module.uniqueNames();
  EXPECT_EQ(&module.publicComponent(), &component);
  EXPECT_EQ(&module.resources(), &resources);
  EXPECT_EQ(&module.uniqueNames(), &names);
  EXPECT_THAT(platform.record.calls,
              ElementsAre("create PublicComponent", "create ResourceService", "create UniqueNameSource"));
}

TEST(Module, TriesAgainAfterACreationThatFailed) {
  fakes::FakePlatform platform;
  Module module(platform);
  platform.record.failAt = 1;
  EXPECT_THROW(module.publicComponent(), AutomationError);
  EXPECT_NO_THROW(module.publicComponent());
  EXPECT_EQ(platform.record.alive, 1);
}

TEST(Module, ReleasesWhatItHoldsWhenItEnds) {
  fakes::FakePlatform platform;
  {
    Module module(platform);
    module.publicComponent();
    module.resources();
    module.uniqueNames();
    module.session = platform.createSession();
    EXPECT_EQ(platform.record.alive, 4);
  }
  EXPECT_EQ(platform.record.alive, 0);
}

}  // namespace
}  // namespace quillon
