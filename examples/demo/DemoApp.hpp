// DemoApp: what an app does with the SDK, as one of four runs of one installation.
//
//   first  - a fresh install: start-up, consent, identity for all modules and for one, custom
//            and commerce events, lifecycle and screen notifications, push registration, the
//            inbox, a token refresh after a 401 and a Retry-After block.
//   second - the same app upgraded: the registration id, keys, consent and the Retry-After
//            deadline come back from storage, and the version change reaches the modules.
//   track  - tracks events with uploads held back, prints "persisted <n>" once the customer
//            data module has them on disk, then waits to be killed.
//   upload - starts on what a killed run left and waits until all of it was uploaded.
//
// Each run is its own process, as a relaunched app would be; the exit status is the number of
// failed checks (0: everything worked).
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "vorn/logging/LogOutputter.hpp"

namespace demo {

struct AppOptions {
  std::string run;
  std::filesystem::path dataDirectory;
  std::string collectorUrl;
  int events = 25;
  /// Also receives every log line of the run, when set (a test that reads all of them).
  std::shared_ptr<vorn::LogOutputter> logTap;
};

int runApp(const AppOptions& options);

}  // namespace demo
