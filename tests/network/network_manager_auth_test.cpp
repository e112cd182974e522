#include <algorithm>
#include <string>

#include "network/NetworkTestSupport.hpp"

namespace vorn {
namespace {

using testing::httpAnswer;

constexpr std::string_view kFetchFailedLine = "Fetching auth token header failed.";
constexpr std::string_view kRefreshFailedLine = "Token refresh failed.";

class NetworkManagerAuth : public test::NetworkManagerTest {
 protected:
  std::optional<std::string> sentAuthorization(std::size_t index) {
    return headerValue(transport->requests().at(index).headers, "Authorization");
  }

  std::shared_ptr<test::ScriptedAuthenticator> authenticator =
      std::make_shared<test::ScriptedAuthenticator>(AuthHeader("Authorization", "Bearer old"));
};

TEST_F(NetworkManagerAuth, CachedHeaderIsSentWithoutARefresh) {
  transport->enqueue(httpAnswer(200));
  const auto call = makeManager(authenticator)->executeSync(test::namedRequest("events"));
  EXPECT_TRUE(call.wrappedResponse.isSuccess());
  EXPECT_EQ(sentAuthorization(0), "Bearer old");
  EXPECT_EQ(call.wrappedRequest.request.value("authorization"), "Bearer old");
  EXPECT_EQ(authenticator->refreshCount, 0);
  EXPECT_EQ(authenticator->deleteCount, 0);
  EXPECT_FALSE(sink->contains(kFetchFailedLine));
}

TEST_F(NetworkManagerAuth, UnauthorizedLeadsToOneRefreshAndOneRetry) {
  authenticator->queueRefresh(AuthHeader("Authorization", "Bearer new"));
  transport->enqueue(httpAnswer(401));
  transport->enqueue(httpAnswer(200, {}, "ok"));
  const auto call = makeManager(authenticator)->executeSync(test::namedRequest("events"));
  EXPECT_TRUE(call.wrappedResponse.isSuccess());
  EXPECT_EQ(call.wrappedResponse.data, (Bytes{'o', 'k'}));
  ASSERT_EQ(transport->requestCount(), 2u);
  EXPECT_EQ(sentAuthorization(0), "Bearer old");
  EXPECT_EQ(sentAuthorization(1), "Bearer new");
  EXPECT_EQ(authenticator->refreshCount, 1);
  EXPECT_EQ(authenticator->deleteCount, 1);
}

TEST_F(NetworkManagerAuth, SecondUnauthorizedIsReturnedAsItIs) {
  authenticator->queueRefresh(AuthHeader("Authorization", "Bearer new"));
  authenticator->queueRefresh(AuthHeader("Authorization", "Bearer newer"));
  transport->enqueue(httpAnswer(401));
  transport->enqueue(httpAnswer(401, {}, "still no"));
  const auto call = makeManager(authenticator)->executeSync(test::namedRequest("events"));
  EXPECT_TRUE(call.wrappedResponse.isUnauthorized());
  EXPECT_EQ(call.wrappedResponse.data, (Bytes{'s', 't', 'i', 'l', 'l', ' ', 'n', 'o'}));
  EXPECT_EQ(transport->requestCount(), 2u);
  EXPECT_EQ(authenticator->refreshCount, 1);
  EXPECT_FALSE(sink->contains(kRefreshFailedLine));
}

TEST_F(NetworkManagerAuth, FailedRefreshKeepsTheUnauthorizedResponse) {
  transport->enqueue(httpAnswer(401));
  const auto call = makeManager(authenticator)->executeSync(test::namedRequest("events"));
  EXPECT_TRUE(call.wrappedResponse.isUnauthorized());
  EXPECT_EQ(transport->requestCount(), 1u);
  EXPECT_TRUE(sink->contains(kRefreshFailedLine));
  EXPECT_EQ(authenticator->deleteCount, 2) << "once before the refresh, once after it failed";
  EXPECT_FALSE(sink->contains(kFetchFailedLine)) << "the sent request did carry a header";
}

TEST_F(NetworkManagerAuth, NoHeaderAtAllSendsTheCallOnceWithoutOneAndSaysSo) {
  auto tokenless = std::make_shared<test::ScriptedAuthenticator>(std::nullopt);
  transport->enqueue(httpAnswer(200));
  const auto call = makeManager(tokenless)->executeSync(test::namedRequest("events", 60));
  EXPECT_TRUE(call.wrappedResponse.isSuccess());
  EXPECT_EQ(transport->requestCount(), 1u);
  EXPECT_EQ(sentAuthorization(0), std::nullopt);
  EXPECT_EQ(tokenless->refreshCount, 1);
  EXPECT_EQ(tokenless->deleteCount, 1);

  const auto messages = sink->messages();
  const auto at = [&](std::string_view text) {
    return std::ranges::find(messages, text) - messages.begin();
  };
  ASSERT_LT(at(kFetchFailedLine), static_cast<std::ptrdiff_t>(messages.size()));
  EXPECT_LT(at(kFetchFailedLine),
            at("Executing synchronous network call (events) process completed."));
  EXPECT_TRUE(prefs->stringFor("retry_device_events")) << "deadlines are applied first";
}

TEST_F(NetworkManagerAuth, WithoutAnAuthenticatorNoHeaderIsAddedAndNothingIsRetried) {
  transport->enqueue(httpAnswer(401));
  const auto call = makeManager()->executeSync(test::namedRequest("events"));
  EXPECT_TRUE(call.wrappedResponse.isUnauthorized());
  EXPECT_EQ(transport->requestCount(), 1u);
  EXPECT_EQ(sentAuthorization(0), std::nullopt);
  EXPECT_FALSE(sink->contains(kFetchFailedLine));
  EXPECT_FALSE(sink->contains(kRefreshFailedLine));
}

}  // namespace
}  // namespace vorn
