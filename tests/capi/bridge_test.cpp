#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "vorn/core/ModuleSettingsParsers.hpp"
#include "vorn/events/Event.hpp"
#include "vorn/messaging/Message.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/FakeCdpModule.hpp"
#include "vorn/testing/FakeModuleConfig.hpp"
#include "vorn/testing/PlatformInstall.hpp"
#include "vorn/testing/Wait.hpp"
#include "vorn/vorn.h"

namespace vorn::capi {
namespace {

using testing::CaptureLogSink;
using testing::FakeCdpModule;
using testing::FakeModuleConfig;

// What the bridge's C callbacks heard, written from the SDK's threads.
struct Outcomes {
  std::mutex mutex;
  std::vector<std::string> heard;  // guarded by mutex

  static void record(const char* module, vorn_result result, void* context) {
    auto* self = static_cast<Outcomes*>(context);
    std::lock_guard guard(self->mutex);
    self->heard.push_back(std::string(module) + ":" + std::to_string(result));
  }
  std::vector<std::string> snapshot() {
    std::lock_guard guard(mutex);
    return heard;
  }
};

class BridgeTest : public ::testing::Test {
 protected:
  BridgeTest() { testing::installEphemeralPlatform(); }
  ~BridgeTest() override {
    vorn_teardown();
    vorn_config_free(config_);
    ModuleSettingsParsers::unregisterParser(ModuleName::cdp);
  }

  // A stand-in for a module library: the fake cdp class and a parser for it.
  static void registerFakeCdp() {
    FakeCdpModule::registerClass();
    ModuleSettingsParsers::registerParser(ModuleName::cdp, [](const nlohmann::json& json) {
      return ModuleSettingsParseResult{
          std::make_shared<FakeModuleConfig>(ModuleName::cdp, json.value("appId", "")), {}};
    });
  }

  std::shared_ptr<CaptureLogSink> log_ = CaptureLogSink::install();
  vorn_config* config_ = vorn_config_new();
};

TEST_F(BridgeTest, AddingAModuleRefusesEachBadArgumentWithItsStatusAndLine) {
  EXPECT_EQ(vorn_config_add_module(nullptr, "cdp", "{}", nullptr, nullptr),
            VORN_ERROR_INVALID_ARGUMENT);
  EXPECT_TRUE(log_->contains("vorn_config_add_module: the configuration is NULL"));
  EXPECT_EQ(vorn_config_add_module(config_, "mail", "{}", nullptr, nullptr),
            VORN_ERROR_UNKNOWN_MODULE);
  EXPECT_TRUE(log_->contains("vorn_config_add_module: unknown module \"mail\""));
  EXPECT_EQ(vorn_config_add_module(config_, nullptr, "{}", nullptr, nullptr),
            VORN_ERROR_UNKNOWN_MODULE);
  EXPECT_EQ(vorn_config_add_module(config_, "cdp", "{\"appId\":", nullptr, nullptr),
            VORN_ERROR_INVALID_SETTINGS);
  EXPECT_TRUE(log_->contains("vorn_config_add_module: the settings of module cdp are not JSON"));
  EXPECT_EQ(vorn_config_add_module(config_, "cdp", "{}", nullptr, nullptr),
            VORN_ERROR_INVALID_SETTINGS);
  EXPECT_TRUE(
      log_->contains("No settings parser is registered for module cdp. Load its library first."));
  EXPECT_EQ(vorn_initialize(nullptr), VORN_ERROR_INVALID_ARGUMENT);
}

TEST_F(BridgeTest, AStartUpReachesTheCallbackWithItsContext) {
  registerFakeCdp();
  Outcomes outcomes;
  ASSERT_EQ(
      vorn_config_add_module(config_, "cdp", R"({"appId":"C1"})", &Outcomes::record, &outcomes),
      VORN_OK);
  ASSERT_EQ(vorn_initialize(config_), VORN_OK);
  ASSERT_TRUE(testing::waitUntil([&] { return !outcomes.snapshot().empty(); }));
  EXPECT_EQ(outcomes.snapshot(), std::vector<std::string>{"cdp:2"});
  // The outcome is heard before the start-up records READY.
  EXPECT_TRUE(
      testing::waitUntil([] { return vorn_get_initialization_state() == VORN_STATE_READY; }));
  vorn_consent consent = VORN_CONSENT_NONE;
  ASSERT_EQ(vorn_cdp_set_consent(VORN_CONSENT_OPT_OUT), VORN_OK);
  ASSERT_EQ(vorn_cdp_get_consent(&consent), VORN_OK);
  EXPECT_EQ(consent, VORN_CONSENT_OPT_OUT);
}

TEST_F(BridgeTest, EventAttributesArriveAsTheLibrarysValues) {
  registerFakeCdp();
  ASSERT_EQ(vorn_config_add_module(config_, "cdp", "{}", nullptr, nullptr), VORN_OK);
  ASSERT_EQ(vorn_initialize(config_), VORN_OK);
  ASSERT_TRUE(
      testing::waitUntil([] { return vorn_get_initialization_state() == VORN_STATE_READY; }));
  ASSERT_EQ(vorn_track_event("bought", R"({"n": 2, "big": 18446744073709551615, "x": 1.5,
      "ok": true, "s": "t", "none": null, "list": [1, "a"], "map": {"k": "v"}})"),
            VORN_OK);
  const auto started = FakeCdpModule::Class::started();
  ASSERT_EQ(started.size(), 1u);
  const auto module = started.back();
  ASSERT_TRUE(testing::waitUntil([&] { return !module->received().empty(); }));
  const auto& event = module->received().back()->fromEvent();
  EXPECT_EQ(event->name(), "bought");
  const Dictionary expected{{"n", Value(2)},
                            {"big", Value(18446744073709551615.0)},
                            {"x", Value(1.5)},
                            {"ok", Value(true)},
                            {"s", Value("t")},
                            {"none", Value()},
                            {"list", Value(Array{Value(1), Value("a")})},
                            {"map", Value(Dictionary{{"k", Value("v")}})}};
  EXPECT_EQ(event->attributes(), expected);
}

TEST_F(BridgeTest, RefusedEventsReportInvalidArgument) {
  EXPECT_EQ(vorn_track_event(nullptr, nullptr), VORN_ERROR_INVALID_ARGUMENT);
  EXPECT_TRUE(log_->contains("vorn_track_event: the event name is NULL"));
  EXPECT_EQ(vorn_track_event("fine", "[1]"), VORN_ERROR_INVALID_ARGUMENT);
  EXPECT_TRUE(log_->contains("vorn_track_event: the attributes are not a JSON object"));
  EXPECT_EQ(vorn_track_event("$reserved", nullptr), VORN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(vorn_track_event("plain", nullptr), VORN_OK);
}

TEST_F(BridgeTest, ArgumentsNestedTooDeeplyAreRefused) {
  // {"a": [[...]]}, `depth` arrays and objects deep.
  const auto nested = [](std::size_t depth) {
    return "{\"a\": " + std::string(depth - 1, '[') + std::string(depth - 1, ']') + "}";
  };
  EXPECT_EQ(vorn_track_event("deep", nested(64).c_str()), VORN_OK);
  EXPECT_EQ(vorn_track_event("deep", nested(65).c_str()), VORN_ERROR_INVALID_ARGUMENT);
  // Deep enough to overflow the stack if its values were built.
  EXPECT_EQ(vorn_track_event("deep", nested(1'000'000).c_str()), VORN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(log_->count("vorn_track_event: the attributes are not a JSON object"), 2u);
  // Brackets inside strings are text, not nesting.
  const std::string brackets = "{\"a\": \"\\\"" + std::string(100, '[') + "\"}";
  EXPECT_EQ(vorn_track_event("text", brackets.c_str()), VORN_OK);
}

TEST_F(BridgeTest, IdentityCallsCheckEveryModuleNameBeforeSendingAnything) {
  const char* modules[] = {"cdp", "mail"};
  EXPECT_EQ(vorn_identity_set_profile_id("p1", modules, 2), VORN_ERROR_UNKNOWN_MODULE);
  EXPECT_TRUE(log_->contains("vorn_identity_set_profile_id: unknown module \"mail\""));
  EXPECT_EQ(vorn_identity_set_profile_id("p1", nullptr, 3), VORN_OK);
  EXPECT_EQ(vorn_identity_set_profile_id(nullptr, nullptr, 0), VORN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(vorn_identity_set_profile_attributes(R"({"a": 1})", nullptr, 0),
            VORN_ERROR_INVALID_ARGUMENT);
  EXPECT_TRUE(log_->contains(
      "vorn_identity_set_profile_attributes: the attributes are not a JSON object of strings"));
  EXPECT_EQ(vorn_identity_set_profile_attributes(R"({"a": "b"})", modules, 1), VORN_OK);
  EXPECT_EQ(vorn_identity_clear_profile_attribute(nullptr), VORN_ERROR_INVALID_ARGUMENT);
}

TEST_F(BridgeTest, TextResultsAreTheCallersToFree) {
  char* state = vorn_state_json();
  ASSERT_NE(state, nullptr);
  EXPECT_NE(std::string(state).find("cdp"), std::string::npos);
  vorn_free(state);
  char* identity = vorn_identity_json();
  ASSERT_NE(identity, nullptr);
  EXPECT_TRUE(nlohmann::json::accept(identity));
  vorn_free(identity);
  vorn_free(nullptr);
}

// Lines reach the C sink as the library wrote them, with the sink's context.
struct SinkLines {
  std::mutex mutex;
  std::vector<std::string> lines;  // guarded by mutex

  static void sink(vorn_log_level level, const char* subsystem, const char* category,
                   const char* message, void* context) {
    auto* self = static_cast<SinkLines*>(context);
    std::lock_guard guard(self->mutex);
    self->lines.push_back(std::to_string(level) + " " + subsystem + "/" + category + " " + message);
  }
};

TEST_F(BridgeTest, TheCSinkHearsLinesWithItsContext) {
  SinkLines lines;
  ASSERT_EQ(vorn_set_logger(VORN_LOG_WARNING, &SinkLines::sink, &lines), VORN_OK);
  EXPECT_EQ(vorn_get_log_level(), VORN_LOG_WARNING);
  EXPECT_EQ(vorn_teardown_module("mail"), VORN_ERROR_UNKNOWN_MODULE);
  std::lock_guard guard(lines.mutex);
  EXPECT_EQ(lines.lines, std::vector<std::string>{
                             "2 VORNSdk/vornsdk vorn_teardown_module: unknown module \"mail\""});
}

TEST_F(BridgeTest, AnUnknownLogLevelIsRefusedAndTheLoggerKept) {
  EXPECT_EQ(vorn_set_logger(static_cast<vorn_log_level>(9), nullptr, nullptr),
            VORN_ERROR_INVALID_ARGUMENT);
  EXPECT_TRUE(log_->contains("vorn_set_logger: unknown log level 9"));
  EXPECT_EQ(vorn_get_log_level(), VORN_LOG_DEBUG);
}

TEST_F(BridgeTest, ModuleCallsAnswerDefaultsWhileNoModuleRuns) {
  vorn_consent consent = VORN_CONSENT_OPT_IN;
  EXPECT_EQ(vorn_cdp_get_consent(&consent), VORN_OK);
  EXPECT_EQ(consent, VORN_CONSENT_NONE);
  EXPECT_EQ(vorn_cdp_get_consent(nullptr), VORN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(vorn_cdp_set_consent(static_cast<vorn_consent>(7)), VORN_ERROR_INVALID_ARGUMENT);
  int answer = 1;
  EXPECT_EQ(vorn_push_add_tag("t", &answer), VORN_OK);
  EXPECT_EQ(answer, 0);
  EXPECT_EQ(vorn_push_add_tag("t", nullptr), VORN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(vorn_push_tags(), nullptr);
  EXPECT_EQ(vorn_push_add_tags("[\"a\", 1]"), nullptr);
  EXPECT_TRUE(log_->contains("vorn_push_add_tags: the tags are not a JSON array of strings"));
  EXPECT_EQ(vorn_push_contact_key(), nullptr);
  vorn_inbox_counts counts{1, 1, 1, 1};
  EXPECT_EQ(vorn_push_inbox_counts(&counts), VORN_OK);
  EXPECT_EQ(counts.all + counts.unread + counts.read + counts.deleted, 0u);
  const std::uint8_t token[] = {0xde, 0xad};
  EXPECT_EQ(vorn_push_set_device_token(token, sizeof token), VORN_OK);
  EXPECT_EQ(vorn_push_set_device_token(nullptr, 2), VORN_ERROR_INVALID_ARGUMENT);
}

TEST_F(BridgeTest, AMissingLibraryIsALoadFailure) {
  EXPECT_EQ(vorn_load_module_library("/nonexistent/libnothing.so"), VORN_ERROR_LOAD_FAILED);
  EXPECT_EQ(vorn_load_module_library(nullptr), VORN_ERROR_INVALID_ARGUMENT);
  EXPECT_TRUE(log_->contains("vorn_load_module_library: the path is empty"));
}

}  // namespace
}  // namespace vorn::capi
