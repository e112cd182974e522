#include "vorn/core/ModuleInitializer.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>

#include "vorn/core/ModuleQueues.hpp"
#include "vorn/core/ModuleRegistry.hpp"
#include "vorn/runtime/BlockOperation.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/FakeModule.hpp"
#include "vorn/testing/FakeModuleConfig.hpp"
#include "vorn/testing/PlatformInstall.hpp"
#include "vorn/testing/TimeScale.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

using testing::FakeModule;
using testing::Latch;

// A module that says when it is destroyed: a module the initializer dropped goes at once,
// a stored one lives on in its holder.
class TrackedModule : public VORNModule {
 public:
  explicit TrackedModule(Latch& destroyed) : destroyed_(destroyed) {}
  ~TrackedModule() override { destroyed_.countDown(); }
  void tearDown() override {}
  Dictionary stateProperties() const override { return {}; }

 private:
  Latch& destroyed_;
};

class ModuleInitializerTest : public ::testing::Test {
 protected:
  // A facade's module holder, as far as the initializer can tell.
  std::shared_ptr<ModuleInitializer> initializer(ModuleClass moduleClass) {
    auto operation = std::make_shared<ModuleInitializer>(config, std::move(moduleClass),
                                                         [this](std::shared_ptr<VORNModule> m) {
                                                           ++stores;
                                                           held = std::move(m);
                                                         });
    operation->setCompletionBlock([this] { done.countDown(); });
    return operation;
  }

  // A class whose factory waits at `gate` and then makes a TrackedModule.
  ModuleClass gatedClass() {
    return {"VORNSdkPushModule", "8.1.0", [this](const auto&, const auto&) {
              entered.countDown();
              gate.wait();
              return std::make_shared<TrackedModule>(destroyed);
            }};
  }

  Platform platform = testing::installEphemeralPlatform();
  testing::ScopedTimeScale fast{0.01};  // the 15 s time-out becomes 150 ms
  std::shared_ptr<testing::CaptureLogSink> sink = testing::CaptureLogSink::install();
  std::shared_ptr<const ModuleConfig> config =
      std::make_shared<testing::FakeModuleConfig>(ModuleName::push, "APP1");
  std::atomic<int> stores{0};
  std::shared_ptr<VORNModule> held;
  Latch done, entered, gate, destroyed;
};

TEST_F(ModuleInitializerTest, StartsTheModuleOnAFreshQueueAndStoresIt) {
  FakeModule::registerClass(ModuleName::push, {.version = "8.1.0"});
  auto operation = initializer(*ModuleRegistry::lookup("VORNSdkPushModule"));
  EXPECT_TRUE(operation->isAsynchronous());
  EXPECT_FALSE(operation->isConcurrent());
  EXPECT_EQ(operation->timeout(), 15.0);

  ModuleInitializer::addToFreshQueue(operation);
  ASSERT_TRUE(done.wait());

  ASSERT_EQ(FakeModule::started(ModuleName::push).size(), 1u);
  const auto module = FakeModule::started(ModuleName::push)[0];
  EXPECT_EQ(stores, 1);
  EXPECT_EQ(held, module);
  EXPECT_EQ(operation->module(), module);
  EXPECT_EQ(module->config(), config);
  EXPECT_EQ(module->components()->storageManager()->moduleAppId(), "APP1");
  EXPECT_FALSE(operation->operationTimedOut());
}

TEST_F(ModuleInitializerTest, AFactoryWithoutModuleStoresNothing) {
  FakeModule::registerClass(ModuleName::push, {.startsModule = false});
  auto operation = initializer(*ModuleRegistry::lookup("VORNSdkPushModule"));
  ModuleInitializer::addToFreshQueue(operation);
  ASSERT_TRUE(done.wait());
  EXPECT_EQ(stores, 0);
  EXPECT_EQ(operation->module(), nullptr);
  EXPECT_FALSE(operation->operationTimedOut());
}

TEST_F(ModuleInitializerTest, AModuleArrivingAfterTheTimeOutIsDropped) {
  auto operation = initializer(gatedClass());
  ModuleInitializer::addToFreshQueue(operation);
  ASSERT_TRUE(done.wait());  // finished by the time-out while the factory still waits
  EXPECT_TRUE(operation->operationTimedOut());
  EXPECT_TRUE(operation->isCancelled());
  EXPECT_TRUE(entered.wait());

  gate.countDown();
  ASSERT_TRUE(destroyed.wait());
  EXPECT_EQ(stores, 0);
  EXPECT_EQ(operation->module(), nullptr);
}

TEST_F(ModuleInitializerTest, AModuleArrivingAfterCancellationIsDropped) {
  auto operation = initializer(gatedClass());
  ModuleInitializer::addToFreshQueue(operation);
  // Held at the gate, the operation is still counted when the line reads the count; a module
  // that answers at once may already be gone and read 0.
  EXPECT_TRUE(
      sink->contains("New operation (1 of 100) added to the `vornsdk.module.push.tasks` "
                     "queue."));
  ASSERT_TRUE(entered.wait());
  operation->cancel();
  gate.countDown();
  ASSERT_TRUE(done.wait());
  ASSERT_TRUE(destroyed.wait());
  EXPECT_EQ(stores, 0);
  EXPECT_FALSE(operation->operationTimedOut());
}

TEST_F(ModuleInitializerTest, CancelledBeforeItRunsItNeverCallsTheFactory) {
  auto operation = initializer(gatedClass());
  operation->cancel();
  operation->start();
  EXPECT_TRUE(operation->isFinished());
  ASSERT_TRUE(done.wait());
  EXPECT_FALSE(entered.wait(std::chrono::milliseconds(0)));
}

TEST_F(ModuleInitializerTest, AThrowingFactoryGivesNoModule) {
  auto operation = initializer(
      {"VORNSdkPushModule", "8.1.0", [](const auto&, const auto&) -> std::shared_ptr<VORNModule> {
         throw std::runtime_error("no");
       }});
  operation->start();
  EXPECT_TRUE(operation->isFinished());
  ASSERT_TRUE(done.wait());
  EXPECT_EQ(stores, 0);
  EXPECT_TRUE(
      sink->contains("Module `VORNSdkPushModule` threw while initializing. No module was kept."));
}

TEST_F(ModuleInitializerTest, AFreshQueueCancelsWhatTheOldOneHeld) {
  auto blocked = std::make_shared<BlockOperation>([this] { gate.wait(); });
  auto waiting = std::make_shared<BlockOperation>([] {});
  ModuleQueues::addOperation(blocked, ModuleName::push);
  // Once `blocked` runs, `waiting` cannot start before the cancellation reaches it.
  ASSERT_TRUE(testing::waitUntil([&] { return blocked->isExecuting(); }));
  ModuleQueues::addOperation(waiting, ModuleName::push);
  const auto oldQueue = ModuleQueues::queue(ModuleName::push);

  FakeModule::registerClass(ModuleName::push);
  ModuleInitializer::addToFreshQueue(initializer(*ModuleRegistry::lookup("VORNSdkPushModule")));

  EXPECT_TRUE(sink->contains("Cancelling all operations in the vornsdk.module.push.tasks queue."));
  EXPECT_TRUE(blocked->isCancelled());
  EXPECT_TRUE(waiting->isCancelled());
  EXPECT_NE(ModuleQueues::queue(ModuleName::push), oldQueue);
  ASSERT_TRUE(done.wait());  // the new queue does not wait for the old one's work
  EXPECT_EQ(stores, 1);
  gate.countDown();
  EXPECT_TRUE(testing::waitUntil([&] { return blocked->isFinished(); }));
}

}  // namespace
}  // namespace vorn
