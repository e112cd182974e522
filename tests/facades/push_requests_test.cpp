#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "vorn/facades/PUSH.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/FakePushModule.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

constexpr std::string_view kDeferredQueue = "com.quorvantis.tessarine.push.DeferredCallsQueue";

// What one request saw when it ran.
struct RequestRun {
  int request;
  std::string queue;  // empty: on no queue
  std::thread::id thread;
  bool gotTheFacade;
};

class PushRequests : public ::testing::Test {
 protected:
  PUSH::Request request(int number) {
    return [this, number](std::shared_ptr<PushInterface> facade) {
      const DispatchQueue* queue = DispatchQueue::current();
      std::lock_guard lock(mutex);
      runs.push_back({number, queue ? queue->label() : "", std::this_thread::get_id(),
                      facade.get() == static_cast<PushInterface*>(push.get())});
    };
  }

  std::vector<RequestRun> ran() {
    std::lock_guard lock(mutex);
    return runs;
  }

  std::vector<int> ranInOrder() {
    std::vector<int> numbers;
    for (const RequestRun& run : ran())
      numbers.push_back(run.request);
    return numbers;
  }

  bool waitForRuns(std::size_t count) {
    return testing::waitUntil([&] { return ran().size() >= count; });
  }

  std::shared_ptr<PUSH> push = PUSH::shared();
  std::mutex mutex;
  std::vector<RequestRun> runs;  // guarded by mutex
};

TEST_F(PushRequests, KeptUntilOperationalThenRunAfterTheReleasingRequestInOrder) {
  push->setStatus(ModuleStatus::initializing);
  for (int number = 1; number <= 3; ++number)
    push->requestPushSdk(request(number));
  EXPECT_TRUE(ran().empty());

  push->setStatus(ModuleStatus::operational);
  push->requestPushSdk(request(4));
  ASSERT_FALSE(ran().empty());  // the releasing request ran before the call returned
  EXPECT_EQ(ran()[0].request, 4);
  EXPECT_EQ(ran()[0].queue, "");
  EXPECT_EQ(ran()[0].thread, std::this_thread::get_id());

  ASSERT_TRUE(waitForRuns(4));
  EXPECT_EQ(ranInOrder(), (std::vector{4, 1, 2, 3}));
  for (const RequestRun& run : ran()) {
    EXPECT_TRUE(run.gotTheFacade);
    if (run.request != 4) {
      EXPECT_EQ(run.queue, kDeferredQueue);
    }
  }
}

TEST_F(PushRequests, ReleasedInOrderWhenTheModuleBecomesOperational) {
  for (int number = 1; number <= 5; ++number)
    push->requestPushSdk(request(number));
  push->setStatus(ModuleStatus::operational);
  push->releaseDeferredCalls();
  ASSERT_TRUE(waitForRuns(5));
  EXPECT_EQ(ranInOrder(), (std::vector{1, 2, 3, 4, 5}));
  push->releaseDeferredCalls();  // released requests are forgotten
  push->requestPushSdk(request(6));
  EXPECT_EQ(ranInOrder(), (std::vector{1, 2, 3, 4, 5, 6}));
}

TEST_F(PushRequests, TearDownLogsAndDropsTheKeptRequests) {
  auto sink = testing::CaptureLogSink::install();
  push->requestPushSdk(request(1));
  push->requestPushSdk(request(2));
  push->tearDown();
  const auto line = sink->find("Tearing down module: push. All deferred calls will be removed.");
  ASSERT_NE(line, nullptr);
  EXPECT_EQ(line->category, LoggerCategory::sdk);
  EXPECT_EQ(line->level, LogLevel::debug);

  // A later request queues behind anything the teardown had left, so when it has run, the
  // dropped ones would have run too.
  push->requestPushSdk(request(3));
  push->setStatus(ModuleStatus::operational);
  push->releaseDeferredCalls();
  ASSERT_TRUE(waitForRuns(1));
  EXPECT_EQ(ranInOrder(), std::vector{3});
}

TEST_F(PushRequests, AnOperationalRequestReachesTheModuleThroughTheFacade) {
  auto module = testing::FakePushModule::create();
  push->attachModule(module);
  push->setStatus(ModuleStatus::operational);
  bool added = false;
  push->requestPushSdk([&](std::shared_ptr<PushInterface> facade) { added = facade->addTag("t"); });
  EXPECT_TRUE(added);
  EXPECT_EQ(module->operations(), std::vector<std::string>{"addTag"});
}

TEST_F(PushRequests, AnEmptyRequestIsIgnored) {
  push->requestPushSdk(nullptr);
  push->setStatus(ModuleStatus::operational);
  push->releaseDeferredCalls();
  push->requestPushSdk(nullptr);
  push->requestPushSdk(request(1));
  EXPECT_EQ(ranInOrder(), std::vector{1});
}

// Requests made from several threads while the module becomes operational each run
// exactly once: none is lost from the kept list, none is released twice.
TEST_F(PushRequests, ConcurrentRequestsRunExactlyOnceWhileTheModuleBecomesOperational) {
  constexpr int kThreads = 4;
  constexpr int kEach = 200;
  std::atomic<int> count{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < kEach; ++i)
        push->requestPushSdk([&](std::shared_ptr<PushInterface>) { ++count; });
    });
  }
  push->setStatus(ModuleStatus::operational);
  push->releaseDeferredCalls();
  for (auto& thread : threads)
    thread.join();
  push->requestPushSdk([&](std::shared_ptr<PushInterface>) { ++count; });
  EXPECT_TRUE(testing::waitUntil([&] { return count.load() == kThreads * kEach + 1; }));
  push->releaseDeferredCalls();
  push->requestPushSdk(request(1));
  ASSERT_TRUE(waitForRuns(1));
  EXPECT_EQ(count.load(), kThreads * kEach + 1);
}

}  // namespace
}  // namespace vorn
