// PushRequests: the requests the push module sends, by name, and reading their JSON answers.
//
// Names: "push_token", "push_registration", "push_inbox", "push_inbox_read",
// "push_inbox_delete". An endpoint that does not make a URL gives no request (the builder
// logs why). Pure functions; thread-safe.
#pragma once

#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "vorn/base/Value.hpp"
#include "vorn/network/WrappedResponse.hpp"

namespace push::requests {

std::optional<vorn::WrappedRequest> token(const std::string& endpoint,
                                          const std::string& registrationId);
std::optional<vorn::WrappedRequest> registration(const std::string& endpoint,
                                                 const vorn::Dictionary& body, double rateLimit);
std::optional<vorn::WrappedRequest> inbox(const std::string& endpoint);
std::optional<vorn::WrappedRequest> markRead(const std::string& endpoint,
                                             const std::string& messageId);
std::optional<vorn::WrappedRequest> markDeleted(const std::string& endpoint,
                                                const std::string& messageId);

/// The body of a successful answer as JSON; nothing for a failure or a body that is not JSON.
std::optional<nlohmann::json> jsonAnswer(const vorn::CompletedCall& call);

/// A one-line account of how a call ended, for the log: "HTTP 503" or the error's text.
std::string outcome(const vorn::CompletedCall& call);

}  // namespace push::requests
