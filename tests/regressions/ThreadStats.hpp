// What the kernel reports about this process's threads (Linux /proc), for tests that check
// that a thread is blocked or that idle threads stay asleep.
#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <utility>

#include "vorn/testing/Wait.hpp"

namespace vorn::test {

/// Context switches (or any other count) by thread id.
using Switches = std::map<pid_t, std::uint64_t>;

/// The scheduler state letter of thread `tid` ('R', 'S', 'D', ...), or 0 once it is gone.
inline char threadState(pid_t tid) {
  std::ifstream stat("/proc/self/task/" + std::to_string(tid) + "/stat");
  std::string text;
  std::getline(stat, text);
  // The command name in parentheses may contain spaces; the state follows its closing one.
  const auto close = text.rfind(')');
  return close == std::string::npos || close + 2 >= text.size() ? 0 : text[close + 2];
}

/// True when thread `tid` is asleep in the kernel, e.g. blocked on a condition.
inline bool isBlocked(pid_t tid) {
  return threadState(tid) == 'S';
}

/// The name of thread `tid` as the kernel knows it, or "" once it is gone.
inline std::string threadName(pid_t tid) {
  std::ifstream comm("/proc/self/task/" + std::to_string(tid) + "/comm");
  std::string name;
  std::getline(comm, name);
  return name;
}

/// Voluntary plus involuntary context switches of every thread of the process, by id.
inline Switches contextSwitchesByThread() {
  Switches switches;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) {
    std::ifstream status(entry.path() / "status");
    std::uint64_t total = 0;
    for (std::string line; std::getline(status, line);) {
      if (line.starts_with("voluntary_ctxt_switches:") ||
          line.starts_with("nonvoluntary_ctxt_switches:")) {
        total += std::stoull(line.substr(line.find(':') + 1));
      }
    }
    switches[static_cast<pid_t>(std::stol(entry.path().filename().string()))] = total;
  }
  return switches;
}

/// The threads of the process before the library starts any: the test's own, and any helper
/// the toolchain runs. ThreadSanitizer starts its helper along with the first other thread,
/// so one is started (and joined) first.
inline Switches threadsBeforeTheLibrary() {
  std::thread([] {}).join();
  return contextSwitchesByThread();
}

/// The threads started since `preexisting` was taken, with their context switches so far.
inline Switches libraryThreads(const Switches& preexisting) {
  Switches threads = contextSwitchesByThread();
  std::erase_if(threads, [&](const auto& entry) { return preexisting.contains(entry.first); });
  return threads;
}

/// Context switches between two snapshots, by thread; a thread new in `after` counts whole.
inline Switches wakeupsBetween(const Switches& before, const Switches& after) {
  Switches wakeups;
  for (const auto& [thread, count] : after) {
    const auto earlier = before.find(thread);
    const std::uint64_t delta = count - (earlier == before.end() ? 0 : earlier->second);
    if (delta > 0) {
      wakeups[thread] = delta;
    }
  }
  return wakeups;
}

/// Waits until the library's threads have not run for `quiet`, so that a measurement leaves
/// out the moment in which workers go to sleep after their last task. False when they kept
/// running until `timeout`.
inline bool waitForTheThreadsToSettle(
    const Switches& preexisting, std::chrono::milliseconds quiet = std::chrono::milliseconds(200),
    std::chrono::nanoseconds timeout = std::chrono::seconds(3)) {
  Switches last = libraryThreads(preexisting);
  auto lastChange = std::chrono::steady_clock::now();
  return testing::waitUntil(
      [&] {
        Switches now = libraryThreads(preexisting);
        if (now != last) {
          last = std::move(now);
          lastChange = std::chrono::steady_clock::now();
        }
        return std::chrono::steady_clock::now() - lastChange >= quiet;
      },
      timeout);
}

/// "thread <id> (<name>): <count>;" for every thread, for a failure message.
inline std::string describe(const Switches& wakeups) {
  std::ostringstream text;
  for (const auto& [thread, count] : wakeups) {
    text << " thread " << thread << " (" << threadName(thread) << "): " << count << ";";
  }
  return text.str();
}

}  // namespace vorn::test
