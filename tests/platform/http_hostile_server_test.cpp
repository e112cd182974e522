// The libcurl transport against servers that misbehave: every call ends within its time-out
// plus a second, with an error or a response, holding no more than the body cap.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <sstream>
#include <string>
#include <thread>

#include "support/LoopbackServer.hpp"
#include "support/RawTcpServer.hpp"
#include "vorn/platform/HttpTransport.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

using std::chrono::milliseconds;
using test::RawConnection;
using test::RawTcpServer;

constexpr milliseconds kTimeout{300};
constexpr milliseconds kBound = kTimeout + milliseconds(1000);

struct Timed {
  HttpResult result;
  milliseconds elapsed;
};

Timed performAgainst(const RawTcpServer& server, milliseconds timeout = kTimeout) {
  HttpRequest request;
  request.url = server.url("/");
  request.timeout = timeout;
  const auto start = std::chrono::steady_clock::now();
  auto result = HttpTransport::curl()->perform(request);
  return {std::move(result),
          std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start)};
}

void expectError(const Timed& timed, HttpErrorCode code) {
  EXPECT_LT(timed.elapsed, kBound);
  ASSERT_TRUE(timed.result.error) << "status " << timed.result.response->statusCode;
  EXPECT_EQ(timed.result.error->code, code) << timed.result.error->message;
  EXPECT_FALSE(timed.result.response);
  EXPECT_FALSE(timed.result.data);
}

// Writes `head` after reading the request, then chunks of `chunk` until the peer goes away,
// pausing `pace` between them.
RawTcpServer::Handler endlessChunks(std::size_t chunk, milliseconds pace) {
  return [chunk, pace](RawConnection& connection) {
    connection.readHead();
    connection.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
    const std::string piece = (std::ostringstream() << std::hex << chunk).str() + "\r\n" +
                              std::string(chunk, 'z') + "\r\n";
    while (connection.send(piece) && (pace.count() == 0 || connection.stalled(pace))) {
    }
  };
}

TEST(HttpHostileServer, StallBeforeAnsweringTimesOut) {
  RawTcpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.stalled(milliseconds(10000));
  });
  expectError(performAgainst(server), HttpErrorCode::timedOut);
}

TEST(HttpHostileServer, StallInsideTheBodyTimesOut) {
  RawTcpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nonly ten b");
    connection.stalled(milliseconds(10000));
  });
  const auto timed = performAgainst(server);
  EXPECT_GE(timed.elapsed, kTimeout - milliseconds(50));
  expectError(timed, HttpErrorCode::timedOut);
}

TEST(HttpHostileServer, NeverEndingChunkedBodyTimesOut) {
  RawTcpServer server(endlessChunks(64, milliseconds(5)));
  expectError(performAgainst(server), HttpErrorCode::timedOut);
}

TEST(HttpHostileServer, FloodedChunkedBodyStopsAtTheCap) {
  RawTcpServer server(endlessChunks(64 * 1024, milliseconds(0)));
  expectError(performAgainst(server, milliseconds(5000)), HttpErrorCode::bodyTooLarge);
}

TEST(HttpHostileServer, AnnouncedOversizeBodyIsRefusedUnread) {
  RawTcpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: " +
                    std::to_string(kHttpMaxResponseBodyBytes + 1) + "\r\n\r\nabc");
    connection.stalled(milliseconds(10000));
  });
  const auto timed = performAgainst(server);
  expectError(timed, HttpErrorCode::bodyTooLarge);
  EXPECT_LT(timed.elapsed, kTimeout) << "the length alone decides";
}

TEST(HttpHostileServer, HeadOfAnOversizeResourceIsAResponse) {
  RawTcpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: " +
                    std::to_string(kHttpMaxResponseBodyBytes * 2) + "\r\n\r\n");
  });
  HttpRequest request;
  request.method = "HEAD";
  request.url = server.url();
  request.timeout = kTimeout;
  const auto result = HttpTransport::curl()->perform(request);
  ASSERT_FALSE(result.error) << result.error->message;
  EXPECT_EQ(result.response->statusCode, 200);
  EXPECT_TRUE(result.data->empty());
}

TEST(HttpHostileServer, BodyOfExactlyTheCapIsKept) {
  RawTcpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.send(
        "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(kHttpMaxResponseBodyBytes) +
        "\r\n\r\n" + std::string(kHttpMaxResponseBodyBytes, 'k'));
  });
  const auto timed = performAgainst(server, milliseconds(10000));
  ASSERT_FALSE(timed.result.error) << timed.result.error->message;
  EXPECT_EQ(timed.result.data->size(), kHttpMaxResponseBodyBytes);
}

TEST(HttpHostileServer, ResetInsideTheBodyIsConnectionError) {
  RawTcpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\npartial");
    connection.reset();
  });
  expectError(performAgainst(server), HttpErrorCode::connection);
}

TEST(HttpHostileServer, ResetBeforeAnsweringIsConnectionError) {
  RawTcpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.reset();
  });
  expectError(performAgainst(server), HttpErrorCode::connection);
}

TEST(HttpHostileServer, ClosedWithoutAnswerIsConnectionError) {
  RawTcpServer server([](RawConnection& connection) { connection.readHead(); });
  expectError(performAgainst(server), HttpErrorCode::connection);
}

TEST(HttpHostileServer, MalformedStatusLineIsProtocolError) {
  RawTcpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.send("HTTQ/9 okay maybe\r\n\r\nbody");
  });
  expectError(performAgainst(server), HttpErrorCode::protocol);
}

TEST(HttpHostileServer, UnparsableContentLengthIsProtocolError) {
  RawTcpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: lots\r\n\r\nbody");
  });
  expectError(performAgainst(server), HttpErrorCode::protocol);
}

TEST(HttpHostileServer, HeaderLineWithoutColonIsProtocolError) {
  RawTcpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.send("HTTP/1.1 200 OK\r\nNo colon here\r\nContent-Length: 2\r\n\r\nok");
  });
  expectError(performAgainst(server), HttpErrorCode::protocol);
}

TEST(HttpHostileServer, FoldedHeaderJoinsThePreviousValue) {
  RawTcpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.send("HTTP/1.1 200 OK\r\nX-Folded: one\r\n two\r\nContent-Length: 2\r\n\r\nok");
  });
  const auto timed = performAgainst(server);
  EXPECT_LT(timed.elapsed, kBound);
  ASSERT_FALSE(timed.result.error) << timed.result.error->message;
  const auto& headers = timed.result.response->headers;
  EXPECT_EQ(headers.size(), 2u);
  EXPECT_EQ(headerValue(headers, "x-folded"), "one two");
}

TEST(HttpHostileServer, CustomMethodIsSentAsGivenWithItsBody) {
  std::string head;
  RawTcpServer server([&](RawConnection& connection) {
    head = connection.readHead();
    connection.send("HTTP/1.1 204 No Content\r\n\r\n");
  });
  HttpRequest request;
  request.method = "PURGE";
  request.url = server.url("/item");
  request.body = {'a', 'b', 'c'};
  request.headers = {{"X-Empty", ""}};
  request.timeout = kTimeout;
  const auto result = HttpTransport::curl()->perform(request);
  ASSERT_FALSE(result.error) << result.error->message;
  EXPECT_EQ(result.response->statusCode, 204);
  server.stop();  // the handler has written `head` once its connection is done
  EXPECT_TRUE(head.starts_with("PURGE /item HTTP/1.1\r\n")) << head;
  EXPECT_NE(head.find("\r\nContent-Length: 3\r\n"), std::string::npos) << head;
  EXPECT_NE(head.find("\r\nX-Empty:\r\n"), std::string::npos) << head;
}

TEST(HttpHostileServer, StalledExchangeDoesNotDelayAnother) {
  testing::Latch stalling;
  RawTcpServer staller([&](RawConnection& connection) {
    connection.readHead();
    stalling.countDown();
    connection.stalled(milliseconds(10000));
  });
  test::LoopbackServer quickServer;
  quickServer.server().Get("/", [](const httplib::Request&, httplib::Response& res) {
    res.set_content("quick", "text/plain");
  });
  quickServer.start();
  auto transport = HttpTransport::curl();

  std::atomic<bool> stalledDone{false};
  std::thread slow([&] {
    HttpRequest request;
    request.url = staller.url();
    request.timeout = milliseconds(8000);
    transport->perform(request);
    stalledDone = true;
  });
  ASSERT_TRUE(stalling.wait());
  HttpRequest quick;
  quick.url = quickServer.url("/");
  const auto start = std::chrono::steady_clock::now();
  const auto result = transport->perform(quick);
  const auto elapsed = std::chrono::steady_clock::now() - start;
  EXPECT_FALSE(stalledDone.load());
  EXPECT_LT(elapsed, milliseconds(1000));
  ASSERT_FALSE(result.error) << result.error->message;
  EXPECT_EQ(result.response->statusCode, 200);

  staller.stop();  // ends the stalled exchange now instead of after its time-out
  slow.join();
}

}  // namespace
}  // namespace vorn
