#include "vorn/network/NetworkManager.hpp"

#include <utility>

#include "network/HttpRequestFrom.hpp"
#include "network/RetryDeadlines.hpp"
#include "network/Saturating.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/platform/Platform.hpp"

namespace vorn {

namespace {

constexpr std::string_view kSynchronous = "synchronous";
constexpr std::string_view kAsynchronous = "asynchronous";

std::string callLine(std::string_view form, const std::string& name, std::string_view stage) {
  return "Executing " + std::string(form) + " network call (" + name + ") process " +
         std::string(stage) + ".";
}

using FlightTable = Atomic<std::map<std::string, bool, std::less<>>>;

// Holds a name in the in-flight table and gives it back on every way out, so that a throwing
// authenticator or transport cannot leave the name blocked for the rest of the process.
class FlightClaim {
 public:
  FlightClaim(FlightTable& table, std::string name) : table_(table), name_(std::move(name)) {
    table_.mutate([&](auto& flights) { claimed_ = flights.try_emplace(name_, true).second; });
  }
  ~FlightClaim() { release(); }
  FlightClaim(const FlightClaim&) = delete;
  FlightClaim& operator=(const FlightClaim&) = delete;

  bool claimed() const noexcept { return claimed_; }
  void release() {
    if (claimed_)
      table_.mutate([&](auto& flights) { flights.erase(name_); });
    claimed_ = false;
  }

 private:
  FlightTable& table_;
  const std::string name_;
  bool claimed_ = false;
};

}  // namespace

std::shared_ptr<NetworkManager> NetworkManager::create(
    std::shared_ptr<SecurePrefs> networkPreferences, std::shared_ptr<Authenticator> authenticator) {
  const auto platform = Platform::current();
  return create(std::move(networkPreferences), std::move(authenticator), platform->http,
                platform->clock);
}

std::shared_ptr<NetworkManager> NetworkManager::create(
    std::shared_ptr<SecurePrefs> networkPreferences, std::shared_ptr<Authenticator> authenticator,
    std::shared_ptr<HttpTransport> transport, std::shared_ptr<Clock> clock) {
  return std::make_shared<NetworkManager>(Passkey{}, std::move(networkPreferences),
                                          std::move(authenticator), std::move(transport),
                                          clock ? std::move(clock) : Clock::system());
}

NetworkManager::NetworkManager(Passkey, std::shared_ptr<SecurePrefs> networkPreferences,
                               std::shared_ptr<Authenticator> authenticator,
                               std::shared_ptr<HttpTransport> transport,
                               std::shared_ptr<Clock> clock)
    : prefs_(std::move(networkPreferences)),
      authenticator_(std::move(authenticator)),
      transport_(std::move(transport)),
      clock_(std::move(clock)) {}

NetworkManager::~NetworkManager() = default;

CompletedCall NetworkManager::executeSync(WrappedRequest request) {
  return execute(std::move(request), kSynchronous);
}

void NetworkManager::executeAsync(WrappedRequest request, CompletionHandler completionHandler) {
  dispatchQueue_.async([weak = weak_from_this(), request = std::move(request),
                        handler = std::move(completionHandler)]() mutable {
    std::optional<CompletedCall> call;
    if (const auto self = weak.lock())
      call.emplace(self->execute(std::move(request), kAsynchronous));
    if (call && handler)
      handler(std::move(*call));
  });
}

bool NetworkManager::isBlockedByRetryAfter(std::string_view name) {
  const std::int64_t now = clock_->nowMillis();
  const auto deadline = network::RetryDeadlines(prefs_).blockingDeadline(name, now);
  if (!deadline)
    return false;
  const std::int64_t seconds = network::saturatingSub(*deadline, now) / 1000;
  VORN_LOG_DEBUG(LoggerCategory::network, "Request " + std::string(name) +
                                              ", blocked by Retry-After for " +
                                              std::to_string(seconds) + " more seconds");
  return true;
}

CompletedCall NetworkManager::execute(WrappedRequest request, std::string_view form) {
  const std::string name = request.name;
  VORN_LOG_DEBUG(LoggerCategory::network, callLine(form, name, "started"));
  if (!transport_) {
    VORN_LOG_DEBUG(LoggerCategory::network,
                   "Request " + name + " cannot be sent: the network manager has no transport.");
    return refuse(std::move(request), NetworkManagerError::noTransport);
  }
  FlightClaim flight(requestsInFlight_, name);
  if (!flight.claimed()) {
    VORN_LOG_DEBUG(LoggerCategory::network, "Request " + name + " is already in flight.");
    return refuse(std::move(request), NetworkManagerError::alreadyInFlight);
  }
  if (isBlockedByRetryAfter(name)) {
    flight.release();
    VORN_LOG_DEBUG(LoggerCategory::network, "Request " + name + " is blocked by retry after.");
    return refuse(std::move(request), NetworkManagerError::blockedByRetryAfter);
  }

  bool authorized = authenticator_ && authorize(request, false);
  WrappedResponse response = exchange(request.request);
  if (response.isUnauthorized() && authenticator_) {
    authenticator_->deleteCachedToken();
    if (authorize(request, true)) {
      response = exchange(request.request);
      authorized = true;
    } else {
      VORN_LOG_DEBUG(LoggerCategory::network, "Token refresh failed.");
      authenticator_->deleteCachedToken();
    }
  }

  network::RetryDeadlines(prefs_).apply(name, request.rateLimit, response);
  flight.release();
  if (authenticator_ && !authorized) {
    VORN_LOG_DEBUG(LoggerCategory::network, "Fetching auth token header failed.");
    authenticator_->deleteCachedToken();
  }
  VORN_LOG_DEBUG(LoggerCategory::network, callLine(form, name, "completed"));
  return {std::move(request), std::move(response)};
}

CompletedCall NetworkManager::refuse(WrappedRequest request, NetworkManagerError error) {
  WrappedResponse response;
  response.error = ResponseError::refusal(error);
  response.startTimeMillis = response.endTimeMillis = clock_->nowMillis();
  return {std::move(request), std::move(response)};
}

bool NetworkManager::authorize(WrappedRequest& request, bool force) {
  std::optional<AuthHeader> header;
  {
    std::lock_guard lock(authenticator_->lock());
    if (!force)
      header = authenticator_->getCachedTokenHeader();
    if (!header)
      header = authenticator_->refreshAuthTokenHeader();
  }
  if (!header)
    return false;
  request.request.setValue(std::move(header->value), header->key);
  return true;
}

WrappedResponse NetworkManager::exchange(const URLRequest& request) {
  WrappedResponse response;
  response.startTimeMillis = clock_->nowMillis();
  HttpResult result = transport_->perform(network::httpRequestFrom(request));
  response.endTimeMillis = clock_->nowMillis();
  response.data = std::move(result.data);
  response.response = std::move(result.response);
  if (result.error)
    response.error = ResponseError::transport(std::move(*result.error));
  else if (!response.response)
    response.error = ResponseError::transport({HttpErrorCode::other, "no response"});
  return response;
}

}  // namespace vorn
