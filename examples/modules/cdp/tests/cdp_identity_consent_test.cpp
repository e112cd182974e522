// Consent and identity: what they default to, what survives a restart, what an opt-out
// deletes, and what never reaches a log line.
#include <gmock/gmock.h>

#include "CdpTestSupport.hpp"
#include "vorn/events/IdentityEvent.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace cdp::test {
namespace {

TEST_F(CdpModuleTest, ConsentIsNoneUntilSetAndSurvivesARestart) {
  auto module = start(settings(100, 60));
  ASSERT_TRUE(module);
  EXPECT_EQ(cdpOf(module)->getConsent(), vorn::Consent::none);
  EXPECT_EQ(property(*module, "consent"), vorn::Value("none"));
  cdpOf(module)->setConsent(vorn::Consent::optIn);
  module->tearDown();

  auto restarted = start(settings(100, 60));
  ASSERT_TRUE(restarted);
  EXPECT_EQ(cdpOf(restarted)->getConsent(), vorn::Consent::optIn);
  EXPECT_EQ(property(*restarted, "consent"), vorn::Value("opt_in"));
  restarted->tearDown();
}

TEST_F(CdpModuleTest, OptOutDeletesQueuedEventsAndDropsNewOnesUntilConsentChanges) {
  auto module = start(settings(100, 60));
  ASSERT_TRUE(module);
  for (int i = 0; i < 3; ++i)
    deliver(*module, "before-" + std::to_string(i));
  EXPECT_EQ(property(*module, "queuedEvents"), vorn::Value(3));

  cdpOf(module)->setConsent(vorn::Consent::optOut);
  EXPECT_EQ(property(*module, "queuedEvents"), vorn::Value(0));
  EXPECT_EQ(property(*module, "droppedEvents"), vorn::Value(3));
  deliver(*module, "during-0");
  deliver(*module, "during-1");
  EXPECT_EQ(property(*module, "queuedEvents"), vorn::Value(0));
  EXPECT_EQ(property(*module, "droppedEvents"), vorn::Value(5));
  module->tearDown();
  module.reset();

  // Nothing came back from the file, and the opt-out still holds.
  auto restarted = start(settings(100, 60));
  ASSERT_TRUE(restarted);
  EXPECT_EQ(property(*restarted, "queuedEvents"), vorn::Value(0));
  EXPECT_EQ(property(*restarted, "consent"), vorn::Value("opt_out"));
  cdpOf(restarted)->setConsent(vorn::Consent::pending);
  const std::string after = deliver(*restarted, "after");
  EXPECT_EQ(property(*restarted, "queuedEvents"), vorn::Value(1));
  EXPECT_EQ(collector.attempts(), 0);
  restarted->tearDown();
  EXPECT_EQ(collector.acceptedIds(), std::vector<std::string>{});
  (void)after;
}

TEST_F(CdpModuleTest, IdentityEventsSetTheIdentityAndItsValuesAreRedacted) {
  const auto sink = vorn::testing::CaptureLogSink::install();
  auto module = start(settings(100, 60));
  ASSERT_TRUE(module);
  deliver(*module, vorn::IdentityEvent::withProfileId("Profile-7731"));
  deliver(*module, vorn::IdentityEvent::withProfileAttributes(
                       {{"email", "ann@example.org"}, {"tier", "gold"}}));
  deliver(*module, vorn::IdentityEvent::withProfileAttributes({{"tier", ""}}));

  const vorn::ModuleIdentity expected{
      "cdp-test-app", "Profile-7731", components->storageManager()->getRegistrationId(),
      vorn::Value(vorn::Dictionary{{"email", vorn::Value("ann@example.org")}})};
  EXPECT_EQ(cdpOf(module)->getIdentity(), expected);
  EXPECT_EQ(vorn::toJsonText(expected),
            "{\"applicationId\":\"cdp-test-app\",\"customProperties\":{\"email\":"
            "\"ann@example.org\"},\"installationId\":\"" +
                components->storageManager()->getRegistrationId() +
                "\",\"profileId\":\"Profile-7731\"}");

  EXPECT_TRUE(sink->contains("Profile id set to `[REDACTED]`."));
  EXPECT_TRUE(sink->contains("Profile attributes set to {\"email\":\"[REDACTED]\"}."));
  for (const auto& line : sink->lines()) {
    EXPECT_EQ(line.message.find("7731"), std::string::npos) << line.message;
    EXPECT_EQ(line.message.find("ann@"), std::string::npos) << line.message;
  }
  EXPECT_EQ(sink->find("Profile id set to `[REDACTED]`.")->subsystem, "cdp");
  module->tearDown();

  // Kept in the secure preferences, and redacted again from the first line of the next run.
  sink->clear();
  auto restarted = start(settings(100, 60));
  ASSERT_TRUE(restarted);
  EXPECT_EQ(cdpOf(restarted)->getIdentity(), expected);
  deliver(*restarted, "Profile-7731 opened the app");
  EXPECT_TRUE(sink->contains("Event `[REDACTED] opened the app` queued (1 waiting)."));
  restarted->tearDown();
}

}  // namespace
}  // namespace cdp::test
