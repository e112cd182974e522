#include <string>

#include "network/NetworkTestSupport.hpp"

namespace vorn {
namespace {

using testing::httpAnswer;
using testing::httpFailure;

constexpr std::string_view kBlockedLine = "Request events is blocked by retry after.";

class NetworkManagerDeadlines : public test::NetworkManagerTest {
 protected:
  std::optional<std::int64_t> stored(const std::string& key) { return prefs->intFor(key); }
  std::int64_t now() { return clock->nowMillis(); }
};

TEST_F(NetworkManagerDeadlines, RateLimitBlocksTheNameForItsWholeSeconds) {
  auto manager = makeManager();
  transport->enqueue(httpAnswer(200));
  const CompletedCall first = manager->executeSync(test::namedRequest("events", 60.9));
  ASSERT_TRUE(first.wrappedResponse.isSuccess());
  EXPECT_EQ(stored("retry_device_events"), now() + 60'000) << "the fraction is dropped";
  EXPECT_EQ(stored("retry_server_events"), std::nullopt);

  EXPECT_TRUE(manager->isBlockedByRetryAfter("events"));
  EXPECT_TRUE(sink->contains("Request events, blocked by Retry-After for 60 more seconds"));
  clock->advance(30'500);
  EXPECT_TRUE(manager->isBlockedByRetryAfter("events"));
  EXPECT_TRUE(sink->contains("Request events, blocked by Retry-After for 29 more seconds"));

  const CompletedCall refused = manager->executeSync(test::namedRequest("events", 60));
  EXPECT_EQ(transport->requestCount(), 1u) << "a blocked name sends nothing";
  EXPECT_FALSE(refused.wrappedResponse.response);
  EXPECT_EQ(refused.wrappedResponse.error->refusalError(),
            NetworkManagerError::blockedByRetryAfter);
  EXPECT_TRUE(sink->contains(kBlockedLine));
  EXPECT_FALSE(manager->isBlockedByRetryAfter("other"));

  clock->advance(30'000);
  EXPECT_FALSE(manager->isBlockedByRetryAfter("events"));
}

TEST_F(NetworkManagerDeadlines, HalfASecondBlocksUntilTheEndTimeItself) {
  auto manager = makeManager();
  transport->enqueue(httpAnswer(204));
  manager->executeSync(test::namedRequest("events", 0.5));
  EXPECT_EQ(stored("retry_device_events"), now());
  EXPECT_TRUE(manager->isBlockedByRetryAfter("events")) << "a deadline equal to now still blocks";
  EXPECT_TRUE(sink->contains("Request events, blocked by Retry-After for 0 more seconds"));
  clock->advance(1);
  EXPECT_FALSE(manager->isBlockedByRetryAfter("events"));
}

TEST_F(NetworkManagerDeadlines, RateLimitCountsOnlyAfterASuccess) {
  auto manager = makeManager();
  transport->enqueue(httpAnswer(500));
  transport->enqueue(httpFailure(HttpErrorCode::connection));
  manager->executeSync(test::namedRequest("events", 60));
  manager->executeSync(test::namedRequest("events", 60));
  EXPECT_EQ(transport->requestCount(), 2u);
  EXPECT_EQ(stored("retry_device_events"), std::nullopt);
  EXPECT_FALSE(manager->isBlockedByRetryAfter("events"));
}

TEST_F(NetworkManagerDeadlines, RetryAfterIsClampedToOneDayAndTakenFromAnyStatus) {
  auto manager = makeManager();
  transport->enqueue(httpAnswer(503, {{"Retry-After", "172800"}}));
  manager->executeSync(test::namedRequest("events"));
  EXPECT_EQ(stored("retry_server_events"), now() + 86'400'000);
  EXPECT_TRUE(manager->isBlockedByRetryAfter("events"));
  EXPECT_TRUE(sink->contains("Request events, blocked by Retry-After for 86400 more seconds"));

  transport->enqueue(httpAnswer(200, {{"retry-after", "5"}}));
  manager->executeSync(test::namedRequest("config"));
  EXPECT_EQ(stored("retry_server_config"), now() + 5'000);
}

TEST_F(NetworkManagerDeadlines, RetryAfterThatIsNotPositiveDigitsIsIgnored) {
  auto manager = makeManager();
  for (const std::string value : {"0", "-5", "+5", " 5", "5 ", "1.5", "", "soon",
                                  "Wed, 21 Oct 2015 07:28:00 GMT", "99999999999999999999"}) {
    transport->enqueue(httpAnswer(503, {{"Retry-After", value}}));
    EXPECT_EQ(
        manager->executeSync(test::namedRequest("events")).wrappedResponse.response->statusCode,
        503);
    EXPECT_EQ(stored("retry_server_events"), std::nullopt) << '"' << value << '"';
  }
  EXPECT_FALSE(sink->contains(kBlockedLine));
}

TEST_F(NetworkManagerDeadlines, BothDeadlinesPastRemoveBothKeys) {
  auto manager = makeManager();
  transport->enqueue(httpAnswer(200, {{"Retry-After", "10"}}));
  manager->executeSync(test::namedRequest("events", 20));
  ASSERT_EQ(stored("retry_server_events"), now() + 10'000);
  ASSERT_EQ(stored("retry_device_events"), now() + 20'000);

  clock->advance(15'000);
  EXPECT_TRUE(manager->isBlockedByRetryAfter("events")) << "the later deadline counts";
  EXPECT_TRUE(sink->contains("Request events, blocked by Retry-After for 5 more seconds"));
  EXPECT_TRUE(prefs->stringFor("retry_server_events")) << "one past deadline is kept";

  clock->advance(5'001);
  EXPECT_FALSE(manager->isBlockedByRetryAfter("events"));
  EXPECT_EQ(prefs->stringFor("retry_server_events"), std::nullopt);
  EXPECT_EQ(prefs->stringFor("retry_device_events"), std::nullopt);
}

TEST_F(NetworkManagerDeadlines, UnreadableDeadlineCountsAsZeroAndIsRemoved) {
  ASSERT_TRUE(prefs->setString("tomorrow", "retry_server_events"));
  auto manager = makeManager();
  EXPECT_FALSE(manager->isBlockedByRetryAfter("events"));
  EXPECT_EQ(prefs->stringFor("retry_server_events"), std::nullopt);
}

TEST_F(NetworkManagerDeadlines, BlockingSurvivesARestart) {
  transport->enqueue(httpAnswer(429, {{"Retry-After", "120"}}));
  makeManager()->executeSync(test::namedRequest("events"));

  const auto restarted =
      NetworkManager::create(test::networkPrefs(store), nullptr, transport, clock);
  clock->advance(60'000);
  EXPECT_TRUE(restarted->isBlockedByRetryAfter("events"));
  EXPECT_TRUE(sink->contains("Request events, blocked by Retry-After for 60 more seconds"));
  const CompletedCall refused = restarted->executeSync(test::namedRequest("events"));
  EXPECT_EQ(refused.wrappedResponse.error->refusalError(),
            NetworkManagerError::blockedByRetryAfter);
  EXPECT_EQ(transport->requestCount(), 1u);
}

}  // namespace
}  // namespace vorn
