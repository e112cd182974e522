#include <gtest/gtest.h>

#include "vorn/identity/ModuleNameFromInt.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

using testing::CaptureLogSink;

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

}  // namespace
}  // namespace vorn
