#include <gtest/gtest.h>

#include "vorn/base/ModuleName.hpp"
#include "vorn/base/ModuleStatus.hpp"
#include "vorn/base/OperationResult.hpp"

namespace vorn {
namespace {

TEST(ModuleName, IntegerTagsParseSilently) {
  static_assert(moduleNameFromRawInt(0) == ModuleName::cdp);
  static_assert(moduleNameFromRawInt(1) == ModuleName::push);
  static_assert(!moduleNameFromRawInt(2) && !moduleNameFromRawInt(-1));
  EXPECT_EQ(rawIntValue(ModuleName::push), 1);
}

TEST(ModuleName, RawValuesDescriptionsAndOrder) {
  EXPECT_EQ(rawValue(ModuleName::cdp), "cdp");
  EXPECT_EQ(rawValue(ModuleName::push), "push");
  EXPECT_EQ(description(ModuleName::cdp), "Cdp.CdpModule");
  EXPECT_EQ(description(ModuleName::push), "VORNSdkPushModule");
  EXPECT_EQ(kAllModuleNames[0], ModuleName::cdp);
  EXPECT_EQ(kAllModuleNames[1], ModuleName::push);
  EXPECT_EQ(moduleNameFrom("push"), ModuleName::push);
  EXPECT_EQ(moduleNameFrom("PUSH"), std::nullopt);
  EXPECT_EQ(moduleNameFrom("VORNSdkPushModule"), std::nullopt);
}

TEST(ModuleStatus, RawValuesRoundTrip) {
  const std::vector<std::string_view> raw{"cancelled", "disabled",     "failed",
                                          "inactive",  "initializing", "operational"};
  for (int i = 0; i < 6; ++i) {
    const auto status = static_cast<ModuleStatus>(i);
    EXPECT_EQ(rawValue(status), raw[static_cast<std::size_t>(i)]);
    EXPECT_EQ(moduleStatusFrom(raw[static_cast<std::size_t>(i)]), status);
  }
  EXPECT_EQ(moduleStatusFrom("Operational"), std::nullopt);
}

TEST(OperationResult, ExactRawValuesOnly) {
  EXPECT_EQ(operationResultFrom("cancelled"), OperationResult::cancelled);
  EXPECT_EQ(operationResultFrom("error"), OperationResult::error);
  EXPECT_EQ(operationResultFrom("success"), OperationResult::success);
  EXPECT_EQ(operationResultFrom("timeout"), OperationResult::timeout);
  EXPECT_EQ(operationResultFrom("Success"), std::nullopt);
  EXPECT_EQ(operationResultFrom(""), std::nullopt);
  EXPECT_EQ(rawValue(OperationResult::timeout), "timeout");
}

}  // namespace
}  // namespace vorn
