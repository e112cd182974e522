// BehaviorManager: hands each behaviour of the app's life (foreground, background, version
// change, screen entry) to the observers that asked for its kind, and replays the sticky ones
// to observers that register later.
//
// Sticky behaviours. Each delivery walks the live observers, dropping released ones, and for
// each live observer, interested or not, applies the behaviour's sticky effect: a foreground
// or version change is appended to the sticky list, a background removes every foreground
// from it. So N live observers record a foreground N times and a later observer of kind 0 is
// replayed it N times, and with no live observer nothing is recorded. This is how modules have
// always seen it and is kept. addObserver() replays the sticky list in order; a sticky
// behaviour whose kind the observer does not want is reported with the warning
// "onBehavior() couldn't be triggered, because observer is missing a type or type is not
// supported." (category behavior).
//
// Configuration. setup() stores a configuration in a process-wide atomic cell; shared()
// reads it once, when it makes the manager, so only a setup() before the first shared() has
// an effect. Screen tracking is on unless enableScreenEntryTracking is explicitly false.
//
// Ownership: shared() is never destroyed and works on NotificationCenter::defaultCenter() and
// VORNKeyStoreManager::shared(); create() makes an independent manager (tests) on given
// ones. A manager owns its watcher and holds observers weakly.
//
// Thread safety: every call may come from any thread. A mutex guards the observations and
// the sticky list; it is never held while observer code runs (behaviorTypesToObserve() or
// onBehavior()): a delivery copies out the live observers and applies the sticky effect under
// the mutex, then asks and calls them outside it. An observer may therefore call
// addObserver() or removeObserver() from onBehavior(). An observer registered while a
// behaviour is delivered gets it exactly once, either from the delivery or from the replay.
// An observer removed on another thread while a delivery is under way may still receive that
// one behaviour.
#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/behavior/BehaviorDelegate.hpp"
#include "vorn/behavior/BehaviorManagerConfig.hpp"
#include "vorn/behavior/BehaviorObserver.hpp"
#include "vorn/behavior/BehaviorWatcher.hpp"
#include "vorn/behavior/NotificationCenter.hpp"
#include "vorn/storage/keystore/VORNKeyStoreManager.hpp"

namespace vorn {

class VORN_API BehaviorManager final : public BehaviorDelegate,
                                       public std::enable_shared_from_this<BehaviorManager> {
  struct PrivateTag {};

 public:
  /// The one manager, made on first use with the configuration stored by setup().
  static std::shared_ptr<BehaviorManager> shared();
  /// Stores the configuration shared() will use, if it has not been made yet.
  static void setup(BehaviorManagerConfig config);
  /// A manager of its own on `center`; a null `keyStore` means VORNKeyStoreManager::shared()
  /// at each version check. Its watcher is started before this returns.
  static std::shared_ptr<BehaviorManager> create(BehaviorManagerConfig config,
                                                 std::shared_ptr<NotificationCenter> center,
                                                 std::shared_ptr<VORNKeyStoreManager> keyStore);

  BehaviorManager(PrivateTag, bool enableScreenTracking, std::shared_ptr<NotificationCenter> center,
                  std::shared_ptr<VORNKeyStoreManager> keyStore);
  ~BehaviorManager() override;

  /// Registers `observer` (again: replaces its entry) and replays the sticky behaviours to it.
  /// A null observer is ignored.
  void addObserver(const std::shared_ptr<BehaviorObserver>& observer);
  /// Forgets the observer with this identity; an unknown one is ignored.
  void removeObserver(const BehaviorObserver* observer);

  /// The delivery described above.
  void deliver(const std::shared_ptr<const Behavior>& behavior) override;

  const std::shared_ptr<BehaviorWatcher>& behaviorWatcher() const noexcept {
    return behaviorWatcher_;
  }
  /// A copy of the sticky list, oldest first.
  std::vector<std::shared_ptr<const Behavior>> stickyBehaviors() const;
  /// How many observations are kept, released observers not yet dropped included.
  std::size_t observationCount() const;

 private:
  // The live observers, released ones dropped; records the sticky effect once for each.
  std::vector<std::shared_ptr<BehaviorObserver>> liveObserversRecording(
      const std::shared_ptr<const Behavior>& behavior);
  void applyStickyEffect(const std::shared_ptr<const Behavior>& behavior);  // requires mutex_

  const std::shared_ptr<BehaviorWatcher> behaviorWatcher_;
  mutable std::mutex mutex_;
  std::unordered_map<const BehaviorObserver*, Observation> observations_;  // guarded by mutex_
  std::vector<std::shared_ptr<const Behavior>> stickyBehaviors_;           // guarded by mutex_
};

}  // namespace vorn
