// A child process of the demo whose standard output is read line by line: the collector, and
// the app runs. Killed (SIGKILL) when destroyed while still running.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace demo {

class Process {
 public:
  /// Starts `program` with `arguments`; running() is false when it could not start.
  Process(const std::string& program, const std::vector<std::string>& arguments);
  ~Process();

  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  bool running() const { return pid_ > 0; }
  /// The next line of output (echoed to ours), or nothing at its end or past the deadline.
  std::optional<std::string> readLine(std::chrono::milliseconds timeout);
  /// Reads (and echoes) lines until one contains `text`; that line, or nothing.
  std::optional<std::string> waitForLine(const std::string& text,
                                         std::chrono::milliseconds timeout);
  /// Echoes the rest of the output and waits for the exit; the exit status, or -1.
  int wait();
  void kill(int signal);

 private:
  pid_t pid_ = -1;
  int out_ = -1;
  std::string buffer_;
};

}  // namespace demo
