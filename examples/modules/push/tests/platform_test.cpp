// What this platform cannot do answers its default with one line; secrets stay out of the
// log; the class and configuration the core sees.
#include "PushTestSupport.hpp"
#include "vorn/testing/FakeModuleConfig.hpp"

namespace push::test {
namespace {

class PushPlatform : public PushModuleTest {};

constexpr const char* kLocation = "Location services are not available on this platform.";
constexpr const char* kTableViews = "Inbox table views are not available on this platform.";
constexpr const char* kRequests = "Notification requests are not available on this platform.";
constexpr const char* kInApp = "In-app messages cannot be shown on this platform.";
constexpr const char* kTracking = "Analytics tracking is not sent on this platform.";

TEST_F(PushPlatform, PlatformOnlyOperationsAnswerTheirDefaultWithTheirLine) {
  Started s = start();
  vorn::PushInterface& push = *s.push;
  EXPECT_FALSE(push.locationEnabled());
  EXPECT_FALSE(push.watchingLocation());
  EXPECT_FALSE(push.isLocationEnabled());
  EXPECT_FALSE(push.regionFrom({{"latitude", 1.0}}));
  EXPECT_FALSE(push.lastKnownLocation());
  push.startWatchingLocation();
  push.stopWatchingLocation();
  push.setLocationEnabled(true);
  push.setLocationDelegate(nullptr);
  EXPECT_EQ(sink->count(kLocation), 9u);
  EXPECT_EQ(sink->find(kLocation)->category, vorn::LoggerCategory::location);
  EXPECT_EQ(sink->find(kLocation)->subsystem, "push");

  EXPECT_EQ(push.inboxMessagesTableViewDataSourceFor(nullptr), nullptr);
  EXPECT_EQ(push.inboxMessagesTableViewDelegateFor(nullptr, nullptr), nullptr);
  EXPECT_EQ(sink->count(kTableViews), 2u);

  push.setNotificationRequest({.identifier = "n1"});
  EXPECT_FALSE(push.notificationRequest());
  EXPECT_EQ(sink->count(kRequests), 2u);

  push.showInAppMessage("m1");
  EXPECT_FALSE(push.setInAppMessage("Helvetica"));
  EXPECT_EQ(sink->count(kInApp), 2u);

  push.trackPageView("https://example.com", std::nullopt, std::nullopt, std::nullopt);
  push.trackMessageOpened({});
  push.trackCartContents({});
  push.trackCartConversion({});
  EXPECT_EQ(sink->count(kTracking), 4u);
}

TEST_F(PushPlatform, CheapOperationsKeepWhatTheyAreGiven) {
  Started s = start();
  vorn::PushInterface& push = *s.push;
  push.setNotificationUserInfo({{"_m", "x"}});
  EXPECT_EQ(push.notificationUserInfo(), (vorn::Dictionary{{"_m", "x"}}));
  EXPECT_EQ(push.messageId({{"id", "m9"}}), "m9");
  EXPECT_FALSE(push.messageId({}));
  EXPECT_TRUE(push.setSignedString("signed"));
  EXPECT_EQ(push.signedString(), "signed");
  EXPECT_TRUE(push.setPiIdentifier(std::nullopt));
  EXPECT_FALSE(push.piIdentifier());
  EXPECT_TRUE(push.isAnalyticsEnabled());
  push.setAnalyticsEnabled(false);
  EXPECT_FALSE(push.isAnalyticsEnabled());
  push.setPiAnalyticsEnabled(false);
  EXPECT_FALSE(push.isPiAnalyticsEnabled());
  const auto item = push.cartItemDictionary(*vorn::Decimal::parse("9.99"), 2, "sku-1", "u1");
  ASSERT_TRUE(item);
  EXPECT_EQ(item->at("quantity"), vorn::Value(2));
  EXPECT_EQ(push.cartDictionary({*item})->at("cartItem"), vorn::Value(vorn::Array{*item}));
  EXPECT_TRUE(push.addTag("t"));
  EXPECT_FALSE(push.addTag(""));
  EXPECT_TRUE(push.resetDataPolicy());
  EXPECT_EQ(push.tags(), vorn::PushInterface::Tags{});
}

TEST_F(PushPlatform, SecretsNeverReachTheLog) {
  Started s = start();
  s.push->setDeviceToken({0xDE, 0xAD, 0xBE, 0xEF});
  ASSERT_TRUE(waitForProperty(s, "registered", 1));
  backend.expireTokens();
  s.push->addTag("again");
  ASSERT_TRUE(waitForProperty(s, "registrationsSent", 2));

  const std::string registrationId = *s.push->deviceIdentifier();
  std::size_t sendingLines = 0;
  for (const vorn::testing::LogLine& logLine : sink->lines()) {
    const std::string& line = logLine.message;
    EXPECT_EQ(line.find("secret-token"), std::string::npos) << line;
    EXPECT_EQ(line.find("deadbeef"), std::string::npos) << line;
    // The core's storage names the id once when it makes it; the module never does.
    if (logLine.subsystem == "push") {
      EXPECT_EQ(line.find(registrationId), std::string::npos) << line;
    }
    if (line.rfind("Sending registration ", 0) == 0) {
      ++sendingLines;
      EXPECT_NE(line.find(R"("deviceToken":"[REDACTED]")"), std::string::npos) << line;
    }
  }
  EXPECT_EQ(sendingLines, 2u);
}

TEST_F(PushPlatform, TheClassAndConfigurationAreWhatTheCoreExpects) {
  const auto moduleClass = vorn::ModuleRegistry::lookup("VORNSdkPushModule");
  ASSERT_TRUE(moduleClass);
  EXPECT_EQ(moduleClass->moduleVersion, "8.3.0");
  const PushModuleConfig config("APP1",
                                {.endpoint = "http://x", .registrationRateLimitSeconds = 5});
  EXPECT_EQ(config.name(), vorn::ModuleName::push);
  EXPECT_EQ(config.appId(), "APP1");
  EXPECT_EQ(
      config.storedProperties(),
      (std::vector<vorn::ModuleConfig::Property>{
          {"appId", "APP1"}, {"endpoint", "http://x"}, {"registrationRateLimitSeconds", 5.0}}));
  const vorn::testing::FakeModuleConfig other(vorn::ModuleName::push);
  EXPECT_EQ(moduleClass->initModule(std::make_shared<vorn::testing::FakeModuleConfig>(other),
                                    vorn::VORNSdkComponents::create(other)),
            nullptr);
}

}  // namespace
}  // namespace push::test
