#include <gtest/gtest.h>

#include "vorn/base/ModuleName.hpp"
#include "vorn/base/ModuleStatus.hpp"
#include "vorn/base/OperationResult.hpp"
#include "vorn/identity/ModuleNameFromInt.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

using testing::CaptureLogSink;

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

TEST(ModuleName, InvalidIntegerLogsWarningInIdentityCategory) {
  auto sink = CaptureLogSink::install();
  EXPECT_EQ(moduleNameFromInt(0), ModuleName::cdp);
  EXPECT_EQ(moduleNameFromInt(1), ModuleName::push);
  EXPECT_TRUE(sink->lines().empty());
  EXPECT_EQ(moduleNameFromInt(2), std::nullopt);
  EXPECT_EQ(moduleNameFromInt(-7), std::nullopt);
  const auto lines = sink->lines();
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0].message, "Invalid module rawValue: `2`.");
  EXPECT_EQ(lines[0].level, LogLevel::warning);
  EXPECT_EQ(lines[0].category, LoggerCategory::identity);
  EXPECT_EQ(lines[1].message, "Invalid module rawValue: `-7`.");
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
