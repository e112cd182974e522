#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "vorn/network/WrappedResponse.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

using Builder = WrappedRequest::Builder;
constexpr std::string_view kInvalidLine = "build() called on invalid WrappedRequest.Builder()";

TEST(WrappedRequestBuilder, MissingMethodUrlOrNameGivesNoRequestAndTheLine) {
  auto sink = testing::CaptureLogSink::install();
  EXPECT_FALSE(Builder().url("https://a.example").method("GET").build());
  EXPECT_FALSE(Builder().url("https://a.example").name("n").build());
  EXPECT_FALSE(Builder().method("GET").name("n").build());
  EXPECT_EQ(sink->count(kInvalidLine), 3u);
  const auto line = sink->find(kInvalidLine);
  EXPECT_EQ(line->category, LoggerCategory::network);
  EXPECT_EQ(line->level, LogLevel::debug);
}

TEST(WrappedRequestBuilder, BuildsEveryFieldWithTheDefaultTimeoutAndReloadPolicy) {
  const auto minimal = Builder().method("PATCH").url("https://a.example/x").name("n").build();
  ASSERT_TRUE(minimal);
  EXPECT_EQ(minimal->request.timeoutInterval, 30.0);
  EXPECT_EQ(minimal->request.cachePolicy, URLRequest::kReloadIgnoringLocalCacheData);
  EXPECT_EQ(minimal->request.httpMethod, "PATCH");
  EXPECT_EQ(minimal->request.httpBody, std::nullopt);
  EXPECT_EQ(minimal->rateLimit, 0);
  EXPECT_EQ(minimal->tag, std::nullopt);

  const auto full = Builder()
                        .method("post")
                        .url("https://a.example/x")
                        .body(Bytes{1, 2})
                        .timeout(4.5)
                        .rateLimit(60)
                        .name("events")
                        .tag("t")
                        .build();
  ASSERT_TRUE(full);
  EXPECT_EQ(full->request.httpMethod, "post") << "used exactly as passed";
  EXPECT_EQ(full->request.url, "https://a.example/x");
  EXPECT_EQ(full->request.httpBody, (Bytes{1, 2}));
  EXPECT_EQ(full->request.timeoutInterval, 4.5);
  EXPECT_EQ(full->name, "events");
  EXPECT_EQ(full->rateLimit, 60);
  EXPECT_EQ(full->tag, "t");
}

TEST(WrappedRequestBuilder, AddOrReplaceHeaderKeepsTheSecondValue) {
  const auto request = Builder()
                           .method("GET")
                           .url("https://a.example")
                           .name("n")
                           .addOrReplaceHeader("X-Id", "first")
                           .addOrReplaceHeader("X-Id", "second")
                           .addOrReplaceHeader("Accept", "text/plain")
                           .addOrReplaceHeader("accept", "application/json")
                           .build();
  ASSERT_TRUE(request);
  const HttpHeaders expected{{"accept", "application/json"}, {"X-Id", "second"}};
  EXPECT_EQ(request->request.allHTTPHeaderFields(), expected)
      << "keys differing only in case are one HTTP field: the later key in order replaces it in "
         "place";
  EXPECT_EQ(request->request.value("x-id"), "second");
}

TEST(WrappedRequestBuilder, UrlWithBaseJoinsWithExactlyOneSlash) {
  const std::vector<std::pair<std::pair<std::string, std::string>, std::string>> cases{
      {{"https://a.example/api", "v1/x"}, "https://a.example/api/v1/x"},
      {{"https://a.example/api/", "/v1/x"}, "https://a.example/api/v1/x"},
      {{"https://a.example/api//", "//v1/x?q=1"}, "https://a.example/api/v1/x?q=1"},
      {{"https://a.example/api/", ""}, "https://a.example/api/"},
      {{"https://a.example", "/"}, "https://a.example"},
  };
  for (const auto& [input, url] : cases) {
    const auto request =
        Builder().method("GET").urlWithBase(input.first, input.second).name("n").build();
    ASSERT_TRUE(request) << input.first << " + " << input.second;
    EXPECT_EQ(request->request.url, url);
  }
}

TEST(WrappedRequestBuilder, UnparsableUrlLeavesUrlAbsent) {
  auto sink = testing::CaptureLogSink::install();
  for (const std::string bad :
       {"", "a.example/x", "://a.example", "1http://a.example", "ht tp://a.example", "https://",
        "https:///path", "https://user@:80/x", "https://a.example/a b", "https://a.example/\n",
        "mailto:someone@a.example"}) {
    EXPECT_FALSE(Builder().method("GET").url(bad).name("n").build()) << bad;
  }
  EXPECT_FALSE(Builder().method("GET").url("https://ok.example").url("bad").name("n").build())
      << "a bad URL replaces an earlier good one";
  EXPECT_FALSE(Builder().method("GET").urlWithBase("https://", "x").name("n").build());
  EXPECT_EQ(sink->count(kInvalidLine), 13u);
  for (const std::string good :
       {"http://127.0.0.1:8080/x", "coap+tcp://[::1]:5683", "https://user:pw@a.example?q#f"}) {
    EXPECT_TRUE(Builder().method("GET").url(good).name("n").build()) << good;
  }
}

TEST(WrappedResponse, SuccessAndUnauthorizedFollowTheStatus) {
  const auto withStatus = [](int status) {
    WrappedResponse response;
    response.response = HttpResponse{.statusCode = status, .url = "", .headers = {}};
    return response;
  };
  EXPECT_TRUE(withStatus(204).isSuccess());
  EXPECT_TRUE(withStatus(200).isSuccess());
  EXPECT_FALSE(withStatus(199).isSuccess());
  EXPECT_FALSE(withStatus(301).isSuccess());
  EXPECT_FALSE(withStatus(301).isUnauthorized());
  EXPECT_FALSE(withStatus(401).isSuccess());
  EXPECT_TRUE(withStatus(401).isUnauthorized());
  EXPECT_FALSE(withStatus(403).isUnauthorized());

  WrappedResponse failed;
  failed.error = ResponseError::transport({HttpErrorCode::timedOut, "slow"});
  failed.startTimeMillis = 1000;
  failed.endTimeMillis = 1250;
  EXPECT_FALSE(failed.isSuccess());
  EXPECT_FALSE(failed.isUnauthorized());
  EXPECT_EQ(failed.timeToExecute(), 250);
}

TEST(ResponseError, TellsARefusalFromATransportFailure) {
  const auto refusal = ResponseError::refusal(NetworkManagerError::alreadyInFlight);
  EXPECT_TRUE(refusal.isRefusal());
  EXPECT_EQ(refusal.refusalError(), NetworkManagerError::alreadyInFlight);
  EXPECT_EQ(refusal.transportError(), nullptr);

  const auto failure = ResponseError::transport({HttpErrorCode::connection, "refused"});
  EXPECT_FALSE(failure.isRefusal());
  EXPECT_EQ(failure.refusalError(), std::nullopt);
  ASSERT_NE(failure.transportError(), nullptr);
  EXPECT_EQ(failure.transportError()->code, HttpErrorCode::connection);
  EXPECT_EQ(static_cast<int>(NetworkManagerError::blockedByRetryAfter), 2);
}

}  // namespace
}  // namespace vorn
