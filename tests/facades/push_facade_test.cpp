#include "vorn/facades/PUSH.hpp"

#include <gtest/gtest.h>

#include "facades/PushOperations.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/FakePushModule.hpp"

namespace vorn {
namespace {

using facades_test::pushOperations;
using testing::FakePushModule;

std::string readinessLine(std::string_view status) {
  return "Module push is not initialized. You need to initialize before using. Current status: " +
         std::string(status);
}

class PushFacade : public ::testing::Test {
 protected:
  // Every operation answers its default after the readiness line and its own line, both
  // debug lines of category `interface`.
  void expectEveryOperationNotReady(std::string_view status) {
    for (const auto& operation : pushOperations()) {
      sink->clear();
      EXPECT_EQ(operation.call(*push), operation.fallback) << operation.name;
      const auto lines = sink->lines();
      ASSERT_EQ(lines.size(), 2u) << operation.name;
      EXPECT_EQ(lines[0].message, readinessLine(status));
      EXPECT_EQ(lines[1].message, operation.notReadyLine);
      for (const auto& line : lines) {
        EXPECT_EQ(line.level, LogLevel::debug);
        EXPECT_EQ(line.category, LoggerCategory::interface);
      }
    }
  }

  // Each operation reaches the module once, with the arguments the app gave, and answers
  // exactly what the module answers to the same call.
  void expectEveryOperationForwarded() {
    for (const auto& operation : pushOperations()) {
      const std::string answer = operation.call(*push);
      const std::string direct = operation.call(*module);
      EXPECT_EQ(answer, direct) << operation.name;
      const auto calls = module->calls();
      ASSERT_GE(calls.size(), 2u);
      EXPECT_EQ(calls[calls.size() - 2], calls.back()) << operation.name;
      EXPECT_EQ(calls.back().operation, operation.name);
    }
    EXPECT_EQ(module->calls().size(), 2 * pushOperations().size());
  }

  void makeOperational() {
    push->attachModule(module);
    push->setStatus(ModuleStatus::operational);
  }

  std::shared_ptr<testing::CaptureLogSink> sink = testing::CaptureLogSink::install();
  std::shared_ptr<PUSH> push = PUSH::shared();
  std::shared_ptr<FakePushModule> module = FakePushModule::create();
};

TEST_F(PushFacade, IsThePushFacadeForVersionsFrom810To899) {
  EXPECT_EQ(push->name(), ModuleName::push);
  EXPECT_EQ(push->compatibility()->min(), "8.1.0");
  EXPECT_EQ(push->compatibility()->max(), "8.9.9");
  EXPECT_EQ(PUSH::shared(), push);
  EXPECT_TRUE(push->initializationLock().try_lock());
  push->initializationLock().unlock();
}

TEST_F(PushFacade, BeforeStartUpEveryOperationLogsItsLineAndGivesItsDefault) {
  EXPECT_EQ(push->getStatus(), ModuleStatus::inactive);
  EXPECT_EQ(push->module(), nullptr);
  expectEveryOperationNotReady("inactive");
  ASSERT_EQ(pushOperations().size(), 69u);
}

TEST_F(PushFacade, AttachedButNotOperationalNeverCallsTheModule) {
  push->attachModule(module);
  for (const auto status : {ModuleStatus::initializing, ModuleStatus::failed,
                            ModuleStatus::cancelled, ModuleStatus::disabled}) {
    push->setStatus(status);
    EXPECT_EQ(push->getStatus(), status);
    expectEveryOperationNotReady(rawValue(status));
    sink->clear();
    EXPECT_EQ(push->getIdentity(), std::nullopt);
    EXPECT_EQ(sink->messages(), std::vector{readinessLine(rawValue(status))});
  }
  EXPECT_TRUE(module->calls().empty());
}

TEST_F(PushFacade, OperationalForwardsEveryOperationAndItsAnswerUnchanged) {
  makeOperational();
  expectEveryOperationForwarded();
  EXPECT_EQ(push->getIdentity(), FakePushModule::identity());
  EXPECT_TRUE(sink->lines().empty());
}

TEST_F(PushFacade, OperationalPassesAbsentAnswersThrough) {
  makeOperational();
  module->setAnswersAbsent(true);
  expectEveryOperationForwarded();
  EXPECT_EQ(push->getIdentity(), std::nullopt);
  EXPECT_EQ(push->contactKey(), std::nullopt);
  EXPECT_NE(push->notificationUserInfo(), Dictionary{});  // not optional: never absent
  EXPECT_TRUE(sink->lines().empty());
}

TEST_F(PushFacade, OperationalWithoutAModuleOrAPushModuleIsNotReady) {
  push->setStatus(ModuleStatus::operational);
  EXPECT_FALSE(push->addTag("t"));
  push->attachModule(std::make_shared<testing::FakeModule>(
      ModuleName::push, testing::FakeModuleSettings{}, nullptr, nullptr));
  EXPECT_EQ(push->getAllMessagesCount(), 0u);
  makeOperational();
  push->clearModule();
  EXPECT_EQ(push->tags(), std::nullopt);
  EXPECT_EQ(sink->messages(),
            (std::vector<std::string>{readinessLine("operational"), "The `Tag` not added.",
                                      readinessLine("operational"),
                                      "The `All Messages Count` not fetched.",
                                      readinessLine("operational"), "The `Tags` not fetched."}));
  EXPECT_TRUE(module->calls().empty());
}

TEST_F(PushFacade, RefreshTellsItsHandlerOnlyWhenForwarded) {
  int told = 0;
  const auto handler = [&](BackgroundFetchResult result) {
    EXPECT_EQ(result, BackgroundFetchResult::newData);
    ++told;
  };
  EXPECT_FALSE(push->refresh(handler));
  EXPECT_EQ(told, 0);
  makeOperational();
  EXPECT_TRUE(push->refresh(handler));
  EXPECT_EQ(told, 1);
}

TEST_F(PushFacade, AttachingReplacesAndClearingDetachesWithoutTearingDown) {
  auto other = FakePushModule::create();
  push->attachModule(module);
  push->attachModule(other);
  EXPECT_EQ(push->module(), other);
  push->clearModule();
  EXPECT_EQ(push->module(), nullptr);
  EXPECT_EQ(module->tearDownCount() + other->tearDownCount(), 0);
}

}  // namespace
}  // namespace vorn
