// Runs one test of the current test binary in a new process, for tests that need a second
// launch of the library (persistence, crash recovery, stores shared by two processes). The
// child test is selected with --gtest_filter and finds its orders in environment variables;
// without them it skips.
#pragma once

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>

namespace vorn::testing {

/// Starts this binary with only `testName` selected and `env` added to the environment. The
/// child's standard output is discarded, its standard error kept; every descriptor of the
/// parent that is not close-on-exec is inherited. -1 when it cannot start.
pid_t spawnSelf(const std::string& testName, const std::map<std::string, std::string>& env);

/// Waits for the child; its exit code, or 128 + the signal that ended it.
int waitForExit(pid_t pid);

/// The variable's value when this process is a child started for it.
std::optional<std::string> childOrder(const char* name);

}  // namespace vorn::testing
