// The stores opened for reading only: they read what a writer stored, refuse every write
// cleanly, and neither create nor change a file in the data directory.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "vorn/logging/Log.hpp"
#include "vorn/platform/DefaultsStore.hpp"
#include "vorn/platform/KeychainStore.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;

KeychainData bytes(std::string_view text) {
  return KeychainData(text.begin(), text.end());
}

std::map<std::string, std::string> snapshot(const fs::path& directory) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::directory_iterator(directory)) {
    std::ifstream in(entry.path(), std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    files[entry.path().filename().string()] = text.str();
  }
  return files;
}

KeychainItem item(std::string service, std::string_view value) {
  KeychainItem made;
  made.service = std::move(service);
  made.account = "account";
  made.data = bytes(value);
  return made;
}

KeychainKey key(std::string tag) {
  return KeychainKey{std::move(tag), KeychainKeyType::ec, KeychainKeyClass::privateKey, 256,
                     std::nullopt,   bytes("der bytes")};
}

KeychainQuery query(std::string service) {
  KeychainQuery made;
  made.service = std::move(service);
  made.returnAttributes = true;
  made.returnData = true;
  return made;
}

// Writes one item, one key and one default, then closes the stores.
void fill(const fs::path& directory) {
  auto keychain = KeychainStore::openFile(directory);
  auto defaults = DefaultsStore::openFile(directory);
  ASSERT_EQ(keychain->add(item("com.example.service", "secret")), errSecSuccess);
  ASSERT_EQ(keychain->storeKey(key("com.example.tag")), errSecSuccess);
  ASSERT_TRUE(defaults->setString("com.example.suite", "value", "key"));
}

TEST(ReadOnlyStoresTest, WithoutTheFileThereIsNoStoreAndNothingIsMade) {
  testing::TemporaryDirectory dir;
  EXPECT_EQ(KeychainStore::openFileReadOnly(dir.path()), nullptr);
  EXPECT_EQ(DefaultsStore::openFileReadOnly(dir.path()), nullptr);
  EXPECT_TRUE(fs::is_empty(dir.path()));
  EXPECT_EQ(KeychainStore::openFileReadOnly(dir.path() / "missing"), nullptr);
  EXPECT_FALSE(fs::exists(dir.path() / "missing"));
}

TEST(ReadOnlyStoresTest, ReadsWhatWasStoredAndRefusesEveryWrite) {
  testing::TemporaryDirectory dir;
  fill(dir.path());
  const auto before = snapshot(dir.path());
  const auto sink = testing::CaptureLogSink::install(LogLevel::debug);
  {
    auto keychain = KeychainStore::openFileReadOnly(dir.path());
    auto defaults = DefaultsStore::openFileReadOnly(dir.path());
    ASSERT_NE(keychain, nullptr);
    ASSERT_NE(defaults, nullptr);

    std::vector<KeychainItem> found;
    ASSERT_EQ(keychain->copyMatching(query("com.example.service"), found), errSecSuccess);
    EXPECT_EQ(found.at(0).data, bytes("secret"));
    KeychainKey loaded;
    ASSERT_EQ(keychain->loadKey("com.example.tag", std::nullopt, loaded), errSecSuccess);
    KeychainKey stored = key("com.example.tag");
    stored.accessible = std::string(kSecAttrAccessibleWhenUnlocked);
    EXPECT_EQ(loaded, stored);
    EXPECT_EQ(defaults->stringFor("com.example.suite", "key"), "value");
    EXPECT_TRUE(defaults->read("com.example.suite", "other").isAbsent());

    EXPECT_EQ(keychain->add(item("com.example.other", "new")), errSecNotAvailable);
    EXPECT_EQ(keychain->update(query("com.example.service"), item("com.example.service", "x")),
              errSecNotAvailable);
    EXPECT_EQ(keychain->remove(query("com.example.service")), errSecNotAvailable);
    EXPECT_EQ(keychain->storeKey(key("com.example.other")), errSecNotAvailable);
    EXPECT_EQ(keychain->deleteKey("com.example.tag"), errSecNotAvailable);
    bool ran = false;
    EXPECT_EQ(keychain->exclusively([&] { ran = true; }), errSecNotAvailable);
    EXPECT_FALSE(ran);

    EXPECT_FALSE(defaults->setString("com.example.suite", "changed", "key"));
    EXPECT_FALSE(defaults->remove("com.example.suite", "key"));
    EXPECT_FALSE(defaults->removePersistentDomain("com.example.suite"));
    EXPECT_EQ(sink->count("Defaults store failure: attempt to write a readonly database"), 3u);
    EXPECT_EQ(sink->count("Keychain store failure: attempt to write a readonly database"), 5u)
        << ::testing::PrintToString(sink->messages());
    EXPECT_EQ(sink->count("Keychain store failure: no exclusive section on a read-only store"), 1u);

    EXPECT_EQ(defaults->stringFor("com.example.suite", "key"), "value");
  }
  EXPECT_EQ(snapshot(dir.path()), before);
}

TEST(ReadOnlyStoresTest, SeesWhatALiveWriterCommitsAfterIt) {
  testing::TemporaryDirectory dir;
  auto writer = DefaultsStore::openFile(dir.path());
  ASSERT_TRUE(writer->setString("com.example.suite", "first", "key"));
  auto reader = DefaultsStore::openFileReadOnly(dir.path());
  ASSERT_NE(reader, nullptr);
  EXPECT_EQ(reader->stringFor("com.example.suite", "key"), "first");
  ASSERT_TRUE(writer->setString("com.example.suite", "second", "key"));
  EXPECT_EQ(reader->stringFor("com.example.suite", "key"), "second");
}

}  // namespace
}  // namespace vorn
