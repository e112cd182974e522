// NetworkManager: executes WrappedRequests for the SDK and a feature module, and protects the
// backend from them.
//
// Per request name it refuses a second call while one is in flight, refuses calls while a
// deadline stored in `networkPreferences` lies ahead, attaches the authenticator's header,
// refreshes it once after a 401 and repeats the call once with the new header. Deadlines:
// - "retry_device_" + name: after a 2xx reply to a request with rateLimit > 0, the reply's end
//   time plus the whole seconds of rateLimit (0.5 s gives the end time itself);
// - "retry_server_" + name: after any reply whose "Retry-After" field (any case) is decimal
//   digits only and greater than 0, its end time plus that many seconds, at most 86400. A
//   sign, spaces, an HTTP date or a number too large for 64 bits is ignored.
// Values are decimal milliseconds since 1970; missing or unreadable counts as 0. A check that
// finds both of a name's deadlines in the past removes the stored keys. Deadlines live in
// secure preferences and so survive a restart; the in-flight table is in memory only.
//
// Refusals send nothing and come back as a CompletedCall without HTTP response whose error is
// a refusal (NetworkManagerError): alreadyInFlight, blockedByRetryAfter, or noTransport when
// the manager has no transport. A name is claimed for the flight in the same step as the
// in-flight check, so of two simultaneous calls exactly one proceeds.
//
// Authorisation: with an authenticator, the cached header (or a refreshed one when nothing is
// cached) is set on the request. When the exchange that produced the final reply carried no
// header from the authenticator, the manager logs "Fetching auth token header failed." and
// calls deleteCachedToken() once the deadlines are applied and the name left the in-flight
// table; the call itself is not repeated (the reply, usually a 401, goes to the caller).
//
// executeAsync() refuses a blocked or in-flight name at once, exactly like executeSync(), and
// hands that refusal to the completion handler: deferring the call would hide the server's
// answer from the caller, who is better placed to decide when to try again. Its work runs on
// `dispatchQueue` holding the manager weakly; a manager gone by then does nothing and never
// calls the handler.
//
// Every line is logged at debug level in category network.
//
// Ownership: made by create() and held by std::shared_ptr; holds its preferences,
// authenticator, transport and clock. Thread safety: every call may come from any thread at
// any time; executeSync() blocks its caller until the exchange (and a retry) has ended.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "vorn/base/Export.hpp"
#include "vorn/network/Authenticator.hpp"
#include "vorn/network/WrappedRequest.hpp"
#include "vorn/network/WrappedResponse.hpp"
#include "vorn/platform/Clock.hpp"
#include "vorn/platform/HttpTransport.hpp"
#include "vorn/runtime/Atomic.hpp"
#include "vorn/runtime/DispatchQueue.hpp"
#include "vorn/storage/prefs/SecurePrefs.hpp"

namespace vorn {

class VORN_API NetworkManager : public std::enable_shared_from_this<NetworkManager> {
 public:
  using CompletionHandler = std::function<void(CompletedCall)>;

  /// The label of every manager's dispatchQueue.
  static constexpr std::string_view kQueueLabel = "com.quorvantis.tessarine_NetworkManager";

  /// init(networkPreferences:authenticator:) with the current Platform's transport and clock.
  /// Null preferences store no deadline and block nothing; a null authenticator adds no header.
  static std::shared_ptr<NetworkManager> create(std::shared_ptr<SecurePrefs> networkPreferences,
                                                std::shared_ptr<Authenticator> authenticator);
  /// The same with the given transport and clock (a null clock means Clock::system()).
  static std::shared_ptr<NetworkManager> create(std::shared_ptr<SecurePrefs> networkPreferences,
                                                std::shared_ptr<Authenticator> authenticator,
                                                std::shared_ptr<HttpTransport> transport,
                                                std::shared_ptr<Clock> clock);

  NetworkManager(const NetworkManager&) = delete;
  NetworkManager& operator=(const NetworkManager&) = delete;
  ~NetworkManager();

  CompletedCall executeSync(WrappedRequest request);
  void executeAsync(WrappedRequest request, CompletionHandler completionHandler);
  /// True (with a line giving the remaining whole seconds) while a deadline of `name` lies
  /// ahead; otherwise removes the name's deadlines and answers false.
  bool isBlockedByRetryAfter(std::string_view name);

  const std::shared_ptr<SecurePrefs>& networkPreferences() const noexcept { return prefs_; }
  const std::shared_ptr<Authenticator>& authenticator() const noexcept { return authenticator_; }
  DispatchQueue& dispatchQueue() noexcept { return dispatchQueue_; }

 private:
  struct Passkey {};

 public:
  NetworkManager(Passkey, std::shared_ptr<SecurePrefs> networkPreferences,
                 std::shared_ptr<Authenticator> authenticator,
                 std::shared_ptr<HttpTransport> transport, std::shared_ptr<Clock> clock);

 private:
  /// The steps both forms share; `form` names the form in the start and end lines.
  CompletedCall execute(WrappedRequest request, std::string_view form);
  CompletedCall refuse(WrappedRequest request, NetworkManagerError error);
  WrappedResponse exchange(const URLRequest& request);
  /// Obtains the header under the authenticator's lock and sets it; false when none came.
  bool authorize(WrappedRequest& request, bool force);

  const std::shared_ptr<SecurePrefs> prefs_;
  const std::shared_ptr<Authenticator> authenticator_;
  const std::shared_ptr<HttpTransport> transport_;
  const std::shared_ptr<Clock> clock_;
  DispatchQueue dispatchQueue_{std::string(kQueueLabel)};
  Atomic<std::map<std::string, bool, std::less<>>> requestsInFlight_;
};

}  // namespace vorn
