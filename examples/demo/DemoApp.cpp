#include "DemoApp.hpp"

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <fstream>

#include "AppSession.hpp"
#include "Collector.hpp"
#include "vorn/behavior/ApplicationNotifications.hpp"
#include "vorn/behavior/BehaviorWatcher.hpp"
#include "vorn/behavior/NotificationCenter.hpp"
#include "vorn/events/CartEvent.hpp"
#include "vorn/events/CustomEvent.hpp"
#include "vorn/events/OrderEvent.hpp"
#include "vorn/facades/CDP.hpp"
#include "vorn/facades/PUSH.hpp"
#include "vorn/identity/IDENTITY.hpp"
#include "vorn/sdk/VORNSdk.hpp"

namespace demo {
namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;
using SteadyClock = std::chrono::steady_clock;

constexpr const char* kRegistrationFile = "first-run-registration-id.txt";
constexpr int kFirstRunEvents = 7;

void post(std::string_view notification) {
  vorn::NotificationCenter::defaultCenter()->post(notification);
}

std::string registrationId() {
  const auto state = nlohmann::json::parse(vorn::VORNSdk::state(), nullptr, false);
  return state.is_object() ? state.value("registrationId", "") : "";
}

void trackFirstRunEvents() {
  for (int i = 1; i <= 5; ++i)
    vorn::VORNSdk::track(vorn::CustomEvent::create(
        "Viewed Product", vorn::Dictionary{{"sku", vorn::Value("SKU-" + std::to_string(i))}}));
  const vorn::LineItem shoes{"product", "SKU-3", 1, vorn::Decimal::parse("59.90"), "EUR", {}};
  vorn::VORNSdk::track(std::make_shared<vorn::AddToCartEvent>(shoes));
  vorn::VORNSdk::track(std::make_shared<vorn::PurchaseOrderEvent>(
      vorn::Order{"ORDER-1001", {shoes}, vorn::Decimal::parse("64.80"), "EUR", {}}));
}

// Uploads on the app going to the background, as a real app would before it is suspended.
bool uploadAll(AppSession& app, std::int64_t expectedUploads) {
  // Events reach the module through the bus; a background notice that overtook them would
  // leave them for the flush timer.
  app.checks().waitFor(
      [&] {
        return AppSession::counter("cdp", "queuedEvents") +
                   AppSession::counter("cdp", "uploadedEvents") >=
               expectedUploads;
      },
      "customer data queued " + std::to_string(expectedUploads) + " events");
  post(vorn::kApplicationDidEnterBackgroundNotification);
  return app.checks().waitFor(
      [&] {
        return AppSession::counter("cdp", "queuedEvents") == 0 &&
               AppSession::counter("cdp", "uploadedEvents") == expectedUploads;
      },
      "customer data uploaded " + std::to_string(expectedUploads) + " events");
}

void consentAndIdentity(AppSession& app) {
  app.section("Consent and identity");
  const auto cdp = vorn::CDP::shared();
  cdp->setConsent(vorn::Consent::optIn);
  app.checks().expect(cdp->getConsent() == vorn::Consent::optIn, "consent is opt-in");
  const auto identity = vorn::IDENTITY::shared();
  identity->setProfileId("demo-user-42");
  identity->setProfileId("cdp-visitor-7", {vorn::ModuleName::cdp});
  identity->setProfileAttributes({{"tier", "gold"}});
  app.checks().waitFor(
      [&] { return identity->toJson().find("cdp-visitor-7") != std::string::npos; },
      "the customer data module took its own profile id");
}

void eventsAndConsent(AppSession& app) {
  app.section("Events");
  trackFirstRunEvents();
  uploadAll(app, kFirstRunEvents);
  vorn::CDP::shared()->setConsent(vorn::Consent::optOut);
  vorn::VORNSdk::track(vorn::CustomEvent::create("Opted Out Click"));
  app.checks().waitFor([] { return AppSession::counter("cdp", "droppedEvents") >= 1; },
                       "an event tracked while opted out is dropped");
  vorn::CDP::shared()->setConsent(vorn::Consent::optIn);
}

void lifecycle(AppSession& app, const std::string& version) {
  app.section("Lifecycle and screens");
  post(vorn::kApplicationWillEnterForegroundNotification);
  post(vorn::kApplicationDidBecomeActiveNotification);
  vorn::BehaviorWatcher::viewDidAppear("CheckoutScreen");
  app.checks().expect(app.sink().saw("App screen changed. Screen entry: CheckoutScreen."),
                      "the screen was seen");
  app.checks().expect(app.sink().saw("Storing current version \"" + version + "\" in keychain"),
                      "the app version " + version + " was stored");
}

void pushRegistrationAndInbox(AppSession& app) {
  app.section("Push registration and inbox");
  const auto push = vorn::PUSH::shared();
  push->setDeviceToken({0xde, 0xad, 0xbe, 0xef, 0x01, 0x02, 0x03, 0x04});
  push->addTags({"demo", "beta"});
  app.checks().waitFor([] { return AppSession::flag("push", "registered"); },
                       "the registration reached the back end");
  push->refreshMessages();
  app.checks().waitFor([&] { return push->getAllMessagesCount() == 3; },
                       "the inbox holds three messages");
  app.checks().expect(push->markMessageWithIdRead("m1"), "message m1 marked read");
  // The mark goes out in the background; the next step expires the tokens, so let it land.
  app.checks().waitFor(
      [&] {
        const auto summary = collectorCall(app.options().collectorUrl, "GET", "/summary");
        return summary.is_object() && summary["requests"].contains("/v1/inbox/m1/read");
      },
      "the back end heard that m1 was read");
}

void tokenRefresh(AppSession& app) {
  app.section("A 401 and one token refresh");
  const auto sent = AppSession::counter("push", "registrationsSent");
  collectorCall(app.options().collectorUrl, "POST", "/control/expire-tokens");
  vorn::PUSH::shared()->addTag("vip");
  app.checks().waitFor(
      [&] {
        return AppSession::counter("push", "registrationsSent") > sent &&
               AppSession::flag("push", "registered");
      },
      "the registration went through after one token refresh");
}

void retryAfter(AppSession& app) {
  app.section("A Retry-After block");
  collectorCall(app.options().collectorUrl, "POST",
                "/control/retry-after?path=/v1/inbox&seconds=600");
  auto answered = std::make_shared<std::atomic<bool>>(false);
  vorn::PUSH::shared()->refresh([answered](vorn::BackgroundFetchResult) { *answered = true; });
  app.checks().waitFor([&] { return answered->load(); }, "the inbox answered 503");
  vorn::PUSH::shared()->refreshMessages();
  app.checks().waitFor(
      [&] { return app.sink().saw("Request push_inbox, blocked by Retry-After for"); },
      "the next inbox call is blocked without reaching the server");
}

int firstRun(AppSession& app) {
  const auto start = SteadyClock::now();
  app.section("Start-up (first run, version 1.0)");
  if (!app.startUp(app.cdpSettings()))
    return app.checks().failures();
  const auto started = SteadyClock::now();
  consentAndIdentity(app);
  eventsAndConsent(app);
  const auto tracked = SteadyClock::now();
  lifecycle(app, "1.0");
  pushRegistrationAndInbox(app);
  tokenRefresh(app);
  retryAfter(app);
  app.section("State");
  app.printStateAndIdentity();
  std::ofstream(app.options().dataDirectory / kRegistrationFile) << registrationId();
  const auto shutdownStart = SteadyClock::now();
  app.shutDown();
  std::printf(
      "\n  timing: start-up %.1f ms, tracking %.1f ms (consent, identity, 8 events tracked "
      "and 7 uploaded), shutdown %.1f ms\n",
      Milliseconds(started - start).count(), Milliseconds(tracked - started).count(),
      Milliseconds(SteadyClock::now() - shutdownStart).count());
  return app.checks().failures();
}

int secondRun(AppSession& app) {
  app.section("Start-up (second run, upgraded to 1.1)");
  if (!app.startUp(app.cdpSettings()))
    return app.checks().failures();
  std::string previous;
  std::ifstream(app.options().dataDirectory / kRegistrationFile) >> previous;
  app.checks().expect(!previous.empty() && registrationId() == previous,
                      "registration id kept: " + registrationId());
  app.checks().expect(vorn::CDP::shared()->getConsent() == vorn::Consent::optIn,
                      "consent kept, read through the module's key");
  const auto sent = AppSession::counter("push", "registrationsSent");
  post(vorn::kApplicationDidBecomeActiveNotification);
  app.checks().waitFor([&] { return AppSession::counter("push", "registrationsSent") > sent; },
                       "the version change re-registered the device");
  vorn::PUSH::shared()->refreshMessages();
  app.checks().waitFor(
      [&] { return app.sink().saw("Request push_inbox, blocked by Retry-After for"); },
      "the Retry-After deadline survived the restart");
  vorn::VORNSdk::track(vorn::CustomEvent::create("Second Run Visit"));
  vorn::VORNSdk::track(vorn::CustomEvent::create("Second Run Visit"));
  uploadAll(app, 2);
  app.printStateAndIdentity();
  app.shutDown();
  return app.checks().failures();
}

int trackRun(AppSession& app) {
  cdp::CdpSettings held = app.cdpSettings();
  held.batchSize = 100000;
  held.flushIntervalSeconds = 3600;
  if (!app.startUp(held))
    return app.checks().failures();
  vorn::CDP::shared()->setConsent(vorn::Consent::optIn);
  const int events = app.options().events;
  for (int i = 0; i < events; ++i)
    vorn::VORNSdk::track(vorn::CustomEvent::create("Killed Run Event"));
  if (!app.checks().waitFor([&] { return AppSession::counter("cdp", "queuedEvents") == events; },
                            "events on disk"))
    return app.checks().failures();
  std::printf("persisted %d\n", events);
  std::fflush(stdout);
  for (;;)
    pause();
}

int uploadRun(AppSession& app) {
  if (!app.startUp(app.cdpSettings()))
    return app.checks().failures();
  const int events = app.options().events;
  app.checks().waitFor(
      [&] {
        return AppSession::counter("cdp", "queuedEvents") == 0 &&
               AppSession::counter("cdp", "uploadedEvents") == events;
      },
      "the killed run's events were uploaded at start");
  app.shutDown();
  return app.checks().failures();
}

}  // namespace

int runApp(const AppOptions& options) {
  AppSession app(options, options.run == "first" ? "1.0" : "1.1");
  if (options.run == "first")
    return firstRun(app);
  if (options.run == "second")
    return secondRun(app);
  if (options.run == "track")
    return trackRun(app);
  if (options.run == "upload")
    return uploadRun(app);
  std::fprintf(stderr, "unknown run %s\n", options.run.c_str());
  return 2;
}

}  // namespace demo
