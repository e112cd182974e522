// The reference modules' settings parsers, reached as a C host reaches them: by loading the
// module libraries. Skipped when the examples are not built.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

#include "vorn/core/ModuleSettingsParsers.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/vorn.h"

namespace vorn::capi {
namespace {

using testing::CaptureLogSink;

class ModuleSettingsTest : public ::testing::Test {
 protected:
  void SetUp() override {
#if defined(VORN_CDP_LIBRARY) && defined(VORN_PUSH_LIBRARY)
    ASSERT_EQ(vorn_load_module_library(VORN_CDP_LIBRARY), VORN_OK);
    ASSERT_EQ(vorn_load_module_library(VORN_PUSH_LIBRARY), VORN_OK);
#else
    GTEST_SKIP() << "the example modules are not built";
#endif
  }

  static std::vector<std::string> labels(const ModuleConfig& config) {
    std::vector<std::string> names;
    for (const auto& [label, value] : config.storedProperties())
      names.push_back(label);
    return names;
  }

  std::shared_ptr<CaptureLogSink> log_ = CaptureLogSink::install();
};

TEST_F(ModuleSettingsTest, CdpSettingsFillEveryStoredProperty) {
  const auto result = ModuleSettingsParsers::parse(
      ModuleName::cdp, nlohmann::json::parse(R"({"appId": "A1", "endpoint": "http://h",
          "batchSize": 5, "flushIntervalSeconds": 2, "rateLimitSeconds": 0.5,
          "dataDirectory": "/tmp/d", "syncWrites": true})"));
  ASSERT_NE(result.config, nullptr) << result.error;
  EXPECT_EQ(result.config->appId(), "A1");
  const std::vector<ModuleConfig::Property> expected{
      {"appId", Value("A1")},           {"endpoint", Value("http://h")},
      {"batchSize", Value(5)},          {"flushIntervalSeconds", Value(2.0)},
      {"rateLimitSeconds", Value(0.5)}, {"dataDirectory", Value("/tmp/d")},
      {"syncWrites", Value(true)}};
  EXPECT_EQ(result.config->storedProperties(), expected);
}

TEST_F(ModuleSettingsTest, CdpSettingsRefuseUnknownKeysAndWrongTypes) {
  EXPECT_EQ(ModuleSettingsParsers::parse(ModuleName::cdp, {{"appId", "A"}, {"batch", 1}}).error,
            "Invalid settings for module cdp: unknown key \"batch\"");
  EXPECT_EQ(ModuleSettingsParsers::parse(ModuleName::cdp, {{"endpoint", "x"}}).error,
            "Invalid settings for module cdp: \"appId\" must be a string");
  EXPECT_EQ(
      ModuleSettingsParsers::parse(ModuleName::cdp, {{"appId", "A"}, {"batchSize", -1}}).error,
      "Invalid settings for module cdp: \"batchSize\" must be a positive integer");
  EXPECT_EQ(
      ModuleSettingsParsers::parse(ModuleName::cdp, {{"appId", "A"}, {"syncWrites", "yes"}}).config,
      nullptr);
  EXPECT_TRUE(log_->contains("Invalid settings for module cdp: unknown key \"batch\""));
}

TEST_F(ModuleSettingsTest, PushSettingsFillEveryStoredProperty) {
  const auto result = ModuleSettingsParsers::parse(
      ModuleName::push,
      {{"appId", "P1"}, {"endpoint", "http://p"}, {"registrationRateLimitSeconds", 3}});
  ASSERT_NE(result.config, nullptr) << result.error;
  const std::vector<ModuleConfig::Property> expected{{"appId", Value("P1")},
                                                     {"endpoint", Value("http://p")},
                                                     {"registrationRateLimitSeconds", Value(3.0)}};
  EXPECT_EQ(result.config->storedProperties(), expected);
  EXPECT_EQ(ModuleSettingsParsers::parse(ModuleName::push, nlohmann::json::array()).error,
            "Invalid settings for module push: the settings must be a JSON object");
}

TEST_F(ModuleSettingsTest, TheBridgeAddsModulesWithValidSettingsOnly) {
  vorn_config* config = vorn_config_new();
  EXPECT_EQ(
      vorn_config_add_module(config, "push", R"({"appId": "P", "mode": 1})", nullptr, nullptr),
      VORN_ERROR_INVALID_SETTINGS);
  EXPECT_TRUE(log_->contains("Invalid settings for module push: unknown key \"mode\""));
  EXPECT_EQ(vorn_config_add_module(config, "push", R"({"appId": "P"})", nullptr, nullptr), VORN_OK);
  vorn_config_free(config);
}

}  // namespace
}  // namespace vorn::capi
