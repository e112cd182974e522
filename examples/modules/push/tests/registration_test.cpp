// Registration over real HTTP: the bearer token, the 401 refresh, coalescing, the rate limit
// retry, and the identity events that feed the contact key and attributes.
#include "PushTestSupport.hpp"
#include "vorn/behavior/BehaviorManager.hpp"
#include "vorn/events/IdentityEvent.hpp"
#include "vorn/messaging/Message.hpp"

namespace push::test {
namespace {

using vorn::testing::waitUntil;

class Registration : public PushModuleTest {};

TEST_F(Registration, IsSentWithABearerTokenFetchedFirst) {
  Started s = start();
  ASSERT_TRUE(s.push);
  vorn::testing::Latch called;
  vorn::Dictionary sent;
  s.push->setRegistrationCallback([&](const vorn::Dictionary& body) {
    sent = body;
    called.countDown();
  });
  s.push->setDeviceToken({0xAB, 0x01, 0xFF});
  ASSERT_TRUE(called.wait());

  const auto tokens = backend.received("/v1/token");
  ASSERT_EQ(tokens.size(), 1u);
  EXPECT_FALSE(tokens[0].body["registrationId"].get<std::string>().empty());
  const auto registrations = backend.received("/v1/registration");
  ASSERT_EQ(registrations.size(), 1u);
  EXPECT_EQ(registrations[0].authorization, "Bearer secret-token-1");
  const nlohmann::json& body = registrations[0].body;
  EXPECT_EQ(body["deviceToken"], "ab01ff");
  EXPECT_EQ(body["registrationId"], tokens[0].body["registrationId"]);
  EXPECT_EQ(body["tags"], nlohmann::json::array());
  EXPECT_EQ(body["attributes"], nlohmann::json::object());
  EXPECT_TRUE(body["contactKey"].is_null());
  EXPECT_EQ(body["pushEnabled"], false);
  EXPECT_EQ(body["appVersion"], "1.0");
  EXPECT_EQ(vorn::toJson(sent), body);
  EXPECT_EQ(s.push->accessToken(), "secret-token-1");
  EXPECT_EQ(s.push->deviceToken(), "ab01ff");
  EXPECT_EQ(property(s, "registered"), 1);
  EXPECT_EQ(property(s, "registrationsSent"), 1);
  EXPECT_EQ(property(s, "tokenRefreshes"), 1);
}

TEST_F(Registration, UnauthorizedLeadsToOneTokenRefreshAndOneRetry) {
  Started s = start();
  s.push->addTag("first");
  ASSERT_TRUE(waitForProperty(s, "registrationsSent", 1));
  backend.expireTokens();

  s.push->addTag("second");
  ASSERT_TRUE(waitForProperty(s, "registrationsSent", 2));
  const auto registrations = backend.received("/v1/registration");
  ASSERT_EQ(registrations.size(), 3u);
  EXPECT_EQ(registrations[1].authorization, "Bearer secret-token-1");
  EXPECT_EQ(registrations[2].authorization, "Bearer secret-token-2");
  EXPECT_EQ(registrations[2].body["tags"], (nlohmann::json{"first", "second"}));
  EXPECT_EQ(backend.count("/v1/token"), 2u);
  EXPECT_EQ(property(s, "tokenRefreshes"), 2);
  EXPECT_EQ(s.push->accessToken(), "secret-token-2");
}

TEST_F(Registration, ChangesDuringASendCoalesceIntoOneMore) {
  Started s = start();
  backend.close();
  s.push->setPushEnabled(true);
  ASSERT_TRUE(waitUntil([&] { return backend.held() == 1; }));
  EXPECT_TRUE(s.push->addTag("a"));
  EXPECT_EQ(s.push->addTags({"b", "a", "c"}), (vorn::PushInterface::Tags{"b", "c"}));
  EXPECT_TRUE(s.push->removeTag("c"));
  EXPECT_FALSE(s.push->removeTag("missing"));
  EXPECT_EQ(property(s, "registered"), 0);
  backend.open();

  ASSERT_TRUE(waitForProperty(s, "registered", 1));
  const auto registrations = backend.received("/v1/registration");
  ASSERT_EQ(registrations.size(), 2u);
  EXPECT_EQ(registrations[0].body["tags"], nlohmann::json::array());
  EXPECT_EQ(registrations[1].body["tags"], (nlohmann::json{"a", "b"}));
  EXPECT_EQ(registrations[1].body["pushEnabled"], true);
  EXPECT_EQ(property(s, "tags"), 2);
}

TEST_F(Registration, ARateLimitedChangeIsSentOnceTheDeadlinePassed) {
  Started s = start(/*rateLimit=*/1);
  s.push->addTag("a");
  ASSERT_TRUE(waitForProperty(s, "registrationsSent", 1));
  s.push->addTag("b");
  ASSERT_TRUE(sink->waitFor("Registration retried in 1 seconds."));
  EXPECT_EQ(property(s, "registered"), 0);
  ASSERT_TRUE(waitForProperty(s, "registrationsSent", 2));
  EXPECT_EQ(backend.received("/v1/registration").back().body["tags"], (nlohmann::json{"a", "b"}));
}

TEST_F(Registration, IdentityEventsSetTheContactKeyAndAttributes) {
  Started s = start();
  ASSERT_TRUE(s.module->asSubscriber());
  EXPECT_EQ(s.module->asSubscriber()->name(), vorn::ModuleName::push);
  const auto deliver = [&](std::shared_ptr<vorn::Event> event) {
    s.module->asSubscriber()->receive(
        vorn::Message::makeFrom(vorn::MessageProducer::sdk, std::move(event)));
  };
  deliver(vorn::IdentityEvent::withProfileId("contact-7"));
  deliver(vorn::IdentityEvent::withProfileAttributes({{"city", "Oslo"}, {"plan", "gold"}}));
  deliver(vorn::IdentityEvent::withAttributes({{"age", 41}, {"plan", ""}}));

  EXPECT_EQ(s.push->contactKey(), "contact-7");
  EXPECT_EQ(s.push->attributes(), (vorn::Dictionary{{"age", 41}, {"city", "Oslo"}}));
  const std::optional<vorn::ModuleIdentity> identity = s.push->getIdentity();
  ASSERT_TRUE(identity);
  EXPECT_EQ(identity->applicationId, "APP1");
  EXPECT_EQ(identity->profileId, "contact-7");
  EXPECT_EQ(identity->installationId, s.push->deviceIdentifier());
  ASSERT_TRUE(waitForProperty(s, "registered", 1));
  const nlohmann::json last = backend.received("/v1/registration").back().body;
  EXPECT_EQ(last["contactKey"], "contact-7");
  EXPECT_EQ(last["attributes"], (nlohmann::json{{"age", 41}, {"city", "Oslo"}}));
}

TEST_F(Registration, AnAppVersionChangeSendsItAgain) {
  Started s = start();
  s.push->addTag("a");
  ASSERT_TRUE(waitForProperty(s, "registrationsSent", 1));
  vorn::Platform upgraded = *vorn::Platform::current();
  upgraded.app.appVersion = "2.0";
  vorn::Platform::install(upgraded);

  vorn::BehaviorManager::shared()->deliver(std::make_shared<vorn::AppVersionChanged>("1.0"));
  ASSERT_TRUE(waitForProperty(s, "registrationsSent", 2));
  EXPECT_EQ(backend.received("/v1/registration").back().body["appVersion"], "2.0");
}

}  // namespace
}  // namespace push::test
