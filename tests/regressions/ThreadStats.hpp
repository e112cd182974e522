// What the kernel reports about this process's threads (Linux /proc), for tests that check
// that a thread is blocked or that idle threads stay asleep.
#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

namespace vorn::test {

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

/// Voluntary plus involuntary context switches of every thread of the process, by id.
inline std::map<pid_t, std::uint64_t> contextSwitchesByThread() {
  std::map<pid_t, std::uint64_t> switches;
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

}  // namespace vorn::test
