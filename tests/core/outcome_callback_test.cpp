// The core's own outcome callback, seen through the event bus it settles.
#include <gtest/gtest.h>

#include <array>
#include <mutex>
#include <set>
#include <string>

#include "vorn/core/ConfigBuilder.hpp"
#include "vorn/events/SystemEvent.hpp"
#include "vorn/messaging/EventBus.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/FakeModule.hpp"
#include "vorn/testing/FakeModuleConfig.hpp"

namespace vorn {
namespace {

class OutcomeCallbackTest : public ::testing::Test {
 protected:
  OutcomeCallbackTest() {
    EventBus::setStatusSource([this](ModuleName name) {
      std::lock_guard guard(mutex_);
      return statuses_[static_cast<std::size_t>(name)];
    });
  }
  ~OutcomeCallbackTest() override { EventBus::setStatusSource(nullptr); }

  void setStatus(ModuleName name, ModuleStatus status) {
    std::lock_guard guard(mutex_);
    statuses_[static_cast<std::size_t>(name)] = status;
  }

  // Two events buffered for a module that is still initializing.
  void bufferTwoEvents(ModuleName name) {
    setStatus(name, ModuleStatus::initializing);
    EventBus::publish(MessageProducer::sdk, std::make_shared<SystemEvent>("first"));
    EventBus::publish(MessageProducer::sdk, std::make_shared<SystemEvent>("second"));
    ASSERT_EQ(EventBus::buffers().at(name).size(), 2u);
  }

  static std::vector<CompletionCallback> callbacks(ModuleName name, CompletionCallback app) {
    auto config = std::make_shared<testing::FakeModuleConfig>(name);
    ConfigBuilder builder;
    if (name == ModuleName::push)
      builder.setPush(config, std::move(app));
    else
      builder.setCdp(config, std::move(app));
    return builder.build().completions(name);
  }

  std::shared_ptr<testing::CaptureLogSink> sink = testing::CaptureLogSink::install();

 private:
  std::mutex mutex_;
  std::array<ModuleStatus, 2> statuses_{ModuleStatus::inactive, ModuleStatus::inactive};
};

TEST_F(OutcomeCallbackTest, SuccessDeliversTheBufferedMessages) {
  bufferTwoEvents(ModuleName::push);
  setStatus(ModuleName::push, ModuleStatus::operational);
  auto module = std::make_shared<testing::FakeModule>(
      ModuleName::push, testing::FakeModuleSettings{}, nullptr, nullptr);
  EventBus::subscribe(module->asSubscriber());

  callbacks(ModuleName::push, nullptr).front()(OperationResult::success);

  // Each buffered message is its own delivery, and deliveries to one module may overlap:
  // what counts is that both arrive, not their order.
  ASSERT_TRUE(module->waitForMessages(2));
  std::multiset<std::string> names;
  for (const auto& message : module->received())
    names.insert(message->name());
  EXPECT_EQ(names, (std::multiset<std::string>{"first", "second"}));
}

TEST_F(OutcomeCallbackTest, AnyOtherOutcomeDropsTheBufferedMessagesFirst) {
  for (const auto result :
       {OperationResult::error, OperationResult::timeout, OperationResult::cancelled}) {
    bufferTwoEvents(ModuleName::cdp);
    sink->clear();
    bool appHeard = false;
    const auto list = callbacks(ModuleName::cdp, [&](OperationResult) { appHeard = true; });

    list.front()(result);

    EXPECT_FALSE(appHeard) << "the core's callback comes first";
    EXPECT_FALSE(EventBus::buffers().contains(ModuleName::cdp));
    ASSERT_EQ(sink->messages(), (std::vector<std::string>{
                                    "Clearing message buffer for `Cdp.CdpModule`. Module "
                                    "failed to subscribe.",
                                    "Clearing message buffer for `cdp`. Module failed to "
                                    "subscribe.",
                                }));
    EXPECT_EQ(sink->lines()[0].level, LogLevel::debug);
    EXPECT_EQ(sink->lines()[0].category, LoggerCategory::eventBus);
  }
}

}  // namespace
}  // namespace vorn
