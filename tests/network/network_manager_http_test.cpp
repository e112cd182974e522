// The key acceptance cases once more over real HTTP: libcurl against a loopback server.
#include <atomic>
#include <mutex>
#include <string>

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
    server.start();
  }

  std::shared_ptr<NetworkManager> curlManager(std::shared_ptr<Authenticator> authenticator = {}) {
    return NetworkManager::create(prefs, std::move(authenticator), HttpTransport::curl(), clock);
  }
  WrappedRequest request(const std::string& name, double rateLimit = 0) {
    return test::namedRequest(name, rateLimit, server.url("/v1"));
  }

  std::atomic<int> hits{0};
  std::mutex mutex;
  std::string seenAuthorization;  // guarded by mutex
  test::LoopbackServer server;
};

TEST_F(NetworkManagerHttp, SuccessWithRateLimitBlocksTheName) {
  auto manager = curlManager();
  const CompletedCall call = manager->executeSync(request("events", 60));
  ASSERT_TRUE(call.wrappedResponse.isSuccess());
  EXPECT_EQ(call.wrappedResponse.data, (Bytes{'{', '}'}));
  EXPECT_EQ(manager->executeSync(request("events", 60)).wrappedResponse.error->refusalError(),
            NetworkManagerError::blockedByRetryAfter);
  EXPECT_TRUE(sink->contains("Request events, blocked by Retry-After for 60 more seconds"));
  EXPECT_EQ(hits, 1);
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

}  // namespace
}  // namespace vorn
