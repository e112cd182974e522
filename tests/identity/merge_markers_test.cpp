// The data policy reset over the merge markers in the standard user defaults.
#include <gtest/gtest.h>

#include "vorn/identity/DataMergeMarkers.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/FaultyDefaultsStore.hpp"
#include "vorn/testing/PlatformInstall.hpp"

namespace vorn {
namespace {

using testing::CaptureLogSink;

constexpr std::string_view kStandard = DefaultsStore::kStandardSuite;

TEST(MergeMarkersTest, KeysCarryTheApplicationId) {
  EXPECT_EQ(DataMergeMarkers::mergeCompletedKey("app1"), "VORN_MERGE_COMPLETED-app1");
  EXPECT_EQ(DataMergeMarkers::defaultMergeCompletedKey("app1"),
            "VORN_DEFAULT_MERGE_COMPLETED-app1");
  EXPECT_EQ(DataMergeMarkers::mandateAutoOptInMergeCompletedKey("app1"),
            "VORN_MANDATE_AUTO_OPT_IN_MERGE_COMPLETED-app1");
}

TEST(MergeMarkersTest, ResetRemovesBothMarkersOfThatAppOnly) {
  auto sink = CaptureLogSink::install();
  Platform platform = testing::installEphemeralPlatform();
  auto& defaults = *platform.defaults;
  defaults.setBool(kStandard, true, "VORN_MERGE_COMPLETED-app");
  defaults.setBool(kStandard, true, "VORN_DEFAULT_MERGE_COMPLETED-app");
  defaults.setBool(kStandard, true, "VORN_MERGE_COMPLETED-other");

  EXPECT_TRUE(DataMergeMarkers::resetDataPolicy("app"));
  EXPECT_FALSE(defaults.object(kStandard, "VORN_MERGE_COMPLETED-app"));
  EXPECT_FALSE(defaults.object(kStandard, "VORN_DEFAULT_MERGE_COMPLETED-app"));
  EXPECT_TRUE(defaults.boolFor(kStandard, "VORN_MERGE_COMPLETED-other"));
  EXPECT_EQ(sink->messages(),
            (std::vector<std::string>{
                "Data policy reset Started!",
                "Data policy reset success!. You can now try Auto or Manual merge again!"}));
  EXPECT_EQ(sink->lines().front().category, LoggerCategory::storage);
}

TEST(MergeMarkersTest, ResetWithNoMarkersSucceeds) {
  auto sink = CaptureLogSink::install();
  testing::installEphemeralPlatform();
  EXPECT_TRUE(DataMergeMarkers::resetDataPolicy("fresh"));
  EXPECT_TRUE(sink->contains("Data policy reset Started!"));
}

TEST(MergeMarkersTest, MandatedMergeRefusesTheResetAndKeepsEveryMarker) {
  auto sink = CaptureLogSink::install();
  auto defaults = DefaultsStore::inMemory();
  defaults->setBool(kStandard, true, "VORN_MANDATE_AUTO_OPT_IN_MERGE_COMPLETED-app");
  defaults->setBool(kStandard, true, "VORN_MERGE_COMPLETED-app");
  EXPECT_FALSE(DataMergeMarkers::resetDataPolicy(*defaults, "app"));
  EXPECT_TRUE(defaults->boolFor(kStandard, "VORN_MERGE_COMPLETED-app"));
  EXPECT_TRUE(defaults->boolFor(kStandard, "VORN_MANDATE_AUTO_OPT_IN_MERGE_COMPLETED-app"));
  EXPECT_EQ(sink->messages(),
            (std::vector<std::string>{"Data policy reset not allowed as the data merge is already "
                                      "done!"}));
}

TEST(MergeMarkersTest, MandatedMarkerSetToFalseDoesNotBlock) {
  auto defaults = DefaultsStore::inMemory();
  defaults->setBool(kStandard, false, "VORN_MANDATE_AUTO_OPT_IN_MERGE_COMPLETED-app");
  EXPECT_TRUE(DataMergeMarkers::resetDataPolicy(*defaults, "app"));
  EXPECT_TRUE(defaults->object(kStandard, "VORN_MANDATE_AUTO_OPT_IN_MERGE_COMPLETED-app"));
}

TEST(MergeMarkersTest, MarkerThatSurvivesRemovalFailsTheReset) {
  auto sink = CaptureLogSink::install();
  auto defaults = std::make_shared<testing::FaultyDefaultsStore>();
  defaults->setBool(kStandard, false, "VORN_DEFAULT_MERGE_COMPLETED-app");
  defaults->setIgnoreRemovals(true);
  EXPECT_FALSE(DataMergeMarkers::resetDataPolicy(*defaults, "app"));
  EXPECT_EQ(sink->messages(),
            (std::vector<std::string>{"Data policy reset Started!", "Data policy reset failed!"}));
}

TEST(MergeMarkersTest, AnInstanceResetsOnItsOwnStoreOnly) {
  auto platform = testing::installEphemeralPlatform();
  platform.defaults->setBool(kStandard, true, "VORN_MERGE_COMPLETED-app");
  auto defaults = DefaultsStore::inMemory();
  defaults->setBool(kStandard, true, "VORN_MERGE_COMPLETED-app");
  EXPECT_TRUE(DataMergeMarkers(defaults).reset("app"));
  EXPECT_FALSE(defaults->object(kStandard, "VORN_MERGE_COMPLETED-app"));
  EXPECT_TRUE(platform.defaults->boolFor(kStandard, "VORN_MERGE_COMPLETED-app"));
}

}  // namespace
}  // namespace vorn
