#include "vorn/core/VORNSdkComponents.hpp"

#include <gtest/gtest.h>

#include "vorn/base/InitializationState.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/FakeModuleConfig.hpp"
#include "vorn/testing/PlatformInstall.hpp"

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

TEST(VORNSdkComponents, BehaviourAndNetworkAreNotAvailableYet) {
  auto sink = testing::CaptureLogSink::install();
  const VORNSdkComponents components(nullptr, nullptr);
  EXPECT_EQ(components.behaviorManager(), nullptr);
  EXPECT_EQ(components.createNetworkManager(nullptr), nullptr);
  EXPECT_EQ(sink->messages(), (std::vector<std::string>{
                                  "The behavior manager is not available in this build.",
                                  "The network manager is not available in this build.",
                              }));
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
