// Helpers for the identity tests: module statuses and identity texts set directly (read by
// both the identity and the bus), a subscriber that records what reaches it, and a fixture
// that captures the log.
#pragma once

#include <algorithm>
#include <array>
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

using Lines = std::vector<std::string>;

// Read on the test's own thread only: the identity and the bus ask on the caller's thread.
class FakeModules final : public IdentityModuleAccess {
 public:
  void set(ModuleName module, ModuleStatus status, std::optional<std::string> identity = {}) {
    modules_[rawIntValue(module)] = {status, std::move(identity)};
  }
  ModuleStatus status(ModuleName module) const override {
    return modules_[rawIntValue(module)].status;
  }
  std::optional<std::string> identity(ModuleName module) const override {
    return modules_[rawIntValue(module)].identity;
  }

 private:
  struct Module {
    ModuleStatus status = ModuleStatus::inactive;
    std::optional<std::string> identity;
  };
  std::array<Module, 2> modules_;
};

// Records each identity event as "id u1" or "attrs a=1;b=;".
class RecordingSubscriber final : public Subscriber {
 public:
  explicit RecordingSubscriber(ModuleName name) : name_(name) {}
  ModuleName name() const override { return name_; }
  void receive(std::shared_ptr<const Message> message) override {
    const auto& event = dynamic_cast<const IdentityEvent&>(*message->fromEvent());
    std::string text = event.profileId() ? "id " + *event.profileId() : "attrs ";
    for (const auto& [key, value] : event.profileAttributes().value_or(StringDictionary{}))
      text += key + "=" + value + ";";
    std::lock_guard lock(mutex_);
    received_.push_back(std::move(text));
  }
  Lines received() const {
    std::lock_guard lock(mutex_);
    return received_;
  }

 private:
  const ModuleName name_;
  mutable std::mutex mutex_;
  Lines received_;  // guarded by mutex_
};

class IdentityTest : public ::testing::Test {
 protected:
  IdentityTest() {
    EventBus::setStatusSource([m = modules](ModuleName module) { return m->status(module); });
  }
  ~IdentityTest() override { IdentityModuleAccess::install(nullptr); }

  // Attaches the access, as start-up does once the facades exist.
  void attach(ModuleName module, ModuleStatus status, std::optional<std::string> identity = {}) {
    IdentityModuleAccess::install(modules);
    modules->set(module, status, std::move(identity));
  }
  void subscribe(ModuleName module) {
    attach(module, ModuleStatus::operational);
    subscribers_.push_back(std::make_shared<RecordingSubscriber>(module));
    EventBus::subscribe(subscribers_.back());
  }
  // Sorted, as deliveries to one module may overlap. Publishing queues the delivery before
  // it returns, so waiting for the queue is enough.
  Lines received(ModuleName module) {
    const auto subscription = EventBus::subscriptions().at(module);
    subscription->queue().waitUntilAllOperationsAreFinished();
    Lines lines =
        std::static_pointer_cast<RecordingSubscriber>(subscription->subscriber())->received();
    std::sort(lines.begin(), lines.end());
    return lines;
  }
  Lines identityLines() const {
    Lines lines;
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

}  // namespace vorn::identitytest
