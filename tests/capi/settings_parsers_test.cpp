#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <memory>
#include <stdexcept>

#include "vorn/core/ModuleSettingsParsers.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/FakeModuleConfig.hpp"

namespace vorn::capi {
namespace {

using testing::CaptureLogSink;
using testing::FakeModuleConfig;

class ModuleSettingsParsersTest : public ::testing::Test {
 protected:
  ~ModuleSettingsParsersTest() override {
    ModuleSettingsParsers::unregisterParser(ModuleName::cdp);
    ModuleSettingsParsers::unregisterParser(ModuleName::push);
  }
  std::shared_ptr<CaptureLogSink> log_ = CaptureLogSink::install();
};

TEST_F(ModuleSettingsParsersTest, WithoutAParserTheSettingsAreRefusedWithALogLine) {
  const auto result = ModuleSettingsParsers::parse(ModuleName::cdp, nlohmann::json::object());
  EXPECT_EQ(result.config, nullptr);
  EXPECT_EQ(result.error,
            "No settings parser is registered for module cdp. Load its library first.");
  EXPECT_TRUE(log_->contains(result.error));
}

TEST_F(ModuleSettingsParsersTest, ARegisteredParserMakesTheConfiguration) {
  ModuleSettingsParsers::registerParser(ModuleName::push, [](const nlohmann::json& json) {
    return ModuleSettingsParseResult{
        std::make_shared<FakeModuleConfig>(ModuleName::push, json.at("appId").get<std::string>()),
        {}};
  });
  EXPECT_TRUE(ModuleSettingsParsers::hasParser(ModuleName::push));
  EXPECT_FALSE(ModuleSettingsParsers::hasParser(ModuleName::cdp));
  const auto result = ModuleSettingsParsers::parse(ModuleName::push, {{"appId", "A7"}});
  ASSERT_NE(result.config, nullptr);
  EXPECT_EQ(result.config->appId(), "A7");
  EXPECT_TRUE(log_->lines().empty());
}

TEST_F(ModuleSettingsParsersTest, AParsersMessageAndExceptionsBecomeTheError) {
  ModuleSettingsParsers::registerParser(ModuleName::cdp, [](const nlohmann::json& json) {
    if (json.is_null())
      throw std::runtime_error("boom");
    if (json.is_array())
      return ModuleSettingsParseResult{};
    return ModuleSettingsParseResult{nullptr, "unknown key \"x\""};
  });
  EXPECT_EQ(ModuleSettingsParsers::parse(ModuleName::cdp, nullptr).error,
            "Invalid settings for module cdp: boom");
  EXPECT_EQ(ModuleSettingsParsers::parse(ModuleName::cdp, nlohmann::json::array()).error,
            "Invalid settings for module cdp.");
  EXPECT_EQ(ModuleSettingsParsers::parse(ModuleName::cdp, {{"x", 1}}).error,
            "Invalid settings for module cdp: unknown key \"x\"");
  EXPECT_EQ(log_->count("Invalid settings for module cdp: boom"), 1u);
}

TEST_F(ModuleSettingsParsersTest, AConfigurationOfAnotherModuleIsRefused) {
  ModuleSettingsParsers::registerParser(ModuleName::cdp, [](const nlohmann::json&) {
    return ModuleSettingsParseResult{std::make_shared<FakeModuleConfig>(ModuleName::push), {}};
  });
  const auto result = ModuleSettingsParsers::parse(ModuleName::cdp, nlohmann::json::object());
  EXPECT_EQ(result.config, nullptr);
  EXPECT_EQ(result.error,
            "The settings parser of module cdp made the configuration of module push.");
}

TEST_F(ModuleSettingsParsersTest, AnEmptyParserIsNotRegistered) {
  ModuleSettingsParsers::registerParser(ModuleName::cdp, nullptr);
  EXPECT_FALSE(ModuleSettingsParsers::hasParser(ModuleName::cdp));
  EXPECT_TRUE(log_->contains("The settings parser of module cdp is empty. It was not registered."));
}

}  // namespace
}  // namespace vorn::capi
