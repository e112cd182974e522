// The demo as `make demo` runs it: a collector, then the app twice on one data directory (a
// fresh install, then an upgraded relaunch), then a summary of what the collector received.
// The kill test instead kills a run that has events on disk and checks that the next start
// delivers every one of them exactly once.
#pragma once

#include <filesystem>

namespace demo {

/// Exit status 0 when every step and every expectation held.
int runDemo(const std::filesystem::path& dataDirectory);
int runKillTest(const std::filesystem::path& dataDirectory, int events);

}  // namespace demo
