#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "network/NetworkTestSupport.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

using testing::httpAnswer;
using testing::Latch;

class NetworkManagerFlight : public test::NetworkManagerTest {
 protected:
  // Holds every request to ".../slow" until `release` opens; answers others at once.
  void holdSlowRequests() {
    transport->setHandler([this](const HttpRequest& request) {
      if (request.url.ends_with("/slow")) {
        entered.countDown();
        release.wait();
      }
      return httpAnswer(200);
    });
  }

  Latch entered;
  Latch release;
};

TEST_F(NetworkManagerFlight, SecondCallOfANameIsRefusedWhileTheFirstRuns) {
  holdSlowRequests();
  auto manager = makeManager();
  std::optional<CompletedCall> first;
  std::thread runner([&] { first = manager->executeSync(test::namedRequest("slow")); });
  ASSERT_TRUE(entered.wait());

  const CompletedCall second = manager->executeSync(test::namedRequest("slow"));
  EXPECT_EQ(second.wrappedResponse.error->refusalError(), NetworkManagerError::alreadyInFlight);
  EXPECT_FALSE(second.wrappedResponse.response);
  EXPECT_FALSE(second.wrappedResponse.data);
  EXPECT_TRUE(sink->contains("Request slow is already in flight."));
  EXPECT_TRUE(manager->executeSync(test::namedRequest("other")).wrappedResponse.isSuccess())
      << "other names are not held up";

  release.countDown();
  runner.join();
  ASSERT_TRUE(first);
  EXPECT_TRUE(first->wrappedResponse.isSuccess());
  EXPECT_EQ(transport->requestCount(), 2u);
  EXPECT_TRUE(sink->contains("Executing synchronous network call (slow) process started."));
  EXPECT_EQ(sink->count("Executing synchronous network call (slow) process completed."), 1u);
  EXPECT_TRUE(manager->executeSync(test::namedRequest("slow")).wrappedResponse.isSuccess())
      << "a finished call frees its name";
}

TEST_F(NetworkManagerFlight, AsyncFormHandsItsCallToTheHandler) {
  transport->enqueue(httpAnswer(200, {{"Retry-After", "30"}}));
  auto manager = makeManager();
  EXPECT_TRUE(manager->dispatchQueue().label().ends_with("_NetworkManager"));
  Latch done(2);
  std::vector<CompletedCall> calls;
  std::mutex mutex;
  const auto keep = [&](CompletedCall call) {
    std::lock_guard lock(mutex);
    calls.push_back(std::move(call));
    done.countDown();
  };
  manager->executeAsync(test::namedRequest("events"), keep);
  manager->executeAsync(test::namedRequest("events"), keep);
  ASSERT_TRUE(done.wait());
  std::lock_guard lock(mutex);
  EXPECT_TRUE(calls.at(0).wrappedResponse.isSuccess());
  EXPECT_EQ(calls.at(1).wrappedResponse.error->refusalError(),
            NetworkManagerError::blockedByRetryAfter)
      << "a blocked name is refused at once, not deferred";
  EXPECT_EQ(transport->requestCount(), 1u);
  EXPECT_EQ(sink->count("Executing asynchronous network call (events) process started."), 2u);
  EXPECT_EQ(sink->count("Executing asynchronous network call (events) process completed."), 1u);
  EXPECT_TRUE(sink->contains("Request events is blocked by retry after."));
}

TEST_F(NetworkManagerFlight, AsyncWorkOfAManagerThatIsGoneDoesNothing) {
  holdSlowRequests();
  auto manager = makeManager();
  Latch firstDone;
  manager->executeAsync(test::namedRequest("slow"), [&](CompletedCall) { firstDone.countDown(); });
  ASSERT_TRUE(entered.wait());
  std::atomic<bool> secondCalled{false};
  auto sentinel = std::make_shared<int>(0);
  const std::weak_ptr<int> watch = sentinel;
  manager->executeAsync(test::namedRequest("later"), [&, sentinel = std::move(sentinel)](
                                                         CompletedCall) { secondCalled = true; });
  manager.reset();
  release.countDown();
  ASSERT_TRUE(firstDone.wait());
  ASSERT_TRUE(testing::waitUntil([&] { return watch.expired(); }))
      << "the second work item ran and was dropped";
  EXPECT_FALSE(secondCalled);
  EXPECT_EQ(transport->requestCount(), 1u);
}

TEST_F(NetworkManagerFlight, WithoutATransportEveryCallIsRefused) {
  const auto manager = NetworkManager::create(prefs, nullptr, nullptr, clock);
  const CompletedCall call = manager->executeSync(test::namedRequest("events"));
  EXPECT_EQ(call.wrappedResponse.error->refusalError(), NetworkManagerError::noTransport);
  EXPECT_EQ(call.wrappedResponse.startTimeMillis, clock->nowMillis());
  EXPECT_TRUE(
      sink->contains("Request events cannot be sent: the network manager has no transport."));
}

TEST_F(NetworkManagerFlight, ManyThreadsAtOnceEachGetAnAnswerOrARefusal) {
  std::atomic<int> sent{0};
  transport->setHandler([&](const HttpRequest&) {
    ++sent;
    return httpAnswer(200);
  });
  auto manager = makeManager();
  constexpr int kThreads = 6;
  constexpr int kCalls = 40;
  std::atomic<int> succeeded{0};
  std::atomic<int> refused{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < kCalls; ++i) {
        const std::string name = i % 2 == 0 ? "shared" : "own" + std::to_string(t);
        const auto call = manager->executeSync(test::namedRequest(name));
        if (call.wrappedResponse.isSuccess())
          ++succeeded;
        else if (call.wrappedResponse.error->refusalError() == NetworkManagerError::alreadyInFlight)
          ++refused;
      }
    });
  }
  for (auto& thread : threads)
    thread.join();
  EXPECT_EQ(succeeded + refused, kThreads * kCalls);
  EXPECT_EQ(succeeded, sent);
  EXPECT_GE(succeeded, kThreads * kCalls / 2) << "names of their own are never refused";
}

}  // namespace
}  // namespace vorn
