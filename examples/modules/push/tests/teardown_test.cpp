// Tearing the module down while a registration is on the wire.
#include "PushTestSupport.hpp"
#include "vorn/behavior/BehaviorManager.hpp"

namespace push::test {
namespace {

class TearDown : public PushModuleTest {};

TEST_F(TearDown, DuringAPendingSendEndsCleanly) {
  Started s = start();
  std::atomic<int> callbacks{0};
  s.push->setRegistrationCallback([&](const vorn::Dictionary&) { ++callbacks; });
  backend.close();
  s.push->addTag("held");
  ASSERT_TRUE(vorn::testing::waitUntil([&] { return backend.held() == 1; }));
  s.push->addTag("queued");

  s.module->tearDown();
  EXPECT_TRUE(sink->contains("Push module torn down."));
  std::weak_ptr<vorn::VORNModule> weak = s.module;
  started.clear();
  s = {};
  backend.open();

  ASSERT_TRUE(vorn::testing::waitUntil([&] { return weak.expired(); }));
  EXPECT_EQ(callbacks, 0);
  EXPECT_EQ(backend.count("/v1/registration"), 1u);
}

TEST_F(TearDown, RemovesTheBehaviourObserverAndRefusesNewWork) {
  const auto behaviors = vorn::BehaviorManager::shared();
  const std::size_t before = behaviors->observationCount();
  Started s = start();
  EXPECT_EQ(behaviors->observationCount(), before + 1);
  s.module->tearDown();
  s.module->tearDown();
  EXPECT_EQ(sink->count("Push module torn down."), 1u);
  EXPECT_EQ(behaviors->observationCount(), before);
  EXPECT_FALSE(s.push->refreshMessages());
  EXPECT_TRUE(sink->contains("The push module is torn down; nothing is fetched."));
}

}  // namespace
}  // namespace push::test
