// The file-backed stores used to log their failures with their mutex held. An app's log sink
// that reads a setting from the same store then deadlocked (or, reading from another thread,
// waited for as long as the failing call held the lock). Lines now go out once the store has
// let go of its lock.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "platform/RawSqlite.hpp"
#include "vorn/logging/VORNSdkLogger.hpp"
#include "vorn/platform/DefaultsStore.hpp"
#include "vorn/platform/KeychainStore.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"
#include "vorn/testing/TimeScale.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using testing::RawSqlite;

// A sink that, for every line, runs `read` the way an app's sink might look up a setting.
class ReadingSink : public LogOutputter {
 public:
  explicit ReadingSink(std::function<void()> read) : read_(std::move(read)) {}
  void out(LogLevel, std::string_view, LoggerCategory, std::string_view) override {
    read_();
    ++lines_;
  }
  int lines() const { return lines_.load(); }

 private:
  std::function<void()> read_;
  std::atomic<int> lines_{0};
};

// Runs `call` on its own thread; false when it has not returned by the deadline (the thread
// is then left behind, blocked, so the test fails instead of hanging).
bool finishesInTime(std::function<void()> call) {
  auto done = std::make_shared<std::atomic<bool>>(false);
  std::thread worker([call = std::move(call), done] {
    call();
    done->store(true);
  });
  if (!testing::waitUntil([&] { return done->load(); })) {
    worker.detach();
    return false;
  }
  worker.join();
  return true;
}

TEST(StoreLogSinkReentry, ADefaultsSinkReadsTheSameStoreOnTheLoggingThread) {
  testing::TemporaryDirectory dir;
  testing::ScopedTimeScale shortBusyWait(0.01);
  auto store = DefaultsStore::openFile(dir.path());
  ASSERT_TRUE(store && store->setString("", "verbose", "logLevel"));
  auto sink = std::make_shared<ReadingSink>([store] { (void)store->stringFor("", "logLevel"); });
  VORNSdkLogger::shared().setLogger(LogLevel::debug, sink);
  RawSqlite other(dir.path() / "defaults.db");
  ASSERT_TRUE(other.execute("BEGIN IMMEDIATE"));

  bool written = true;
  EXPECT_TRUE(finishesInTime([&] { written = store->setString("", "quiet", "logLevel"); }));
  EXPECT_FALSE(written);
  EXPECT_EQ(sink->lines(), 1);
  VORNSdkLogger::shared().setLogger(LogLevel::none, nullptr);
}

TEST(StoreLogSinkReentry, AKeychainSinkReadingFromAnotherThreadIsNotBlocked) {
  testing::TemporaryDirectory dir;
  testing::ScopedTimeScale shortBusyWait(0.01);
  auto store = KeychainStore::openFile(dir.path());
  ASSERT_TRUE(store);
  KeychainItem item;
  item.service = "settings";
  ASSERT_EQ(store->add(item), errSecSuccess);
  std::atomic<int> readsInTime{0};
  std::vector<std::thread> readers;
  auto sink = std::make_shared<ReadingSink>([&] {
    // The sink hands the read to a thread of its own and waits a while for it; the thread
    // is joined after the store call, so a read blocked behind the store cannot hang this.
    auto read = std::make_shared<testing::Latch>();
    readers.emplace_back([&store, read] {
      KeychainQuery query;
      query.service = "settings";
      std::vector<KeychainItem> found;
      (void)store->copyMatching(query, found);
      read->countDown();
    });
    if (read->wait(2s))
      ++readsInTime;
  });
  VORNSdkLogger::shared().setLogger(LogLevel::debug, sink);
  RawSqlite other(dir.path() / "keychain.db");
  ASSERT_TRUE(other.execute("BEGIN IMMEDIATE"));

  item.service = "other";
  EXPECT_TRUE(finishesInTime([&] { EXPECT_NE(store->add(item), errSecSuccess); }));
  for (auto& reader : readers)
    reader.join();
  EXPECT_EQ(sink->lines(), 1);
  EXPECT_EQ(readsInTime.load(), 1);
  VORNSdkLogger::shared().setLogger(LogLevel::none, nullptr);
}

}  // namespace
}  // namespace vorn
