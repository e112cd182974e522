// Helpers shared by the event bus tests: module statuses set directly, a subscriber that
// records what it receives and can hold deliveries back, and a cheap one for volume runs.
#pragma once

#include <array>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "vorn/events/SystemEvent.hpp"
#include "vorn/messaging/EventBus.hpp"
#include "vorn/messaging/Subscriber.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn::bustest {

// Installs itself as the bus's status source; every module starts `inactive`.
class Statuses {
 public:
  Statuses() {
    EventBus::setStatusSource([this](ModuleName module) {
      std::lock_guard lock(mutex_);
      return statuses_[static_cast<std::size_t>(module)];
    });
  }
  ~Statuses() { EventBus::setStatusSource(nullptr); }

  void set(ModuleName module, ModuleStatus status) {
    std::lock_guard lock(mutex_);
    statuses_[static_cast<std::size_t>(module)] = status;
  }

 private:
  std::mutex mutex_;
  std::array<ModuleStatus, 2> statuses_{ModuleStatus::inactive, ModuleStatus::inactive};
};

class RecordingSubscriber : public Subscriber {
 public:
  explicit RecordingSubscriber(ModuleName name) : name_(name) {}

  ModuleName name() const override { return name_; }

  void receive(std::shared_ptr<const Message> message) override {
    std::unique_lock lock(mutex_);
    received_.push_back(message);
    threads_.push_back(std::this_thread::get_id());
    changed_.notify_all();
    changed_.wait(lock, [this] { return !held_; });
  }

  /// While held, every receive() blocks after recording its message.
  void hold() {
    std::lock_guard lock(mutex_);
    held_ = true;
  }
  void release() {
    std::lock_guard lock(mutex_);
    held_ = false;
    changed_.notify_all();
  }

  std::vector<std::shared_ptr<const Message>> received() const {
    std::lock_guard lock(mutex_);
    return received_;
  }
  std::vector<std::string> receivedIds() const {
    std::lock_guard lock(mutex_);
    std::vector<std::string> ids;
    for (const auto& message : received_)
      ids.push_back(message->id());
    return ids;
  }
  std::vector<std::thread::id> threads() const {
    std::lock_guard lock(mutex_);
    return threads_;
  }
  std::size_t count() const {
    std::lock_guard lock(mutex_);
    return received_.size();
  }

 private:
  const ModuleName name_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  bool held_ = false;                                     // guarded by mutex_
  std::vector<std::shared_ptr<const Message>> received_;  // guarded by mutex_
  std::vector<std::thread::id> threads_;                  // guarded by mutex_
};

// Records only the ids it receives: cheap enough that tens of thousands of deliveries are
// dominated by the bus, not by the subscriber.
class IdRecordingSubscriber : public Subscriber {
 public:
  explicit IdRecordingSubscriber(ModuleName name) : name_(name) {}

  ModuleName name() const override { return name_; }

  void receive(std::shared_ptr<const Message> message) override {
    std::lock_guard lock(mutex_);
    ids_.push_back(message->id());
  }

  std::vector<std::string> receivedIds() const {
    std::lock_guard lock(mutex_);
    return ids_;
  }

 private:
  const ModuleName name_;
  mutable std::mutex mutex_;
  std::vector<std::string> ids_;  // guarded by mutex_
};

inline std::shared_ptr<const Event> event(const std::string& name) {
  return std::make_shared<SystemEvent>(name);
}

// Every bus test starts with all modules inactive and the log captured.
class EventBusTest : public ::testing::Test {
 protected:
  std::shared_ptr<RecordingSubscriber> subscribeOperational(ModuleName module) {
    statuses.set(module, ModuleStatus::operational);
    auto subscriber = std::make_shared<RecordingSubscriber>(module);
    EventBus::subscribe(subscriber);
    return subscriber;
  }

  std::shared_ptr<testing::CaptureLogSink> sink = testing::CaptureLogSink::install();
  Statuses statuses;
};

}  // namespace vorn::bustest
