// What the module keeps across a restart, and the dirty registration sent at start.
#include "PushTestSupport.hpp"

namespace push::test {
namespace {

class Restart : public PushModuleTest {
 protected:
  void stop(Started& s) {
    s.module->tearDown();
    s = {};
  }
};

TEST_F(Restart, RegistrationStateAndTokenSurvive) {
  Started first = start();
  first.push->setDeviceToken({0x01, 0x02});
  first.push->addTags({"x", "y"});
  first.push->setPushEnabled(true);
  ASSERT_TRUE(waitForProperty(first, "registered", 1));
  ASSERT_TRUE(first.push->setPiIdentifier("pi-1"));
  stop(first);

  Started second = start();
  EXPECT_EQ(second.push->deviceToken(), "0102");
  EXPECT_EQ(second.push->tags(), (vorn::PushInterface::Tags{"x", "y"}));
  EXPECT_TRUE(second.push->pushEnabled());
  EXPECT_EQ(second.push->accessToken(), "secret-token-1");
  EXPECT_EQ(second.push->piIdentifier(), "pi-1");
  EXPECT_EQ(property(second, "registered"), 1);
  EXPECT_EQ(property(second, "tokenRefreshes"), 0);
}

TEST_F(Restart, ADirtyRegistrationIsSentAtStart) {
  backend.failRegistrationsWith(500);
  Started first = start();
  first.push->addTag("kept");
  ASSERT_TRUE(sink->waitFor("Registration not accepted: HTTP 500."));
  EXPECT_EQ(property(first, "registered"), 0);
  stop(first);

  backend.failRegistrationsWith(0);
  Started second = start();
  ASSERT_TRUE(waitForProperty(second, "registered", 1));
  const auto registrations = backend.received("/v1/registration");
  ASSERT_EQ(registrations.size(), 2u);
  EXPECT_EQ(registrations[1].body["tags"], (nlohmann::json{"kept"}));
  EXPECT_EQ(registrations[1].authorization, "Bearer secret-token-1");
}

TEST_F(Restart, ACleanRegistrationIsNotSentAgain) {
  Started first = start();
  first.push->addTag("once");
  ASSERT_TRUE(waitForProperty(first, "registered", 1));
  stop(first);

  Started second = start();
  second.push->refreshMessages();
  ASSERT_TRUE(backend.waitForCount("/v1/inbox", 1));
  EXPECT_EQ(backend.count("/v1/registration"), 1u);
}

}  // namespace
}  // namespace push::test
