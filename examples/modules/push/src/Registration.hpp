// Registration: the device's registration data with its dirty and accepted marks, kept in the
// module's secure preferences so that both survive a restart.
//
// Every change that alters the data marks it dirty and is written at once. A send works on a
// snapshot carrying a version number; accepted(version) clears the dirty mark only when
// nothing changed since that snapshot, so a change made while a send was under way is sent
// next.
//
// Thread safety: every member may be called from any thread; one mutex guards the data and
// its writes, so the preferences always hold the latest state.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "RegistrationData.hpp"
#include "vorn/storage/prefs/SecurePrefs.hpp"

namespace push {

class Registration {
 public:
  struct Snapshot {
    RegistrationData data;
    std::uint64_t version = 0;
  };

  /// Restores what `prefs` holds (a null store keeps nothing).
  explicit Registration(std::shared_ptr<vorn::SecurePrefs> prefs);

  /// Applies `change`; when the data changed, marks it dirty, stores it and answers true.
  bool update(const std::function<void(RegistrationData&)>& change);
  /// Marks the registration dirty without changing it (its app version changed).
  void markDirty();
  /// The data to send, while dirty.
  std::optional<Snapshot> pending() const;
  /// The back end accepted the snapshot `version`.
  void accepted(std::uint64_t version);

  RegistrationData data() const;
  bool dirty() const;
  /// Accepted once, and clean since.
  bool registered() const;

 private:
  void changed();  // requires mutex_
  void store();    // requires mutex_

  const std::shared_ptr<vorn::SecurePrefs> prefs_;
  mutable std::mutex mutex_;
  RegistrationData data_;      // guarded by mutex_
  bool dirty_ = false;         // guarded by mutex_
  bool everAccepted_ = false;  // guarded by mutex_
  std::uint64_t version_ = 0;  // guarded by mutex_
};

}  // namespace push
