// The reference customer-data ("cdp") feature module: a shared library (vornsdk-cdp) that
// registers the class "Cdp.CdpModule", version "2.4.0", when it is loaded, and is started by
// the core from a CdpModuleConfig.
//
// What the running module does:
// - Consent. Kept in the module's secure preferences ("cdp"), so it survives restarts. It is
//   `none` until the app sets it: a user who was never asked has not refused, and the app
//   decides when to ask. Events are queued under every consent except `optOut`. Setting
//   `optOut` deletes every queued event (from memory and from the file) and drops later
//   events until the consent changes again.
// - Identity. Identity events on the bus set the profile id and merge profile attributes (an
//   attribute set to "" is removed: that is how the app clears one); both are persisted in the
//   secure preferences. getIdentity() reports the application id, the profile id, this
//   installation's registration id and the attributes as custom properties. The profile id and
//   every attribute value are redacted from the module's log lines.
// - Events. Engagement events (custom, commerce) delivered by the bus are appended, before
//   receive() returns, to a queue file under <dataDirectory>/cdp/ named after the module's
//   storage name of "events". Each record is a 4-byte big-endian length followed by that many
//   bytes: the event's JSON ({"id", "name", "category", "producer", "timestamp",
//   "attributes"?, plus "lineItems", "order" or "catalogObject" for commerce events) encrypted
//   by the module's EncryptionManager. A record is written with one write(2) on a descriptor
//   opened with O_APPEND, so once receive() returns the record is in the kernel's page cache
//   and a process killed afterwards loses nothing. Power loss is covered only with
//   CdpSettings::syncWrites, which adds an fsync(2) after every write. When the file is read at
//   start, a record that does not decrypt or parse is skipped, and a truncated tail (a torn
//   write) ends the read; each with a log line, keeping every record before it, and the file
//   is then rewritten so new records never follow the damage. Directory 0700, file 0600.
// - Upload. Batches of up to batchSize events are POSTed as {"events": [...]} (plus
//   {"location": {"latitude", "longitude"}} while a location set by setLocation() has not
//   expired) to endpoint + "/v1/events" through the module's NetworkManager, request name
//   "cdp_events" with rateLimit rateLimitSeconds, on the module's own serial queue: the app's
//   threads and the bus's delivery threads never wait for the network. An upload starts when
//   the queue reaches batchSize, when the one-shot flush timer fires (armed for
//   flushIntervalSeconds when an event is queued and none is armed; there is no timer while the
//   queue is empty), when the app goes to the background, and at start when the file holds
//   events from an earlier run. On a 2xx exactly the uploaded records are removed (the file is
//   rewritten to a temporary file that is then renamed over it) and the next batch follows
//   once the module's own rate limit has passed. On any other outcome the records stay and the
//   timer is armed again: for the Retry-After the reply carried, else for flushIntervalSeconds
//   (a refusal by the network manager says nothing about when its block ends). Only one upload
//   runs at a time and a record leaves the queue only after its 2xx, so no record is sent twice
//   by one process. One window cannot be closed: a process killed between the server's 2xx and
//   the rewrite sends that batch again at its next start (the server sees the same event ids).
//
// State properties (VORNSdk::state(), under the module's "properties"):
//   "consent"        the consent's raw value ("opt_in", "opt_out", "pending", "none")
//   "queuedEvents"   events waiting for upload, persisted ones from earlier runs included
//   "uploadedEvents" events the collector accepted (2xx) since this start
//   "droppedEvents"  events lost since this start: queued events deleted by an opt-out, events
//                    received during one, and unreadable records skipped when the file was read
//
// tearDown() removes the module's behaviour observer, cancels the flush timer and waits for an
// upload under way to end (at most the request's time-out); afterwards the module touches
// neither the file nor the network, ignores late deliveries, and may be destroyed.
//
// Thread safety: every operation of the module may be called from any thread at once.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "vorn/core/ModuleConfig.hpp"

#define CDP_API __attribute__((visibility("default")))

namespace cdp {

/// The description the class is registered under, and the version it reports.
inline constexpr std::string_view kModuleDescription = "Cdp.CdpModule";
inline constexpr std::string_view kModuleVersion = "2.4.0";
/// The request name of the uploads, and the path they are posted to below the endpoint.
inline constexpr std::string_view kEventsRequestName = "cdp_events";
inline constexpr std::string_view kEventsPath = "/v1/events";

struct CdpSettings {
  /// The collector's base URL ("http://127.0.0.1:8080").
  std::string endpoint;
  std::size_t batchSize = 20;
  double flushIntervalSeconds = 10;
  double rateLimitSeconds = 1;
  /// Empty: vorn::Platform::defaultDataDirectory().
  std::filesystem::path dataDirectory;
  /// fsync(2) after every write of the queue file, to survive power loss too.
  bool syncWrites = false;
};

/// The module's configuration. Immutable; safe to read from any thread.
class CDP_API CdpModuleConfig final : public vorn::ModuleConfig {
 public:
  CdpModuleConfig(std::string appId, CdpSettings settings);

  vorn::ModuleName name() const override;
  std::string appId() const override;
  /// "appId", then every setting by its field name.
  std::vector<Property> storedProperties() const override;

  const CdpSettings& settings() const noexcept { return settings_; }
  /// The data directory in use: the configured one, or the Platform's default.
  std::filesystem::path dataDirectory() const;

 private:
  const std::string appId_;
  const CdpSettings settings_;
};

}  // namespace cdp
