// A store file that SQLite refuses to open (its header damaged: "file is not a database")
// used to be swapped for an empty in-memory store for the launch, so every item read as
// absent and callers made new key material. The store now keeps the file as it is, answers
// every call with an error after one line, and opens the file once it is readable again.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "vorn/platform/Platform.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;
using testing::CaptureLogSink;

std::string contentsOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(stream), {});
}

void overwriteStart(const fs::path& file, const std::string& bytes) {
  std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

KeychainQuery queryOf(std::string service) {
  KeychainQuery query;
  query.service = std::move(service);
  query.returnData = true;
  return query;
}

class StoreUnopenableFile : public ::testing::Test {
 protected:
  // Writes through a first launch, whose stores are closed when it returns.
  void SetUp() override {
    const Platform first = Platform::defaultPlatform(dir_.path());
    KeychainItem item;
    item.service = "svc";
    item.data = KeychainData{5};
    ASSERT_EQ(first.keychain->add(item), errSecSuccess);
    ASSERT_TRUE(first.defaults->setString("", "stored", "key"));
  }

  // Damages the header of `name`; returns the original header.
  std::string damageHeader(const std::string& name) {
    const std::string original = contentsOf(dir_.path() / name).substr(0, 16);
    overwriteStart(dir_.path() / name, std::string(16, 'X'));
    return original;
  }

  std::string notADatabaseLine(const std::string& name) const {
    return "Cannot open the store " + (dir_.path() / name).string() + ": file is not a database";
  }

  testing::TemporaryDirectory dir_;
};

TEST_F(StoreUnopenableFile, TheKeyStoreAnswersErrorsKeepsTheFileAndHeals) {
  const std::string header = damageHeader("keychain.db");
  const std::string damaged = contentsOf(dir_.path() / "keychain.db");
  auto sink = CaptureLogSink::install();
  const Platform platform = Platform::defaultPlatform(dir_.path());

  std::vector<KeychainItem> found;
  EXPECT_EQ(platform.keychain->copyMatching(queryOf("svc"), found), errSecNotAvailable);
  KeychainItem other;
  other.service = "other";
  EXPECT_EQ(platform.keychain->add(other), errSecNotAvailable);
  EXPECT_EQ(platform.keychain->remove(queryOf("svc")), errSecNotAvailable);
  EXPECT_EQ(sink->count(notADatabaseLine("keychain.db")), 1u);
  const auto line = sink->find(notADatabaseLine("keychain.db"));
  ASSERT_TRUE(line);
  EXPECT_EQ(line->level, LogLevel::fault);
  EXPECT_EQ(contentsOf(dir_.path() / "keychain.db"), damaged);

  overwriteStart(dir_.path() / "keychain.db", header);
  ASSERT_EQ(platform.keychain->copyMatching(queryOf("svc"), found), errSecSuccess);
  EXPECT_EQ(found.at(0).data, KeychainData{5});
}

TEST_F(StoreUnopenableFile, TheDefaultsStoreFailsWritesKeepsTheFileAndHeals) {
  const std::string header = damageHeader("defaults.db");
  const std::string damaged = contentsOf(dir_.path() / "defaults.db");
  auto sink = CaptureLogSink::install();
  const Platform platform = Platform::defaultPlatform(dir_.path());

  EXPECT_TRUE(platform.defaults->read("", "key").isError());
  EXPECT_FALSE(platform.defaults->setString("", "replaced", "key"));
  EXPECT_FALSE(platform.defaults->removePersistentDomain(""));
  EXPECT_EQ(sink->count(notADatabaseLine("defaults.db")), 1u);
  EXPECT_EQ(contentsOf(dir_.path() / "defaults.db"), damaged);

  overwriteStart(dir_.path() / "defaults.db", header);
  EXPECT_EQ(platform.defaults->stringFor("", "key"), "stored");
}

}  // namespace
}  // namespace vorn
