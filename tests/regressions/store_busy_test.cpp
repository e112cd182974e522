// A store file locked by another connection used to read as absent: at launch the key store
// fell back to an empty in-memory store (every item absent, so callers made new keys), and
// later every SQLite failure, a lock included, answered the same errSecNotAvailable. A lock
// now answers errSecInteractionNotAllowed, and a file locked at launch is opened once the
// lock goes.
#include <gtest/gtest.h>

#include <string>

#include "platform/RawSqlite.hpp"
#include "vorn/platform/Platform.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"
#include "vorn/testing/TimeScale.hpp"

namespace vorn {
namespace {

using testing::CaptureLogSink;
using testing::RawSqlite;

constexpr double kShortBusyWait = 0.01;

KeychainItem itemOf(std::string service) {
  KeychainItem item;
  item.service = std::move(service);
  item.data = KeychainData{7};
  return item;
}

KeychainQuery queryOf(std::string service) {
  KeychainQuery query;
  query.service = std::move(service);
  query.returnData = true;
  return query;
}

// Keeps every other connection out of the file, as a program in exclusive locking mode does.
void lockExclusively(RawSqlite& other) {
  ASSERT_TRUE(other.execute("PRAGMA locking_mode=EXCLUSIVE"));
  ASSERT_TRUE(other.execute("BEGIN EXCLUSIVE"));
  ASSERT_TRUE(other.execute("COMMIT"));
}

class StoreBusy : public ::testing::Test {
 protected:
  void SetUp() override {
    auto keychain = KeychainStore::openFile(dir_.path());
    auto defaults = DefaultsStore::openFile(dir_.path());
    ASSERT_TRUE(keychain && defaults);
    ASSERT_EQ(keychain->add(itemOf("svc")), errSecSuccess);
    ASSERT_TRUE(defaults->setString("", "stored", "key"));
  }

  testing::TemporaryDirectory dir_;
  testing::ScopedTimeScale shortWaits_{kShortBusyWait};
};

TEST_F(StoreBusy, AKeyStoreLockedAtLaunchAnswersBusyThenOpens) {
  auto other = std::make_unique<RawSqlite>(dir_.path() / "keychain.db");
  lockExclusively(*other);
  auto sink = CaptureLogSink::install();
  const Platform platform = Platform::defaultPlatform(dir_.path());
  std::vector<KeychainItem> found;
  EXPECT_EQ(platform.keychain->copyMatching(queryOf("svc"), found), errSecInteractionNotAllowed);
  EXPECT_EQ(platform.keychain->add(itemOf("new")), errSecInteractionNotAllowed);
  const std::string line =
      "Cannot open the store " + (dir_.path() / "keychain.db").string() + ": database is locked";
  EXPECT_EQ(sink->count(line), 1u);
  other.reset();
  ASSERT_EQ(platform.keychain->copyMatching(queryOf("svc"), found), errSecSuccess);
  EXPECT_EQ(found.at(0).data, KeychainData{7});
}

TEST_F(StoreBusy, AKeyStoreWriteBehindAnotherWriterIsNotReadAsMissing) {
  auto store = KeychainStore::openFile(dir_.path());
  RawSqlite other(dir_.path() / "keychain.db");
  ASSERT_TRUE(other.execute("BEGIN IMMEDIATE"));
  auto sink = CaptureLogSink::install();
  EXPECT_EQ(store->add(itemOf("new")), errSecInteractionNotAllowed);
  EXPECT_EQ(store->update(queryOf("svc"), itemOf("svc")), errSecInteractionNotAllowed);
  EXPECT_EQ(sink->count("Keychain store failure: database is locked"), 2u);
  std::vector<KeychainItem> found;
  EXPECT_EQ(store->copyMatching(queryOf("svc"), found), errSecSuccess);
  ASSERT_TRUE(other.execute("ROLLBACK"));
  EXPECT_EQ(store->add(itemOf("new")), errSecSuccess);
}

TEST_F(StoreBusy, ADefaultsStoreLockedAtLaunchFailsWritesThenOpens) {
  auto other = std::make_unique<RawSqlite>(dir_.path() / "defaults.db");
  lockExclusively(*other);
  auto sink = CaptureLogSink::install();
  const Platform platform = Platform::defaultPlatform(dir_.path());
  EXPECT_FALSE(platform.defaults->setString("", "lost", "key"));
  EXPECT_FALSE(platform.defaults->object("", "key"));
  const std::string line =
      "Cannot open the store " + (dir_.path() / "defaults.db").string() + ": database is locked";
  EXPECT_EQ(sink->count(line), 1u);
  other.reset();
  EXPECT_EQ(platform.defaults->stringFor("", "key"), "stored");
}

}  // namespace
}  // namespace vorn
