// CdpModule: the running customer-data module (see cdp/CdpModule.hpp for what it does).
//
// Threads: receive() runs on the bus's delivery threads and persists an event before it
// returns; app-facing calls run on the app's threads; uploads and the flush timer run on the
// module's own serial queue. `mutex_` guards the in-memory queue, the file, the counters, the
// timer and the location; it is never held across a network call, and it is taken before
// the profile's own lock, never after it. Queued blocks hold the
// module weakly.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "BackgroundObserver.hpp"
#include "BatchUpload.hpp"
#include "CdpProfile.hpp"
#include "EventQueueFile.hpp"
#include "cdp/CdpModule.hpp"
#include "vorn/core/VORNModule.hpp"
#include "vorn/core/VORNSdkComponents.hpp"
#include "vorn/facades/CdpInterface.hpp"
#include "vorn/logging/ModuleLogger.hpp"
#include "vorn/messaging/Subscriber.hpp"
#include "vorn/runtime/DelayedWork.hpp"
#include "vorn/runtime/DispatchQueue.hpp"

namespace cdp {

class CdpModule final : public vorn::VORNModule,
                        public vorn::CdpInterface,
                        public vorn::Subscriber,
                        public std::enable_shared_from_this<CdpModule> {
 public:
  /// The registered factory: a started module, or null (with an error line) when the
  /// configuration is not a CdpModuleConfig or the queue file cannot be used.
  static std::shared_ptr<vorn::VORNModule> initModule(
      const std::shared_ptr<const vorn::ModuleConfig>& config,
      const std::shared_ptr<vorn::VORNSdkComponents>& components);

  CdpModule(std::shared_ptr<const CdpModuleConfig> config,
            std::shared_ptr<vorn::VORNSdkComponents> components,
            std::shared_ptr<vorn::ModuleLogger> logger);
  ~CdpModule() override;

  void tearDown() override;
  vorn::Dictionary stateProperties() const override;
  std::shared_ptr<vorn::Subscriber> asSubscriber() override;

  std::optional<vorn::ModuleIdentity> getIdentity() override;
  vorn::Consent getConsent() override;
  void setConsent(vorn::Consent consent) override;
  void setLocation(const std::optional<vorn::Coordinates>& coordinates,
                   std::int64_t expiresIn) override;

  vorn::ModuleName name() const override { return vorn::ModuleName::cdp; }
  void receive(std::shared_ptr<const vorn::Message> message) override;

 private:
  using SteadyTime = std::chrono::steady_clock::time_point;

  struct Location {
    vorn::Coordinates coordinates;
    SteadyTime expiresAt;
  };

  bool start();
  void applyIdentity(const vorn::IdentityEvent& event);
  void enqueue(const vorn::Message& message);
  void persist(QueuedEvent event);  // requires mutex_
  void onBackgrounded();

  void scheduleFlush();                    // requires mutex_
  void flush();                            // on queue_
  void onTimer(std::uint64_t generation);  // on queue_
  // Takes the next batch, or arms the timer and gives none.
  std::optional<std::vector<QueuedEvent>> nextBatch(std::optional<nlohmann::json>& location);
  // After an upload: true when the next batch may follow.
  bool settle(const std::vector<QueuedEvent>& batch, const UploadOutcome& outcome);
  void removeUploaded(const std::vector<QueuedEvent>& batch);  // requires mutex_
  std::optional<nlohmann::json> currentLocation() const;       // requires mutex_
  void armTimer(std::chrono::nanoseconds delay);               // requires mutex_
  void cancelTimer();                                          // requires mutex_
  bool rewriteFile();                                          // requires mutex_

  const std::shared_ptr<const CdpModuleConfig> config_;
  const std::shared_ptr<vorn::VORNSdkComponents> components_;
  const std::shared_ptr<vorn::ModuleLogger> logger_;
  CdpProfile profile_;
  EventQueueFile file_;
  std::shared_ptr<vorn::NetworkManager> network_;
  std::shared_ptr<BackgroundObserver> observer_;
  vorn::DispatchQueue queue_;

  std::mutex identityMutex_;  // orders identity updates with their redaction lists
  mutable std::mutex mutex_;
  std::deque<QueuedEvent> events_;          // guarded by mutex_
  std::int64_t uploaded_ = 0;               // guarded by mutex_
  std::int64_t dropped_ = 0;                // guarded by mutex_
  bool tornDown_ = false;                   // guarded by mutex_
  bool flushPending_ = false;               // guarded by mutex_
  std::optional<SteadyTime> timerDue_;      // guarded by mutex_
  std::uint64_t timerGeneration_ = 0;       // guarded by mutex_
  vorn::DelayedWork timer_;                 // guarded by mutex_
  std::optional<SteadyTime> blockedUntil_;  // guarded by mutex_
  std::optional<Location> location_;        // guarded by mutex_
};

}  // namespace cdp
