#include "PushAuthenticator.hpp"

#include "PushRequests.hpp"

namespace push {
namespace {

constexpr std::string_view kTokenKey = "accessToken";

}  // namespace

PushAuthenticator::PushAuthenticator(std::string endpoint,
                                     std::shared_ptr<vorn::StorageManager> storage,
                                     std::shared_ptr<vorn::SecurePrefs> prefs,
                                     std::shared_ptr<vorn::NetworkManager> tokenNetwork,
                                     std::shared_ptr<PushLog> log)
    : endpoint_(std::move(endpoint)),
      storage_(std::move(storage)),
      prefs_(std::move(prefs)),
      tokenNetwork_(std::move(tokenNetwork)),
      log_(std::move(log)) {
  if (prefs_)
    token_ = prefs_->stringFor(kTokenKey);
  if (token_)
    log_->redact(*token_);
}

std::optional<vorn::AuthHeader> PushAuthenticator::getCachedTokenHeader() {
  const std::optional<std::string> token = accessToken();
  if (!token)
    return std::nullopt;
  return header(*token);
}

std::optional<vorn::AuthHeader> PushAuthenticator::refreshAuthTokenHeader() {
  const std::optional<std::string> token = fetchToken();
  if (!token)
    return std::nullopt;
  log_->redact(*token);
  {
    std::lock_guard lock(mutex_);
    token_ = token;
  }
  if (prefs_)
    prefs_->setString(*token, kTokenKey);
  ++refreshes_;
  log_->debug("Access token refreshed.", vorn::LoggerCategory::auth);
  return header(*token);
}

void PushAuthenticator::deleteCachedToken() {
  {
    std::lock_guard lock(mutex_);
    token_.reset();
  }
  if (prefs_)
    prefs_->remove(kTokenKey);
}

std::optional<std::string> PushAuthenticator::accessToken() const {
  std::lock_guard lock(mutex_);
  return token_;
}

std::optional<std::string> PushAuthenticator::fetchToken() {
  const std::string registrationId = storage_ ? storage_->getRegistrationId() : std::string();
  log_->redact(registrationId);
  auto request = requests::token(endpoint_, registrationId);
  if (!request)
    return std::nullopt;
  const vorn::CompletedCall call = tokenNetwork_->executeSync(std::move(*request));
  const std::optional<nlohmann::json> answer = requests::jsonAnswer(call);
  if (!answer || !answer->is_object() || !answer->contains("token") ||
      !(*answer)["token"].is_string() || (*answer)["token"].get<std::string>().empty()) {
    log_->warning("Fetching the access token failed: " + requests::outcome(call) + ".",
                  vorn::LoggerCategory::auth);
    return std::nullopt;
  }
  return (*answer)["token"].get<std::string>();
}

vorn::AuthHeader PushAuthenticator::header(const std::string& token) {
  return vorn::AuthHeader("Authorization", "Bearer " + token);
}

}  // namespace push
