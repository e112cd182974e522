// Observers of a BaseOperation are called with none of its locks held: an observer that waits
// for another thread which reads the operation must not stall.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

#include "vorn/messaging/BaseOperation.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using testing::waitUntil;

class ManualOperation : public BaseOperation {
 public:
  using BaseOperation::BaseOperation;
  void main() override {}
  void complete() { finish(); }
};

struct Probe {
  std::atomic<int> notifications{0};
  std::atomic<int> stalled{0};
};

// On every notification, has another thread read the operation's state and waits for it.
// After the first stall it stops waiting, so a failing run stays short.
void readFromAnotherThreadOnEachNotification(const std::shared_ptr<BaseOperation>& operation,
                                             const std::shared_ptr<Probe>& probe) {
  operation->addObserver(
      [weak = std::weak_ptr<BaseOperation>(operation), probe](std::string_view, bool) {
        const auto self = weak.lock();
        if (!self || probe->stalled.load() > 0) {
          return;
        }
        probe->notifications.fetch_add(1);
        auto read = std::make_shared<std::atomic<bool>>(false);
        // Detached: when it stalls it can only finish after this observer has returned.
        std::thread([self, read] {
          (void)self->state();
          *read = true;
        }).detach();
        if (!waitUntil([&] { return read->load(); }, 1s)) {
          probe->stalled.fetch_add(1);
        }
      });
}

TEST(OperationNotificationLock, StartAndFinishNotifyWithoutTheLock) {
  auto operation = std::make_shared<ManualOperation>(BaseOperation::kNoTimeout);
  auto probe = std::make_shared<Probe>();
  readFromAnotherThreadOnEachNotification(operation, probe);
  operation->start();
  operation->complete();
  EXPECT_TRUE(operation->isFinished());
  EXPECT_EQ(probe->stalled.load(), 0);
  EXPECT_EQ(probe->notifications.load(), 6);
}

TEST(OperationNotificationLock, TimeOutNotifiesWithoutTheLock) {
  auto operation = std::make_shared<ManualOperation>(0.0);
  auto probe = std::make_shared<Probe>();
  readFromAnotherThreadOnEachNotification(operation, probe);
  operation->start();
  // Executing, then cancelled (which also announces readiness), then finished.
  constexpr int kNotifications = 2 + 4 + 4;
  ASSERT_TRUE(waitUntil(
      [&] { return probe->notifications.load() == kNotifications || probe->stalled.load() > 0; }));
  EXPECT_EQ(probe->stalled.load(), 0);
  EXPECT_TRUE(operation->isFinished());
  EXPECT_TRUE(operation->operationTimedOut());
}

TEST(OperationNotificationLock, AddingADependencyNotifiesWithoutTheLock) {
  auto operation = std::make_shared<ManualOperation>(BaseOperation::kNoTimeout);
  auto probe = std::make_shared<Probe>();
  readFromAnotherThreadOnEachNotification(operation, probe);
  operation->addDependency(std::make_shared<ManualOperation>(BaseOperation::kNoTimeout));
  EXPECT_EQ(operation->dependencies().size(), 1u);
  EXPECT_EQ(probe->stalled.load(), 0);
  EXPECT_EQ(probe->notifications.load(), 2);
}

}  // namespace
}  // namespace vorn
