// A defaults read that fails is not "nothing stored": the registration id is not made again
// over the stored one, and the data policy reset does not take a mandate marker it could not
// read for an absent one.
#include <gtest/gtest.h>

#include "storage/secure_prefs_support.hpp"
#include "vorn/identity/DataMergeMarkers.hpp"
#include "vorn/storage/prefs/StorageManager.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/FaultyDefaultsStore.hpp"
#include "vorn/testing/PlatformInstall.hpp"

namespace vorn {
namespace {

using testing::FaultyDefaultsStore;

TEST(PrefsReadError, AFailedRegistrationReadKeepsTheStoredId) {
  auto defaults = std::make_shared<FaultyDefaultsStore>();
  testing::installEphemeralPlatform(nullptr, defaults);
  const auto encryption = test::managerWithKeyByte(3);
  const std::string stored = StorageManager(encryption, "APP1").getRegistrationId();
  ASSERT_EQ(stored.size(), 36u);

  defaults->failNextReads(1);
  StorageManager unlucky(encryption, "APP1");
  EXPECT_EQ(StorageManager(encryption, "APP1").getRegistrationId(), stored)
      << "the failed read made a new registration id over the stored one";
  EXPECT_EQ(unlucky.getRegistrationId(), stored) << "read again on the next call";
}

TEST(PrefsReadError, AnUnreadableMandateMarkerRefusesTheReset) {
  auto sink = testing::CaptureLogSink::install();
  auto defaults = std::make_shared<FaultyDefaultsStore>();
  testing::installEphemeralPlatform(nullptr, defaults);
  const std::string merged = DataMergeMarkers::mergeCompletedKey("APP1");
  const std::string mandate = DataMergeMarkers::mandateAutoOptInMergeCompletedKey("APP1");
  defaults->setBool("", true, merged);
  defaults->setBool("", true, mandate);
  defaults->failNextReads(1, mandate);
  EXPECT_FALSE(DataMergeMarkers::resetDataPolicy("APP1"));
  EXPECT_TRUE(defaults->boolFor("", merged));
  EXPECT_FALSE(sink->contains("Data policy reset Started!"));
}

TEST(PrefsReadError, AResetWhoseResultCannotBeReadIsNoSuccess) {
  auto sink = testing::CaptureLogSink::install();
  testing::FaultyDefaultsStore defaults;
  defaults.setBool("", true, DataMergeMarkers::mergeCompletedKey("APP1"));
  defaults.setIgnoreRemovals(true);
  defaults.failNextReads(2, std::nullopt, 1);
  EXPECT_FALSE(DataMergeMarkers::resetDataPolicy(defaults, "APP1"));
  EXPECT_TRUE(sink->contains("Data policy reset failed!"));
}

}  // namespace
}  // namespace vorn
