// The libcurl transport against a real HTTP server on 127.0.0.1: what goes out is what the
// caller gave, what comes back is the server's answer as sent, and connections are kept.
#include <gtest/gtest.h>

#include <mutex>
#include <set>
#include <string>
#include <thread>

#include "support/LoopbackServer.hpp"
#include "support/RawTcpServer.hpp"
#include "vorn/platform/HttpTransport.hpp"
#include "vorn/platform/Platform.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace vorn {
namespace {

std::vector<std::uint8_t> bytes(std::string_view text) {
  return {text.begin(), text.end()};
}

std::string text(const HttpResult& result) {
  return result.data ? std::string(result.data->begin(), result.data->end()) : "<no data>";
}

class HttpTransportTest : public ::testing::Test {
 protected:
  void SetUp() override {
    auto& routes = server_.server();
    routes.Get("/hello", [](const httplib::Request&, httplib::Response& res) {
      res.set_header("X-Greeting-Kind", "friendly");
      res.set_content("hello", "text/plain");
    });
    routes.Post("/echo", [](const httplib::Request& req, httplib::Response& res) {
      res.set_header("X-Seen-Token", req.get_header_value("X-Token"));
      res.set_header("X-Seen-Expect", req.has_header("Expect") ? "yes" : "no");
      res.set_content(req.body, "application/octet-stream");
    });
    auto methodEcho = [](const httplib::Request& req, httplib::Response& res) {
      res.set_content(req.method + " " + req.body, "text/plain");
    };
    routes.Put("/method", methodEcho);
    routes.Patch("/method", methodEcho);
    routes.Delete("/method", methodEcho);
    routes.Get("/port", [this](const httplib::Request& req, httplib::Response& res) {
      std::lock_guard lock(portsMutex_);
      ports_.insert(req.remote_port);
      res.set_content("ok", "text/plain");
    });
    routes.Get("/moved", [](const httplib::Request&, httplib::Response& res) {
      res.set_redirect("/hello", 301);
    });
    routes.Get("/missing", [](const httplib::Request&, httplib::Response& res) {
      res.status = 404;
      res.set_content("not here", "text/plain");
    });
    routes.Get("/broken", [](const httplib::Request&, httplib::Response& res) {
      res.status = 503;
      res.set_header("Retry-After", "120");
    });
    server_.start();
  }

  HttpRequest request(const std::string& path, std::string method = "GET") {
    HttpRequest request;
    request.method = std::move(method);
    request.url = server_.url(path);
    request.timeout = std::chrono::milliseconds(5000);
    return request;
  }

  std::size_t distinctPorts() {
    std::lock_guard lock(portsMutex_);
    return ports_.size();
  }

  test::LoopbackServer server_;
  std::shared_ptr<HttpTransport> transport_ = HttpTransport::curl();
  std::mutex portsMutex_;
  std::set<int> ports_;  // guarded by portsMutex_
};

TEST_F(HttpTransportTest, GetReturnsStatusHeadersBodyAndUrl) {
  const auto result = transport_->perform(request("/hello"));
  ASSERT_FALSE(result.error) << result.error->message;
  ASSERT_TRUE(result.response);
  EXPECT_EQ(result.response->statusCode, 200);
  EXPECT_EQ(result.response->url, server_.url("/hello"));
  EXPECT_EQ(text(result), "hello");
  EXPECT_EQ(headerValue(result.response->headers, "x-greeting-kind"), "friendly");
  EXPECT_EQ(headerValue(result.response->headers, "CONTENT-TYPE"), "text/plain");
}

TEST_F(HttpTransportTest, HeaderNamesKeptAsReceivedWithoutStatusOrBlankLines) {
  const auto result = transport_->perform(request("/hello"));
  ASSERT_TRUE(result.response);
  bool exactName = false;
  for (const auto& [name, value] : result.response->headers) {
    EXPECT_FALSE(name.empty());
    EXPECT_FALSE(name.starts_with("HTTP/")) << name;
    exactName = exactName || name == "X-Greeting-Kind";
  }
  EXPECT_TRUE(exactName);
}

TEST_F(HttpTransportTest, PostSendsBodyAndHeadersWithoutExpectContinue) {
  auto post = request("/echo", "POST");
  post.headers = {{"X-Token", "abc 123"}, {"Content-Type", "application/octet-stream"}};
  std::string body(2 << 20, 'x');  // large enough that libcurl would ask for 100-continue
  body[0] = '\0';
  post.body = bytes(body);
  const auto result = transport_->perform(post);
  ASSERT_FALSE(result.error) << result.error->message;
  EXPECT_EQ(result.response->statusCode, 200);
  EXPECT_EQ(text(result), body);
  EXPECT_EQ(headerValue(result.response->headers, "X-Seen-Token"), "abc 123");
  EXPECT_EQ(headerValue(result.response->headers, "X-Seen-Expect"), "no");
}

TEST_F(HttpTransportTest, EmptyPostArrivesWithEmptyBody) {
  const auto result = transport_->perform(request("/echo", "POST"));
  ASSERT_FALSE(result.error) << result.error->message;
  EXPECT_EQ(result.response->statusCode, 200);
  EXPECT_EQ(text(result), "");
}

TEST_F(HttpTransportTest, OtherMethodsReachTheServerWithTheirBodies) {
  for (const char* method : {"PUT", "PATCH", "DELETE"}) {
    auto call = request("/method", method);
    call.body = bytes("payload");
    const auto result = transport_->perform(call);
    ASSERT_FALSE(result.error) << method << ": " << result.error->message;
    EXPECT_EQ(text(result), std::string(method) + " payload");
  }
}

TEST_F(HttpTransportTest, HeadReturnsHeadersWithoutBody) {
  const auto result = transport_->perform(request("/hello", "HEAD"));
  ASSERT_FALSE(result.error) << result.error->message;
  EXPECT_EQ(result.response->statusCode, 200);
  EXPECT_EQ(text(result), "");
  EXPECT_EQ(headerValue(result.response->headers, "X-Greeting-Kind"), "friendly");
}

TEST_F(HttpTransportTest, SequentialRequestsShareOneConnection) {
  for (int i = 0; i < 5; ++i)
    ASSERT_FALSE(transport_->perform(request("/port")).error);
  EXPECT_EQ(distinctPorts(), 1u);
}

TEST_F(HttpTransportTest, ConnectionIsReusedFromAnotherThread) {
  ASSERT_FALSE(transport_->perform(request("/port")).error);
  std::thread other([&] { EXPECT_FALSE(transport_->perform(request("/port")).error); });
  other.join();
  EXPECT_EQ(distinctPorts(), 1u);
}

TEST_F(HttpTransportTest, RedirectIsNotFollowedUnlessAsked) {
  const auto kept = transport_->perform(request("/moved"));
  ASSERT_TRUE(kept.response);
  EXPECT_EQ(kept.response->statusCode, 301);
  EXPECT_EQ(kept.response->url, server_.url("/moved"));
  EXPECT_EQ(headerValue(kept.response->headers, "location"), "/hello");

  auto follow = request("/moved");
  follow.followRedirects = true;
  const auto followed = transport_->perform(follow);
  ASSERT_TRUE(followed.response);
  EXPECT_EQ(followed.response->statusCode, 200);
  EXPECT_EQ(followed.response->url, server_.url("/hello"));
  EXPECT_EQ(text(followed), "hello");
  EXPECT_FALSE(headerValue(followed.response->headers, "Location")) << "headers of the 301 kept";
}

TEST_F(HttpTransportTest, ErrorStatusesAreResponses) {
  const auto missing = transport_->perform(request("/missing"));
  ASSERT_FALSE(missing.error);
  EXPECT_EQ(missing.response->statusCode, 404);
  EXPECT_EQ(text(missing), "not here");

  const auto broken = transport_->perform(request("/broken"));
  ASSERT_FALSE(broken.error);
  EXPECT_EQ(broken.response->statusCode, 503);
  EXPECT_EQ(headerValue(broken.response->headers, "retry-after"), "120");
}

TEST_F(HttpTransportTest, UnusableRequestsAreRefusedAsBadRequest) {
  auto method = request("/hello", "GE T");
  auto header = request("/hello");
  header.headers = {{"X-Split", "a\r\nX-Injected: yes"}};
  auto scheme = request("/hello");
  scheme.url = "file:///etc/hostname";
  auto malformed = request("/hello");
  malformed.url = "http://[::1";
  ASSERT_FALSE(transport_->perform(request("/hello")).error) << "a warm handle forgets its past";
  for (const auto& refused : {method, header, scheme, malformed}) {
    const auto result = transport_->perform(refused);
    ASSERT_TRUE(result.error) << refused.url;
    EXPECT_EQ(result.error->code, HttpErrorCode::badRequest) << result.error->message;
    EXPECT_FALSE(result.response);
    EXPECT_FALSE(result.data);
  }
}

TEST(HttpTransportConnection, RefusedConnectionIsConnectionError) {
  std::string url;
  {
    test::RawTcpServer closed([](test::RawConnection&) {});
    url = closed.url();
  }
  HttpRequest request;
  request.url = url;
  request.timeout = std::chrono::milliseconds(2000);
  const auto result = HttpTransport::curl()->perform(request);
  ASSERT_TRUE(result.error);
  EXPECT_EQ(result.error->code, HttpErrorCode::connection) << result.error->message;
  EXPECT_FALSE(result.response);
}

TEST(HttpTransportPlatform, EphemeralPlatformSendsNothing) {
  HttpRequest request;
  request.url = "http://127.0.0.1:9/";
  const auto result = Platform::ephemeral().http->perform(request);
  ASSERT_TRUE(result.error);
  EXPECT_EQ(result.error->code, HttpErrorCode::noTransport);
  EXPECT_FALSE(result.response);
}

TEST(HttpTransportPlatform, DefaultPlatformTalksHttp) {
  test::LoopbackServer server;
  server.server().Get("/", [](const httplib::Request&, httplib::Response& res) {
    res.set_content("up", "text/plain");
  });
  server.start();
  testing::TemporaryDirectory dir;
  HttpRequest request;
  request.url = server.url("/");
  const auto result = Platform::defaultPlatform(dir.path()).http->perform(request);
  ASSERT_FALSE(result.error) << result.error->message;
  EXPECT_EQ(text(result), "up");
}

}  // namespace
}  // namespace vorn
