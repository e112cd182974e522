// The storage manager and secure preferences on stores handed to them: values and the
// registration id live in those stores only and are found again by a new launch.
#include <gtest/gtest.h>

#include "storage/GivenStores.hpp"
#include "vorn/storage/prefs/StorageManager.hpp"

namespace vorn {
namespace {

std::unique_ptr<StorageManager> startModule(const test::GivenStores& stores, ModuleName module) {
  auto encryption = std::make_shared<EncryptionManager>(module, test::Launch(stores).keyStore);
  return std::make_unique<StorageManager>(encryption, "APP1", stores.defaults, stores.keychain);
}

TEST(StorageOnGivenStores, ValuesAndRegistrationIdSurviveANewLaunch) {
  test::UntouchedPlatform platform;
  test::GivenStores stores;
  const auto first = startModule(stores, ModuleName::cdp);
  ASSERT_TRUE(first->getOrCreateSecurePrefs("values")->setString("kept", "key"));
  const auto second = startModule(stores, ModuleName::cdp);
  EXPECT_EQ(second->getRegistrationId(), first->getRegistrationId());
  EXPECT_EQ(second->getOrCreateSecurePrefs("values")->stringFor("key"), "kept");
  EXPECT_NE(startModule(stores, ModuleName::push)->getRegistrationId(), first->getRegistrationId());
  EXPECT_TRUE(platform.untouched());
}

TEST(StorageOnGivenStores, AnUnreadableRegistrationGivesStorageThatHoldsNothing) {
  test::GivenStores stores;
  auto defaults = std::make_shared<testing::FaultyDefaultsStore>(stores.defaults);
  const std::string id = startModule(stores, ModuleName::push)->getRegistrationId();
  defaults->setFailReads(true);
  auto encryption =
      std::make_shared<EncryptionManager>(ModuleName::push, test::Launch(stores).keyStore);
  StorageManager storage(encryption, "APP1", defaults, stores.keychain);
  EXPECT_EQ(storage.getRegistrationId(), "");
  EXPECT_FALSE(storage.getOrCreateSecurePrefs("values")->setString("lost", "key"));
  defaults->setFailReads(false);
  EXPECT_EQ(storage.getRegistrationId(), id) << "read again once the store answers";
}

}  // namespace
}  // namespace vorn
