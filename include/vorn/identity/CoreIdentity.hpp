// CoreIdentity: the read side of the identity - one JSON document describing this device
// and every operational module's own identity.
//
// toJson() gives {"platform": ..., "registrationId": ..., "moduleIdentities": {...}}:
// "registrationId" only once one is set, "moduleIdentities" only when an operational module
// (as IdentityModuleAccess reports) returned identity text that parses as JSON; text that
// does not is left out with a log line. The module part is spliced in by hand, ", " between
// entries and ": " after each module name, so the modules' own text arrives unchanged.
//
// The registration id starts absent. The start-up code writes it once a module's
// StorageManager has obtained it; the identity never reads storage itself.
//
// Ownership: shared() is created on first use with the current Platform's system name and
// never destroyed. Thread safety: every member may be called from any thread; the
// registration id lives in an Atomic cell.
#pragma once

#include <optional>
#include <string>

#include "vorn/base/Export.hpp"
#include "vorn/runtime/Atomic.hpp"

namespace vorn {

class VORN_API CoreIdentity {
 public:
  explicit CoreIdentity(std::string platformName);

  CoreIdentity(const CoreIdentity&) = delete;
  CoreIdentity& operator=(const CoreIdentity&) = delete;

  /// The process's instance; its platform name is Platform::current()->app.systemName.
  static CoreIdentity& shared();

  const std::string& platformName() const noexcept { return platformName_; }

  std::optional<std::string> registrationId() const;
  /// For the start-up code, once the storage manager has the device's registration id.
  void setRegistrationId(std::optional<std::string> registrationId);

  /// The identity JSON described above; "{}" when the device part cannot be written.
  std::string toJson() const;

 private:
  const std::string platformName_;
  Atomic<std::optional<std::string>> registrationId_;
};

}  // namespace vorn
