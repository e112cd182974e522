// Authenticator: where the network manager gets the authorisation header of a module's
// requests. Feature modules implement it.
//
// The manager takes lock() around every header fetch (a cached header, or a refresh when
// there is none or when a 401 forces one), so parallel requests never refresh a token twice
// at the same moment. The lock is not recursive: refreshAuthTokenHeader() must not send its
// own request through a manager that uses this same authenticator.
// deleteCachedToken() is called without the lock and must be safe to call from any thread.
//
// Ownership: held by std::shared_ptr by the module and by its network managers.
#pragma once

#include <mutex>
#include <optional>

#include "vorn/base/Export.hpp"
#include "vorn/network/AuthHeader.hpp"

namespace vorn {

class VORN_API Authenticator {
 public:
  Authenticator() = default;
  virtual ~Authenticator();

  Authenticator(const Authenticator&) = delete;
  Authenticator& operator=(const Authenticator&) = delete;

  /// The lock that serialises token work; implementations may take it for their own.
  std::mutex& lock() noexcept { return lock_; }

  /// The cached header, or nothing.
  virtual std::optional<AuthHeader> getCachedTokenHeader() = 0;
  /// Obtains a new token and returns its header, or nothing on failure.
  virtual std::optional<AuthHeader> refreshAuthTokenHeader() = 0;
  /// Forgets the cached token.
  virtual void deleteCachedToken() = 0;

 private:
  std::mutex lock_;
};

}  // namespace vorn
