// BatchUpload: one POST of queued events to the collector, and what the module needs to know
// about its outcome.
//
// The body is {"events": [<record>, ...]} with each record's JSON text spliced in as it was
// queued (no re-serialisation), plus "location" when one is given. The request is named
// kEventsRequestName, carries the configured rate limit and a time-out of kUploadTimeout, and
// goes through the module's NetworkManager synchronously: call it on the module's queue only.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "cdp/CdpModule.hpp"
#include "vorn/network/NetworkManager.hpp"

namespace cdp {

inline constexpr double kUploadTimeoutSeconds = 15;

struct UploadOutcome {
  bool accepted = false;
  /// The reply's Retry-After (whole seconds, at most a day), when it carried one.
  std::optional<std::chrono::seconds> retryAfter;
  /// What happened, for the log: "HTTP 503", a refusal or a transport failure.
  std::string description;
};

std::string batchBody(const std::vector<std::string>& records,
                      const std::optional<nlohmann::json>& location);

UploadOutcome postBatch(vorn::NetworkManager& network, const CdpSettings& settings,
                        const std::vector<std::string>& records,
                        const std::optional<nlohmann::json>& location);

}  // namespace cdp
