// Damage in the middle of a store's -wal file made SQLite's recovery drop every change from
// the damaged frame on without a word, so keys and settings vanished and new ones were made
// in their place. The store now reads the log before SQLite does and logs what is lost.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "vorn/platform/Platform.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/ChildProcess.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;
using testing::CaptureLogSink;

constexpr const char* kDirVariable = "VORN_TEST_DAMAGED_WAL_DIR";
constexpr std::size_t kWalHeader = 32;
constexpr std::size_t kFrame = 24 + 4096;

// Writes items in several transactions and ends without closing, so they stay in the log.
TEST(StoreDamagedWalLaunch, WritesAndEnds) {
  const auto dir = testing::childOrder(kDirVariable);
  if (!dir)
    GTEST_SKIP() << "runs only as a child of StoreDamagedWal";
  // The installed Platform is never destroyed, so its connections are never closed.
  Platform::install(Platform::defaultPlatform(*dir));
  for (const char* service : {"one", "two", "three"}) {
    KeychainItem item;
    item.service = service;
    ASSERT_EQ(Platform::current()->keychain->add(item), errSecSuccess);
  }
}

void flipByte(const fs::path& file, std::streamoff offset) {
  std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
  stream.seekg(offset);
  const char byte = static_cast<char>(stream.get() ^ 0x5A);
  stream.seekp(offset);
  stream.put(byte);
}

class StoreDamagedWal : public ::testing::Test {
 protected:
  void SetUp() override {
    const pid_t child =
        testing::spawnSelf("StoreDamagedWalLaunch.WritesAndEnds", {{kDirVariable, dir_.string()}});
    ASSERT_GT(child, 0);
    ASSERT_EQ(testing::waitForExit(child), 0);
    frames_ = (fs::file_size(wal_) - kWalHeader) / kFrame;
    ASSERT_GE(frames_, 3u);
  }

  std::string lostLine(const std::string& damage) const {
    return "Cannot read all of " + wal_.string() + ": " + damage +
           "; the changes from there on are lost.";
  }

  OSStatus lookUp(const char* service) {
    auto store = KeychainStore::openFile(dir_);
    KeychainQuery query;
    query.service = service;
    std::vector<KeychainItem> found;
    return store->copyMatching(query, found);
  }

  testing::TemporaryDirectory temporary_;
  const fs::path dir_ = temporary_.path();
  const fs::path wal_ = dir_ / "keychain.db-wal";
  std::size_t frames_ = 0;
};

TEST_F(StoreDamagedWal, AnIntactLogIsReadSilently) {
  auto sink = CaptureLogSink::install();
  EXPECT_EQ(lookUp("three"), errSecSuccess);
  EXPECT_TRUE(sink->messages().empty());
}

TEST_F(StoreDamagedWal, ADamagedLastFrameIsReported) {
  flipByte(wal_, static_cast<std::streamoff>(kWalHeader + (frames_ - 1) * kFrame + 100));
  auto sink = CaptureLogSink::install();
  EXPECT_EQ(lookUp("one"), errSecSuccess);
  EXPECT_EQ(lookUp("three"), errSecItemNotFound);
  const auto line = sink->find(lostLine("frame " + std::to_string(frames_) + " is damaged"));
  ASSERT_TRUE(line);
  EXPECT_EQ(line->level, LogLevel::fault);
}

TEST_F(StoreDamagedWal, ALogCutInsideAFrameIsReported) {
  fs::resize_file(wal_, fs::file_size(wal_) - 10);
  auto sink = CaptureLogSink::install();
  EXPECT_EQ(lookUp("three"), errSecItemNotFound);
  EXPECT_EQ(sink->count(lostLine("the file ends inside frame " + std::to_string(frames_))), 1u);
}

TEST_F(StoreDamagedWal, ADamagedHeaderIsReported) {
  flipByte(wal_, 12);
  auto sink = CaptureLogSink::install();
  EXPECT_EQ(lookUp("one"), errSecItemNotFound);
  EXPECT_EQ(sink->count(lostLine("the header is damaged")), 1u);
}

TEST_F(StoreDamagedWal, ADamagedSaltIsNotTakenForAnOlderFrame) {
  flipByte(wal_, static_cast<std::streamoff>(kWalHeader + kFrame + 9));
  auto sink = CaptureLogSink::install();
  EXPECT_EQ(lookUp("three"), errSecItemNotFound);
  EXPECT_EQ(sink->count(lostLine("frame 2 is damaged")), 1u);
}

}  // namespace
}  // namespace vorn
