// PushAuthenticator: the bearer token of the push module's requests.
//
// The token comes from POST endpoint + "/v1/token" with the registration id, sent through a
// network manager of its own that has no authenticator (the token request must not wait for
// a token). It is cached in memory and in the module's secure preferences under
// "accessToken", registered with the module's log as a secret, and forgotten by
// deleteCachedToken(). The network manager calls refreshAuthTokenHeader() under lock() when
// it has no cached header or after a 401.
//
// Ownership: held by std::shared_ptr by the module and its network manager. Thread safety:
// every member may be called from any thread; the cached token has a mutex of its own, since
// deleteCachedToken() comes without lock().
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "PushLog.hpp"
#include "vorn/network/Authenticator.hpp"
#include "vorn/network/NetworkManager.hpp"
#include "vorn/storage/prefs/SecurePrefs.hpp"
#include "vorn/storage/prefs/StorageManager.hpp"

namespace push {

class PushAuthenticator final : public vorn::Authenticator {
 public:
  PushAuthenticator(std::string endpoint, std::shared_ptr<vorn::StorageManager> storage,
                    std::shared_ptr<vorn::SecurePrefs> prefs,
                    std::shared_ptr<vorn::NetworkManager> tokenNetwork,
                    std::shared_ptr<PushLog> log);

  std::optional<vorn::AuthHeader> getCachedTokenHeader() override;
  std::optional<vorn::AuthHeader> refreshAuthTokenHeader() override;
  void deleteCachedToken() override;

  /// The cached token, if any.
  std::optional<std::string> accessToken() const;
  /// Tokens fetched since this object was made.
  int refreshes() const noexcept { return refreshes_.load(); }

 private:
  std::optional<std::string> fetchToken();
  static vorn::AuthHeader header(const std::string& token);

  const std::string endpoint_;
  const std::shared_ptr<vorn::StorageManager> storage_;
  const std::shared_ptr<vorn::SecurePrefs> prefs_;
  const std::shared_ptr<vorn::NetworkManager> tokenNetwork_;
  const std::shared_ptr<PushLog> log_;
  mutable std::mutex mutex_;
  std::optional<std::string> token_;  // guarded by mutex_
  std::atomic<int> refreshes_{0};
};

}  // namespace push
