#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <thread>

#include "vorn/platform/Platform.hpp"
#include "vorn/storage/prefs/StorageManager.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/ChildProcess.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace vorn {
namespace {

constexpr const char* kDirVariable = "VORN_TEST_CRASH_DIR";
constexpr const char* kAckFdVariable = "VORN_TEST_CRASH_ACK_FD";
constexpr const char* kAckedVariable = "VORN_TEST_CRASH_ACKED";
constexpr const char* kTrialsVariable = "VORN_CRASH_TRIALS";
constexpr int kWriterLimit = 100000;

std::string keyOf(std::uint32_t i) {
  return "entry-" + std::to_string(i);
}

// Values of several cipher blocks and of varying length, so a torn write cannot pass.
std::string valueOf(std::uint32_t i) {
  return "value " + std::to_string(i) + " \xC3\xA9\xE2\x82\xAC " + std::string(i % 61, 'x');
}

std::shared_ptr<SecurePrefs> openPrefs(const std::string& dir,
                                       std::unique_ptr<StorageManager>& storage) {
  Platform::install(Platform::defaultPlatform(dir));
  storage = std::make_unique<StorageManager>(std::make_shared<EncryptionManager>(ModuleName::push),
                                             "APP1");
  return storage->getOrCreateSecurePrefs("crash");
}

// The writer: stores entries one after the other and acknowledges each one, as a 32-bit
// index on the pipe, only after setString has returned. It runs until it is killed.
TEST(SecurePrefsCrashChild, WriteUntilKilled) {
  const auto dir = testing::childOrder(kDirVariable);
  const auto ackFd = testing::childOrder(kAckFdVariable);
  if (!dir || !ackFd) {
    GTEST_SKIP() << "runs only as the child of SecurePrefsCrash";
  }
  const int fd = std::atoi(ackFd->c_str());
  std::unique_ptr<StorageManager> storage;
  auto prefs = openPrefs(*dir, storage);
  for (std::uint32_t i = 0; i < kWriterLimit; ++i) {
    ASSERT_TRUE(prefs->setString(valueOf(i), keyOf(i)));
    ASSERT_EQ(write(fd, &i, sizeof i), static_cast<ssize_t>(sizeof i));
  }
}

// The restarted app: every acknowledged entry reads back exactly, the one in flight is
// either absent or whole, and the store takes new writes.
TEST(SecurePrefsCrashChild, VerifyAcknowledged) {
  const auto dir = testing::childOrder(kDirVariable);
  const auto acked = testing::childOrder(kAckedVariable);
  if (!dir || !acked) {
    GTEST_SKIP() << "runs only as the child of SecurePrefsCrash";
  }
  const auto count = static_cast<std::uint32_t>(std::stoul(*acked));
  auto sink = testing::CaptureLogSink::install();
  std::unique_ptr<StorageManager> storage;
  auto prefs = openPrefs(*dir, storage);
  if (count > 0) {
    EXPECT_TRUE(sink->contains("StorageManager was initialized with existing registration id (" +
                               storage->getRegistrationId() + ")."));
  }
  for (std::uint32_t i = 0; i < count; ++i) {
    ASSERT_EQ(prefs->stringFor(keyOf(i)), valueOf(i)) << "acknowledged entry " << i;
  }
  const auto inFlight = prefs->stringFor(keyOf(count));
  EXPECT_TRUE(!inFlight || *inFlight == valueOf(count));
  ASSERT_TRUE(prefs->setString("after restart", "restart"));
  EXPECT_EQ(prefs->stringFor("restart"), "after restart");
}

// Reads acknowledgements until `wanted` have arrived or the writer ended; false when the
// writer went silent for 20 s.
bool readAcks(int fd, std::uint32_t wanted, std::uint32_t& count) {
  while (count < wanted) {
    pollfd p{fd, POLLIN, 0};
    if (poll(&p, 1, 20000) <= 0) {
      return false;
    }
    std::uint32_t index = 0;
    const ssize_t n = read(fd, &index, sizeof index);
    if (n == 0) {
      return true;
    }
    if (n != static_cast<ssize_t>(sizeof index) || index != count) {
      ADD_FAILURE() << "acknowledgements out of order at " << count;
      return false;
    }
    ++count;
  }
  return true;
}

int trialCount() {
  const auto text = testing::childOrder(kTrialsVariable);
  return text ? std::max(1, std::atoi(text->c_str())) : 20;
}

TEST(SecurePrefsCrash, AcknowledgedEntriesSurviveSigkill) {
  const int trials = trialCount();
  std::mt19937 random(std::random_device{}());
  std::uint64_t totalAcked = 0;
  int killedWhileWriting = 0;
  for (int trial = 0; trial < trials; ++trial) {
    SCOPED_TRACE("trial " + std::to_string(trial));
    const testing::TemporaryDirectory dir;
    int fds[2];
    ASSERT_EQ(pipe2(fds, O_CLOEXEC), 0);
    // Only the write end goes to the writer.
    ASSERT_EQ(fcntl(fds[1], F_SETFD, 0), 0);
    const pid_t writer = testing::spawnSelf(
        "SecurePrefsCrashChild.WriteUntilKilled",
        {{kDirVariable, dir.path().string()}, {kAckFdVariable, std::to_string(fds[1])}});
    close(fds[1]);
    ASSERT_GT(writer, 0);

    // Kill after a random number of acknowledged writes plus a random fraction of the next
    // one; one trial in eight kills during start-up instead.
    std::uint32_t count = 0;
    const bool duringStartup = random() % 8 == 0;
    const std::uint32_t target = duringStartup ? 0 : 1 + random() % 300;
    const bool answered = readAcks(fds[0], target, count);
    std::this_thread::sleep_for(
        std::chrono::microseconds(random() % (duringStartup ? 30000 : 120)));
    kill(writer, SIGKILL);
    EXPECT_EQ(testing::waitForExit(writer), 128 + SIGKILL) << "the writer ended on its own";
    readAcks(fds[0], kWriterLimit, count);
    close(fds[0]);
    ASSERT_TRUE(answered) << "the writer never acknowledged";
    totalAcked += count;
    killedWhileWriting += count > 0 ? 1 : 0;

    const pid_t reader = testing::spawnSelf(
        "SecurePrefsCrashChild.VerifyAcknowledged",
        {{kDirVariable, dir.path().string()}, {kAckedVariable, std::to_string(count)}});
    ASSERT_GT(reader, 0);
    ASSERT_EQ(testing::waitForExit(reader), 0)
        << count << " acknowledged entries did not read back";
  }
  std::cerr << trials << " trials, " << killedWhileWriting << " killed while writing, "
            << totalAcked << " acknowledged entries verified\n";
}

}  // namespace
}  // namespace vorn
