// CdpProfile: what the module knows about the user - the consent, the profile id and the
// profile attributes - kept in memory and in the module's secure preferences, so that a
// restart finds them again.
//
// Identity events: a profile id replaces the stored one; profile attributes are merged into
// the stored ones, and an attribute whose value is "" is removed (the app clears attributes by
// setting them to ""); general attributes are merged the same way, each value stored as its
// text (JSON for what is not a string). secrets() lists the profile id and every attribute
// value, for the module logger's redaction list.
//
// Stored entries: "consent" (the raw value), "profileId", "profileAttributes" (a JSON object
// of strings).
//
// Thread safety: every call may come from any thread; a mutex keeps memory and preferences
// in step.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "vorn/events/IdentityEvent.hpp"
#include "vorn/identity/Consent.hpp"
#include "vorn/storage/prefs/SecurePrefs.hpp"

namespace cdp {

class CdpProfile {
 public:
  /// Reads what `prefs` holds; null prefs keep everything in memory only.
  explicit CdpProfile(std::shared_ptr<vorn::SecurePrefs> prefs);

  vorn::Consent consent() const;
  void setConsent(vorn::Consent consent);

  void apply(const vorn::IdentityEvent& event);

  std::optional<std::string> profileId() const;
  std::map<std::string, std::string> attributes() const;
  std::vector<std::string> secrets() const;

 private:
  void merge(const std::map<std::string, std::string>& changes);  // requires mutex_
  void storeAttributes();                                         // requires mutex_

  const std::shared_ptr<vorn::SecurePrefs> prefs_;
  mutable std::mutex mutex_;
  vorn::Consent consent_ = vorn::Consent::none;    // guarded by mutex_
  std::optional<std::string> profileId_;           // guarded by mutex_
  std::map<std::string, std::string> attributes_;  // guarded by mutex_
};

}  // namespace cdp
