// A child forked from a process that already used the library gets a working pool and delay
// timer of its own.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>

#include "vorn/runtime/DispatchQueue.hpp"
#include "vorn/testing/Wait.hpp"

#if defined(__SANITIZE_THREAD__)
// ThreadSanitizer refuses to start threads in the child of a multi-threaded process unless
// told otherwise, and starting them there is what this test is about. Exported, so that the
// sanitizer's runtime finds it despite the project's hidden default visibility.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options() {
  return "die_after_fork=0";
}
#endif

namespace vorn {
namespace {

using namespace std::chrono_literals;
using testing::waitUntil;

// Runs plain and delayed work on a serial queue and waits for both, up to `timeout`.
bool runsAsyncAndDelayedWork(std::chrono::milliseconds timeout) {
  DispatchQueue queue("x");
  std::atomic<bool> ran{false};
  std::atomic<bool> ranLater{false};
  queue.async([&] { ran = true; });
  queue.asyncAfter(10ms, [&] { ranLater = true; });
  return waitUntil([&] { return ran.load() && ranLater.load(); }, timeout);
}

// Waits for the child to exit; kills it when it is still running at the deadline.
int exitStatusOf(pid_t child, std::chrono::milliseconds deadline) {
  int status = 0;
  if (!waitUntil([&] { return waitpid(child, &status, WNOHANG) == child; }, deadline)) {
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
    return -1;
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(ForkedChild, RunsAsyncAndDelayedWork) {
  // The parent has workers, idle ones among them, and a timer thread when it forks.
  ASSERT_TRUE(runsAsyncAndDelayedWork(5s));
  const pid_t child = fork();
  ASSERT_NE(child, -1);
  if (child == 0) {
    _exit(runsAsyncAndDelayedWork(5s) ? 0 : 1);
  }
  EXPECT_EQ(exitStatusOf(child, 10s), 0) << "the child's work did not run (-1: it hung)";
  // The parent's pool is unaffected.
  EXPECT_TRUE(runsAsyncAndDelayedWork(5s));
}

}  // namespace
}  // namespace vorn
