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

TEST(Module, WhatAnOuterMemberUsesIsKeptUntilItEndsWhateverAnInnerOneReplaces) {
  fakes::FakePlatform platform;
  Module module(platform);
  {
    const Module::Use outer(module);
    module.takeSession(platform.createSession());
    Session& session = *module.session;
    PublicComponent& component = module.publicComponent();
    for (int time = 0; time < 2; ++time) {
      const Module::Use inner(module);
      module.takeSession(platform.createSession());
      module.releasePublicComponent();
    }
    // Both are the outer member's still, though the module has them no more.
    session.setConnectionTimeout(0);
    component.accountInformation("AA", "cSysVersion", session);
    EXPECT_EQ(platform.record.alive, 4) << "three sessions and the component";
  }
  EXPECT_EQ(platform.record.alive, 1) << "the module's session";
}

TEST(Module, AnInnermostMemberKeepsNothingBack) {
  fakes::FakePlatform platform;
  Module module(platform);
  const Module::Use use(module);
  module.takeSession(platform.createSession());
  module.takeSession(platform.createSession());
  EXPECT_EQ(platform.record.alive, 1);
}

TEST(Module, TheSessionThatIsReplacedIsRetired) {
  struct Told final : fakes::FakeSession {
    using FakeSession::FakeSession;
    void retire() noexcept override { retired = true; }
    bool retired = false;
  };
  fakes::FakePlatform platform;
  Module module(platform);
  const auto first = std::make_shared<Told>(platform.record, platform.answers.queries);
  module.takeSession(first);
  EXPECT_FALSE(first->retired);
  module.takeSession(platform.createSession());
  EXPECT_TRUE(first->retired);
}

TEST(Module, WhatAnotherRunHasTakenAwayIsAnError) {
  fakes::FakePlatform platform;
  Module module(platform);
  EXPECT_THROW(module.sessionInUse(), AutomationError);
  EXPECT_THROW(module.loginInUse(), AutomationError);
  module.session = platform.createSession();
  EXPECT_EQ(&module.sessionInUse(), module.session.get());
}

}  // namespace
}  // namespace quillon
