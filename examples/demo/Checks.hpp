// How the demo decides it worked: every step is a named check, printed as it ends, and the
// process exits non-zero when any failed. Waits poll a condition until a deadline, so a slow
// machine only makes the demo slower, never wrong.
#pragma once

#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <thread>

namespace demo {

class Checks {
 public:
  bool expect(bool ok, const std::string& what) {
    std::printf("  [%s] %s\n", ok ? "ok" : "FAILED", what.c_str());
    std::fflush(stdout);
    failures_ += ok ? 0 : 1;
    return ok;
  }

  bool waitFor(const std::function<bool()>& condition, const std::string& what,
               std::chrono::milliseconds timeout = std::chrono::seconds(20)) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    bool ok = condition();
    while (!ok && std::chrono::steady_clock::now() < deadline) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
      ok = condition();
    }
    return expect(ok, what);
  }

  int failures() const { return failures_; }

 private:
  int failures_ = 0;
};

}  // namespace demo
