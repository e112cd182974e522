#include "vorn/core/VORNSdkComponents.hpp"

#include <gtest/gtest.h>

#include "vorn/base/InitializationState.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/FakeModuleConfig.hpp"
#include "vorn/testing/PlatformInstall.hpp"
#include "vorn/testing/ScriptedHttpTransport.hpp"

namespace vorn {
namespace {

TEST(VORNSdkComponents, AreBoundToTheModuleKeyAndApplication) {
  testing::installEphemeralPlatform();
  const auto components =
      VORNSdkComponents::create(testing::FakeModuleConfig(ModuleName::push, "APP7"));
  ASSERT_NE(components->encryptionManager(), nullptr);
  ASSERT_NE(components->encryptionManager()->encryptionKey(), nullptr);
  EXPECT_EQ(components->storageManager()->moduleAppId(), "APP7");
  EXPECT_EQ(components->storageManager()->encryptionManager(), components->encryptionManager());
  // The module's key round-trips text, and a second start finds the same key.
  const auto cipher = components->encryptionManager()->encrypt("token");
  ASSERT_TRUE(cipher.has_value());
  const auto again = VORNSdkComponents::create(testing::FakeModuleConfig(ModuleName::push));
  EXPECT_EQ(again->encryptionManager()->decrypt(*cipher), "token");
}

TEST(VORNSdkComponents, GiveTheSharedBehaviourManager) {
  testing::installEphemeralPlatform();
  const auto components = VORNSdkComponents::create(testing::FakeModuleConfig(ModuleName::cdp));
  EXPECT_EQ(components->behaviorManager(), BehaviorManager::shared());
}

// Deadlines belong to the module: every network manager it makes sees them, and another
// module's managers do not.
TEST(VORNSdkComponents, NetworkManagersOfOneModuleShareTheirDeadlines) {
  Platform platform = Platform::ephemeral();
  auto transport = std::make_shared<testing::ScriptedHttpTransport>();
  transport->setHandler([](const HttpRequest&) { return testing::httpAnswer(200); });
  platform.http = transport;
  Platform::install(platform);
  const auto push = VORNSdkComponents::create(testing::FakeModuleConfig(ModuleName::push));
  const auto request = WrappedRequest::Builder()
                           .method("POST")
                           .url("http://127.0.0.1:9/v1/events")
                           .name("events")
                           .rateLimit(60)
                           .build();
  ASSERT_TRUE(request.has_value());
  EXPECT_TRUE(
      push->createNetworkManager(nullptr)->executeSync(*request).wrappedResponse.isSuccess());

  EXPECT_TRUE(push->createNetworkManager(nullptr)->isBlockedByRetryAfter("events"));
  const auto cdp = VORNSdkComponents::create(testing::FakeModuleConfig(ModuleName::cdp));
  EXPECT_FALSE(cdp->createNetworkManager(nullptr)->isBlockedByRetryAfter("events"));
  EXPECT_EQ(transport->requestCount(), 1u);
}

TEST(InitializationState, RawValuesAreBytesInProgressOrder) {
  EXPECT_EQ(rawValue(InitializationState::NONE), 0);
  EXPECT_EQ(rawValue(InitializationState::INITIALIZING), 1);
  EXPECT_EQ(rawValue(InitializationState::READY), 2);
  EXPECT_GT(InitializationState::READY, InitializationState::INITIALIZING);
  EXPECT_EQ(initializationStateFromInt(2), InitializationState::READY);
  EXPECT_FALSE(initializationStateFromInt(3).has_value());
  EXPECT_FALSE(initializationStateFromInt(-1).has_value());
}

}  // namespace
}  // namespace vorn
