// The merge policy, its callbacks, and the reset of the merge markers.
#include <thread>

#include <gtest/gtest.h>

#include "vorn/identity/DataPolicy.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/PlatformInstall.hpp"

namespace vorn {
namespace {

TEST(DataPolicyTest, NothingIsChosenInAFreshProcess) {
  EXPECT_EQ(DataPolicy::getDataMergePolicy(), DataMergePolicy::notSet);
  EXPECT_FALSE(DataPolicy::getAutoDataPolicyCallBack());
  EXPECT_FALSE(DataPolicy::getManualDataPolicyCallBack());
  EXPECT_EQ(dataMergePolicyFromInt(2), DataMergePolicy::manual);
  EXPECT_EQ(dataMergePolicyFromInt(3), std::nullopt);
  EXPECT_LT(DataMergePolicy::auto_, DataMergePolicy::manual);
}

TEST(DataPolicyTest, TheLastSetterChoosesAndBothCallbacksStay) {
  std::vector<bool> outcomes;
  Dictionary manualLeft;
  DataPolicy::setAutoMergePolicy([&](bool merged) { outcomes.push_back(merged); });
  EXPECT_EQ(DataPolicy::getDataMergePolicy(), DataMergePolicy::auto_);
  DataPolicy::setManualMergePolicy(
      [&](const Dictionary& left, const Dictionary&) { manualLeft = left; });
  EXPECT_EQ(DataPolicy::getDataMergePolicy(), DataMergePolicy::manual);
  DataPolicy::getAutoDataPolicyCallBack()(true);
  DataPolicy::getManualDataPolicyCallBack()(Dictionary{{"a", 1}}, Dictionary{});
  EXPECT_EQ(manualLeft, (Dictionary{{"a", 1}}));

  DataPolicy::setAutoMergePolicy([&](bool merged) { outcomes.push_back(!merged); });
  EXPECT_EQ(DataPolicy::getDataMergePolicy(), DataMergePolicy::auto_);
  DataPolicy::getAutoDataPolicyCallBack()(true);
  EXPECT_EQ(outcomes, (std::vector<bool>{true, false}));
}

TEST(DataPolicyTest, SettersAndReadersMayRace) {
  std::thread setter([] {
    for (int i = 0; i < 200; ++i)
      DataPolicy::setManualMergePolicy([](const Dictionary&, const Dictionary&) {});
  });
  for (int i = 0; i < 200; ++i) {
    DataPolicy::setAutoMergePolicy([](bool) {});
    EXPECT_TRUE(DataPolicy::getAutoDataPolicyCallBack());
  }
  setter.join();
  EXPECT_TRUE(DataPolicy::getManualDataPolicyCallBack());
}

TEST(DataPolicyTest, ResetClearsTheInstalledStoresMarkersUnlessMandated) {
  auto sink = testing::CaptureLogSink::install();
  auto& defaults = *testing::installEphemeralPlatform().defaults;
  constexpr std::string_view standard = DefaultsStore::kStandardSuite;
  defaults.setBool(standard, true, "VORN_MERGE_COMPLETED-a");
  defaults.setBool(standard, true, "VORN_DEFAULT_MERGE_COMPLETED-a");
  EXPECT_TRUE(DataPolicy::resetDataPolicy("a"));
  EXPECT_FALSE(defaults.object(standard, "VORN_MERGE_COMPLETED-a"));
  EXPECT_FALSE(defaults.object(standard, "VORN_DEFAULT_MERGE_COMPLETED-a"));

  defaults.setBool(standard, true, "VORN_MERGE_COMPLETED-a");
  defaults.setBool(standard, true, "VORN_MANDATE_AUTO_OPT_IN_MERGE_COMPLETED-a");
  sink->clear();
  EXPECT_FALSE(DataPolicy::resetDataPolicy("a"));
  EXPECT_TRUE(defaults.boolFor(standard, "VORN_MERGE_COMPLETED-a"));
  EXPECT_EQ(
      sink->messages(),
      std::vector<std::string>{"Data policy reset not allowed as the data merge is already done!"});
}

}  // namespace
}  // namespace vorn
