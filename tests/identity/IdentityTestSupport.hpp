// Helpers for the identity tests: module statuses and identity texts set directly (read by
// both the identity and the bus), a subscriber that records what reaches it, and a fixture
// that captures the log.
#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "vorn/events/IdentityEvent.hpp"
#include "vorn/identity/IdentityModuleAccess.hpp"
#include "vorn/messaging/EventBus.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn::identitytest {

class FakeModules final : public IdentityModuleAccess {
 public:
  void set(ModuleName module, ModuleStatus status, std::optional<std::string> identity = {}) {
    std::lock_guard lock(mutex_);
    statuses_[module] = status;
    identities_[module] = std::move(identity);
  }
  ModuleStatus status(ModuleName module) const override {
    std::lock_guard lock(mutex_);
    return statuses_.contains(module) ? statuses_.at(module) : ModuleStatus::inactive;
  }
  std::optional<std::string> identity(ModuleName module) const override {
    std::lock_guard lock(mutex_);
    return identities_.contains(module) ? identities_.at(module) : std::nullopt;
  }

 private:
  mutable std::mutex mutex_;
  std::map<ModuleName, ModuleStatus> statuses_;                  // guarded by mutex_
  std::map<ModuleName, std::optional<std::string>> identities_;  // guarded by mutex_
};

class RecordingSubscriber final : public Subscriber {
 public:
  explicit RecordingSubscriber(ModuleName name) : name_(name) {}
  ModuleName name() const override { return name_; }
  void receive(std::shared_ptr<const Message> message) override {
    std::lock_guard lock(mutex_);
    events_.push_back(std::dynamic_pointer_cast<const IdentityEvent>(message->fromEvent()));
  }
  std::vector<std::shared_ptr<const IdentityEvent>> events() const {
    std::lock_guard lock(mutex_);
    return events_;
  }

 private:
  const ModuleName name_;
  mutable std::mutex mutex_;
  std::vector<std::shared_ptr<const IdentityEvent>> events_;  // guarded by mutex_
};

inline std::string summary(const IdentityEvent& event) {
  if (event.profileId())
    return "id " + *event.profileId();
  std::string text = "attrs ";
  for (const auto& [key, value] : event.profileAttributes().value_or(StringDictionary{}))
    text += key + "=" + value + ";";
  return text;
}

class IdentityTest : public ::testing::Test {
 protected:
  IdentityTest() {
    EventBus::setStatusSource([m = modules](ModuleName module) { return m->status(module); });
  }
  ~IdentityTest() override {
    EventBus::setStatusSource(nullptr);
    IdentityModuleAccess::install(nullptr);
  }

  // Attaches the access, as start-up does once the facades exist.
  void attach(ModuleName module, ModuleStatus status) {
    IdentityModuleAccess::install(modules);
    modules->set(module, status);
  }
  std::shared_ptr<RecordingSubscriber> subscribe(ModuleName module) {
    attach(module, ModuleStatus::operational);
    auto subscriber = std::make_shared<RecordingSubscriber>(module);
    EventBus::subscribe(subscriber);
    subscribers_.push_back(subscriber);
    return subscriber;
  }
  // What reached the module, one summary per event ("id u1", "attrs a=1;b=;"), sorted:
  // deliveries to one module may overlap, so their order is not theirs to keep. Publishing
  // queues the delivery before it returns, so waiting for the queue is enough.
  std::vector<std::string> received(ModuleName module) {
    const auto subscription = EventBus::subscriptions().at(module);
    subscription->queue().waitUntilAllOperationsAreFinished();
    std::vector<std::string> summaries;
    for (const auto& event :
         std::static_pointer_cast<RecordingSubscriber>(subscription->subscriber())->events())
      summaries.push_back(summary(*event));
    std::sort(summaries.begin(), summaries.end());
    return summaries;
  }
  std::vector<std::string> identityLines() const {
    std::vector<std::string> lines;
    for (const auto& line : sink->lines()) {
      if (line.category == LoggerCategory::identity)
        lines.push_back(line.message);
    }
    return lines;
  }

  std::shared_ptr<testing::CaptureLogSink> sink = testing::CaptureLogSink::install();
  std::shared_ptr<FakeModules> modules = std::make_shared<FakeModules>();

 private:
  std::vector<std::shared_ptr<RecordingSubscriber>> subscribers_;
};

using Lines = std::vector<std::string>;

}  // namespace vorn::identitytest
