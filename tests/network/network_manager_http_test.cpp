// The manager's rules once more over real HTTP: libcurl against a loopback server, with the
// manager's clock moved by hand.
#include <atomic>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <thread>

#include "network/NetworkTestSupport.hpp"
#include "support/LoopbackServer.hpp"

namespace vorn {
namespace {

class NetworkManagerHttp : public test::NetworkManagerTest {
 protected:
  void SetUp() override {
    server.server().Get("/v1/events", [this](const httplib::Request&, httplib::Response& res) {
      ++hits;
      res.set_content("{}", "application/json");
    });
    server.server().Get("/v1/busy", [this](const httplib::Request&, httplib::Response& res) {
      ++hits;
      res.status = 503;
      res.set_header("Retry-After", "172800");
    });
    server.server().Get("/v1/token", [this](const httplib::Request& req, httplib::Response& res) {
      ++hits;
      std::lock_guard lock(mutex);
      seenAuthorization += req.get_header_value("Authorization") + ";";
      res.status = req.get_header_value("Authorization") == "Bearer new" ? 200 : 401;
    });
    server.server().Get(R"(/v1/retry-(\w+))",
                        [this](const httplib::Request& req, httplib::Response& res) {
                          ++hits;
                          res.status = 503;
                          res.set_header("Retry-After", kRetryAfterValues.at(req.matches[1]));
                        });
    server.server().Get("/v1/slow", [this](const httplib::Request&, httplib::Response& res) {
      std::unique_lock lock(mutex);
      slowArrived = true;
      changed.notify_all();
      changed.wait(lock, [this] { return slowReleased; });
      res.set_content("{}", "application/json");
    });
    server.start();
  }

  void TearDown() override { releaseSlow(); }

  void releaseSlow() {
    std::lock_guard lock(mutex);
    slowReleased = true;
    changed.notify_all();
  }

  std::shared_ptr<NetworkManager> curlManager(std::shared_ptr<Authenticator> authenticator = {}) {
    return NetworkManager::create(prefs, std::move(authenticator), HttpTransport::curl(), clock);
  }
  WrappedRequest request(const std::string& name, double rateLimit = 0) {
    return test::namedRequest(name, rateLimit, server.url("/v1"));
  }

  // Retry-After values a server may send that must not block anything.
  inline static const std::map<std::string, std::string> kRetryAfterValues = {
      {"zero", "0"},
      {"negative", "-5"},
      {"date", "Wed, 21 Oct 2026 07:28:00 GMT"},
      {"garbage", "soon"},
      {"fraction", "1.5"}};

  std::atomic<int> hits{0};
  std::mutex mutex;
  std::condition_variable changed;
  std::string seenAuthorization;  // guarded by mutex
  bool slowArrived = false;       // guarded by mutex
  bool slowReleased = false;      // guarded by mutex
  test::LoopbackServer server;
};

TEST_F(NetworkManagerHttp, SuccessWithRateLimitBlocksTheNameForSixtySeconds) {
  auto manager = curlManager();
  const CompletedCall call = manager->executeSync(request("events", 60));
  ASSERT_TRUE(call.wrappedResponse.isSuccess());
  EXPECT_EQ(call.wrappedResponse.data, (Bytes{'{', '}'}));
  EXPECT_EQ(manager->executeSync(request("events", 60)).wrappedResponse.error->refusalError(),
            NetworkManagerError::blockedByRetryAfter);
  EXPECT_TRUE(sink->contains("Request events, blocked by Retry-After for 60 more seconds"));

  clock->advance(45'500);
  EXPECT_TRUE(manager->isBlockedByRetryAfter("events"));
  EXPECT_TRUE(sink->contains("Request events, blocked by Retry-After for 14 more seconds"));
  clock->advance(14'500);
  EXPECT_TRUE(manager->isBlockedByRetryAfter("events"));  // the end time itself still blocks
  clock->advance(1);
  EXPECT_TRUE(manager->executeSync(request("events")).wrappedResponse.isSuccess());
  EXPECT_EQ(hits, 2);
}

TEST_F(NetworkManagerHttp, RetryAfterThatIsNotPositiveDecimalDigitsIsIgnored) {
  auto manager = curlManager();
  for (const auto& [name, value] : kRetryAfterValues) {
    const CompletedCall call = manager->executeSync(request("retry-" + name));
    ASSERT_TRUE(call.wrappedResponse.response) << value;
    EXPECT_EQ(call.wrappedResponse.response->statusCode, 503);
    EXPECT_FALSE(prefs->intFor("retry_server_retry-" + name)) << value;
    EXPECT_FALSE(manager->isBlockedByRetryAfter("retry-" + name)) << value;
  }
  EXPECT_EQ(hits, static_cast<int>(kRetryAfterValues.size()));
}

TEST_F(NetworkManagerHttp, BothDeadlinesPastRemoveBothKeys) {
  auto manager = curlManager();
  ASSERT_TRUE(manager->executeSync(request("events", 30)).wrappedResponse.isSuccess());
  prefs->setInt(clock->nowMillis() + 10'000, "retry_server_events");
  clock->advance(31'000);
  EXPECT_FALSE(manager->isBlockedByRetryAfter("events"));
  EXPECT_FALSE(prefs->intFor("retry_device_events"));
  EXPECT_FALSE(prefs->intFor("retry_server_events"));
}

TEST_F(NetworkManagerHttp, BlockingSurvivesANewManagerOnTheSamePreferences) {
  ASSERT_TRUE(curlManager()->executeSync(request("busy")).wrappedResponse.response);
  auto restarted =
      NetworkManager::create(test::networkPrefs(store), nullptr, HttpTransport::curl(), clock);
  EXPECT_EQ(restarted->executeSync(request("busy")).wrappedResponse.error->refusalError(),
            NetworkManagerError::blockedByRetryAfter);
  EXPECT_EQ(hits, 1);
}

TEST_F(NetworkManagerHttp, SecondCallOfANameIsRefusedWhileTheFirstRuns) {
  auto manager = curlManager();
  std::thread first(
      [&] { EXPECT_TRUE(manager->executeSync(request("slow")).wrappedResponse.isSuccess()); });
  {
    std::unique_lock lock(mutex);
    EXPECT_TRUE(changed.wait_for(lock, std::chrono::seconds(10), [this] { return slowArrived; }));
  }
  EXPECT_EQ(manager->executeSync(request("slow")).wrappedResponse.error->refusalError(),
            NetworkManagerError::alreadyInFlight);
  EXPECT_TRUE(sink->contains("Request slow is already in flight."));
  releaseSlow();
  first.join();
  EXPECT_TRUE(manager->executeSync(request("slow")).wrappedResponse.isSuccess());
}

TEST_F(NetworkManagerHttp, RetryAfterBlocksForOneDayAtMost) {
  auto manager = curlManager();
  const CompletedCall call = manager->executeSync(request("busy"));
  ASSERT_TRUE(call.wrappedResponse.response);
  EXPECT_EQ(call.wrappedResponse.response->statusCode, 503);
  EXPECT_EQ(prefs->intFor("retry_server_busy"), call.wrappedResponse.endTimeMillis + 86'400'000);
  EXPECT_TRUE(manager->isBlockedByRetryAfter("busy"));
  EXPECT_TRUE(sink->contains("Request busy, blocked by Retry-After for 86400 more seconds"));
  EXPECT_EQ(hits, 1);
}

TEST_F(NetworkManagerHttp, UnauthorizedIsRefreshedAndRetriedOnce) {
  auto authenticator =
      std::make_shared<test::ScriptedAuthenticator>(AuthHeader("Authorization", "Bearer old"));
  authenticator->queueRefresh(AuthHeader("Authorization", "Bearer new"));
  const CompletedCall call = curlManager(authenticator)->executeSync(request("token"));
  EXPECT_TRUE(call.wrappedResponse.isSuccess());
  EXPECT_EQ(hits, 2);
  std::lock_guard lock(mutex);
  EXPECT_EQ(seenAuthorization, "Bearer old;Bearer new;");
  EXPECT_EQ(authenticator->refreshCount, 1);
}

TEST_F(NetworkManagerHttp, SecondUnauthorizedIsReturnedAsItIs) {
  auto authenticator =
      std::make_shared<test::ScriptedAuthenticator>(AuthHeader("Authorization", "Bearer old"));
  authenticator->queueRefresh(AuthHeader("Authorization", "Bearer stale"));
  const CompletedCall call = curlManager(authenticator)->executeSync(request("token"));
  ASSERT_TRUE(call.wrappedResponse.isUnauthorized());
  EXPECT_EQ(hits, 2);
  EXPECT_EQ(authenticator->refreshCount, 1);
}

TEST_F(NetworkManagerHttp, FailedRefreshIsLoggedAndTheUnauthorizedResponseKept) {
  auto authenticator =
      std::make_shared<test::ScriptedAuthenticator>(AuthHeader("Authorization", "Bearer old"));
  const CompletedCall call = curlManager(authenticator)->executeSync(request("token"));
  ASSERT_TRUE(call.wrappedResponse.isUnauthorized());
  EXPECT_TRUE(sink->contains("Token refresh failed."));
  EXPECT_EQ(hits, 1);
}

}  // namespace
}  // namespace vorn
