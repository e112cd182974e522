#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include "storage/secure_prefs_support.hpp"
#include "vorn/storage/crypto/Base64.hpp"
#include "vorn/storage/prefs/SecurePrefs.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

using test::managerWithKeyByte;
using test::TableDefaults;
using testing::CaptureLogSink;

constexpr std::string_view kSuite = "com.quorvantis.tessarine_APP1_R_push";

class SecurePrefsEntries : public ::testing::Test {
 protected:
  std::shared_ptr<TableDefaults> store = std::make_shared<TableDefaults>();
  std::shared_ptr<EncryptionManager> manager = managerWithKeyByte(1);
  std::shared_ptr<SecurePrefs> prefs = open(manager);

  std::shared_ptr<SecurePrefs> open(std::shared_ptr<EncryptionManager> with,
                                    std::string_view suite = kSuite) {
    return std::make_shared<SecurePrefs>(store->suite(std::string(suite)), std::move(with));
  }
};

TEST_F(SecurePrefsEntries, StringsRoundTripAndAbsentStaysDifferentFromEmpty) {
  EXPECT_EQ(prefs->stringFor("missing"), std::nullopt);
  EXPECT_TRUE(prefs->setString("", "empty"));
  EXPECT_EQ(prefs->stringFor("empty"), "");
  EXPECT_TRUE(prefs->setString("\xE2\x82\xAC uro \xF0\x9F\x98\x80", "\xC3\xA9t\xC3\xA9"));
  EXPECT_EQ(prefs->stringFor("\xC3\xA9t\xC3\xA9"), "\xE2\x82\xAC uro \xF0\x9F\x98\x80");
  EXPECT_TRUE(prefs->setString("second", "empty"));
  EXPECT_EQ(prefs->stringFor("empty"), "second");
  EXPECT_EQ(prefs->suiteName(), kSuite);
}

TEST_F(SecurePrefsEntries, StoredKeyIsBase64OfTheEncryptedKeyAndValueIsBinary) {
  ASSERT_TRUE(prefs->setString("a value of some length", "token"));
  ASSERT_TRUE(prefs->setString("replaced value", "token"));  // same key: still one entry
  const auto entries = store->entries(kSuite);
  ASSERT_EQ(entries.size(), 1u);
  const auto& [storedKey, storedValue] = *entries.begin();
  EXPECT_EQ(storedKey, base64Encode(manager->encrypt("token").value()));
  const auto keyBytes = dataFromBase64String(storedKey);
  ASSERT_TRUE(keyBytes.has_value());
  EXPECT_EQ(keyBytes->size() % 16, 0u);
  const auto* data = std::get_if<DefaultsData>(&storedValue);
  ASSERT_NE(data, nullptr) << "values are stored as binary data";
  EXPECT_EQ(data->size() % 16, 0u);
  EXPECT_EQ(manager->decrypt(*data), "replaced value");
}

TEST_F(SecurePrefsEntries, RemoveDeletesOnlyThatEntry) {
  prefs->setString("1", "a");
  prefs->setString("2", "b");
  EXPECT_TRUE(prefs->remove("a"));
  EXPECT_TRUE(prefs->remove("never set"));
  EXPECT_EQ(prefs->stringFor("a"), std::nullopt);
  EXPECT_EQ(prefs->stringFor("b"), "2");
  EXPECT_EQ(store->entries(kSuite).size(), 1u);
}

TEST_F(SecurePrefsEntries, TwoInstancesOfOneSuiteShareEntries) {
  auto other = open(manager);
  prefs->setString("from first", "k1");
  other->setString("from second", "k2");
  EXPECT_EQ(other->stringFor("k1"), "from first");
  EXPECT_EQ(prefs->stringFor("k2"), "from second");
  other->remove("k1");
  EXPECT_EQ(prefs->stringFor("k1"), std::nullopt);
}

TEST_F(SecurePrefsEntries, AnotherModuleKeyInTheSameSuiteSeesNothing) {
  auto cdp = open(managerWithKeyByte(100));
  prefs->setString("push value", "shared key");
  cdp->setString("cdp value", "shared key");
  EXPECT_EQ(prefs->stringFor("shared key"), "push value");
  EXPECT_EQ(cdp->stringFor("shared key"), "cdp value");
  EXPECT_EQ(store->entries(kSuite).size(), 2u);
}

TEST_F(SecurePrefsEntries, SuitesAreSeparate) {
  auto elsewhere = open(manager, "com.quorvantis.tessarine_APP1_R_cdp");
  prefs->setString("here", "k");
  EXPECT_EQ(elsewhere->stringFor("k"), std::nullopt);
}

TEST_F(SecurePrefsEntries, FailedWriteIsReported) {
  store->failWrites(true);
  EXPECT_FALSE(prefs->setString("v", "k"));
  store->failWrites(false);
  EXPECT_EQ(prefs->stringFor("k"), std::nullopt);
}

TEST_F(SecurePrefsEntries, UnreadableStoredValuesReadAsAbsent) {
  prefs->setString("v", "k");
  const std::string storedKey = store->entries(kSuite).begin()->first;
  store->set(kSuite, storedKey, DefaultsValue(std::string("text, not data")));
  EXPECT_EQ(prefs->stringFor("k"), std::nullopt);
  store->set(kSuite, storedKey, DefaultsValue(DefaultsData(15, 0x41)));
  EXPECT_EQ(prefs->stringFor("k"), std::nullopt);
  store->set(kSuite, storedKey, DefaultsValue(managerWithKeyByte(9)->encrypt("v").value()));
  EXPECT_NE(prefs->stringFor("k"), "v");
}

TEST_F(SecurePrefsEntries, EncryptionFailuresLogAndStoreNothing) {
  auto sink = CaptureLogSink::install();
  EXPECT_FALSE(prefs->setString("v", "bad\xFFkey"));
  EXPECT_FALSE(prefs->setString("bad\xFFvalue", "good key"));
  EXPECT_EQ(prefs->stringFor("bad\xFFkey"), std::nullopt);
  EXPECT_FALSE(prefs->remove("bad\xFFkey"));
  EXPECT_TRUE(store->entries(kSuite).empty());

  EXPECT_EQ(sink->messages(),
            (std::vector<std::string>{
                "Failed to encrypt key: \"bad\xFFkey\"",
                "Failed to encrypt value: \"good key\"",
                "Failed to return value by key, because key: \"bad\xFFkey\" could not be "
                "re-encrypted.",
                "Failed to return value by key, because key: \"bad\xFFkey\" could not be "
                "re-encrypted.",
            }));
  for (const auto& line : sink->lines()) {
    EXPECT_EQ(line.level, LogLevel::debug);
    EXPECT_EQ(line.category, LoggerCategory::storage);
  }
}

TEST_F(SecurePrefsEntries, ReadStringsAnswersEachKeyLikeReadString) {
  prefs->setString("one", "a");
  prefs->setString("two", "b");
  const std::array<std::string_view, 3> keys{"b", "missing", "a"};
  auto values = prefs->readStrings(keys);
  ASSERT_EQ(values.size(), 3u);
  EXPECT_EQ(values[0].value(), "two");
  EXPECT_TRUE(values[1].isAbsent());
  EXPECT_EQ(values[2].value(), "one");

  for (const auto& [storedKey, value] : store->entries(kSuite))
    store->set(kSuite, storedKey, DefaultsValue(DefaultsData(15, 0x41)));
  values = prefs->readStrings(keys);
  EXPECT_TRUE(values[0].isAbsent() && values[2].isAbsent());
}

TEST_F(SecurePrefsEntries, ReadStringsOfAKeyThatCannotBeEncryptedReadsNothing) {
  prefs->setString("v", "good");
  auto sink = CaptureLogSink::install();
  const std::array<std::string_view, 2> keys{"good", "bad\xFFkey"};
  const auto values = prefs->readStrings(keys);
  ASSERT_EQ(values.size(), 2u);
  EXPECT_TRUE(values[0].isError() && values[1].isError());
  EXPECT_EQ(sink->messages(),
            (std::vector<std::string>{"Failed to return value by key, because key: \"bad\xFFkey\" "
                                      "could not be re-encrypted."}));
}

TEST_F(SecurePrefsEntries, KeylessManagerFailsOnTheKeyFirst) {
  auto sink = CaptureLogSink::install();
  auto keyless = open(std::make_shared<EncryptionManager>(nullptr));
  EXPECT_FALSE(keyless->setString("v", "k"));
  EXPECT_EQ(keyless->stringFor("k"), std::nullopt);
  EXPECT_EQ(sink->messages(),
            (std::vector<std::string>{
                "Failed to encrypt key: \"k\"",
                "Failed to return value by key, because key: \"k\" could not be re-encrypted."}));
}

TEST_F(SecurePrefsEntries, ClearAllDeletesTheSuiteAndDisablesTheInstance) {
  auto sink = CaptureLogSink::install();
  auto other = open(manager);
  prefs->setString("v", "k");
  auto elsewhere = open(manager, "com.quorvantis.tessarine_APP1_R_cdp");
  elsewhere->setString("kept", "k");

  prefs->clearAll();
  EXPECT_FALSE(prefs->isLive());
  EXPECT_TRUE(store->entries(kSuite).empty());
  EXPECT_EQ(other->stringFor("k"), std::nullopt);
  EXPECT_EQ(elsewhere->stringFor("k"), "kept");
  EXPECT_EQ(sink->count("Cleared all data. Further calls to this instance will do nothing."), 1u);

  EXPECT_FALSE(prefs->setString("again", "k"));
  EXPECT_FALSE(prefs->setInt(3, "n"));
  EXPECT_TRUE(store->entries(kSuite).empty());
  const std::string cleared =
      "Storage has been previously cleared on instance: " + std::string(kSuite) +
      ", please re-initialize a new SecurePref object";
  EXPECT_EQ(sink->count(cleared), 2u);
  EXPECT_EQ(sink->find(cleared)->category, LoggerCategory::storage);

  EXPECT_FALSE(prefs->remove("k"));
  EXPECT_EQ(sink->count("Failed to remove value by key, because key: \"k\" doesn't exist."), 1u);

  // A live instance of the same suite writes again; the cleared one still reads nothing.
  EXPECT_TRUE(other->setString("new", "k"));
  EXPECT_EQ(other->stringFor("k"), "new");
  EXPECT_EQ(prefs->stringFor("k"), std::nullopt);
  prefs->clearAll();
  EXPECT_EQ(other->stringFor("k"), "new");
  EXPECT_EQ(sink->count("Cleared all data. Further calls to this instance will do nothing."), 1u);
}

}  // namespace
}  // namespace vorn

namespace vorn {
namespace {

TEST(SecurePrefsThreads, ConcurrentWritersAndReadersOfOneSuite) {
  auto store = DefaultsStore::inMemory();
  auto manager = test::managerWithKeyByte(5);
  auto prefs = std::make_shared<SecurePrefs>(store->suite("com.quorvantis.tessarine_T"), manager);
  constexpr int kThreads = 4;
  constexpr int kEntries = 200;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      SecurePrefs own(store->suite("com.quorvantis.tessarine_T"), manager);
      for (int i = 0; i < kEntries; ++i) {
        const std::string key = std::to_string(t) + "/" + std::to_string(i);
        EXPECT_TRUE(prefs->setString(key, key));
        EXPECT_EQ(own.stringFor(key), key);
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(prefs->stringFor("3/199"), "3/199");
}

TEST(SecurePrefsThreads, ClearAllWhileOthersWriteLeavesAnInertInstance) {
  auto store = DefaultsStore::inMemory();
  auto prefs = std::make_shared<SecurePrefs>(store->suite("com.quorvantis.tessarine_T"),
                                             test::managerWithKeyByte(5));
  std::thread writer([&] {
    for (int i = 0; i < 500; ++i) {
      prefs->setInt(i, "n" + std::to_string(i));
    }
  });
  prefs->clearAll();
  writer.join();
  EXPECT_FALSE(prefs->isLive());
  EXPECT_EQ(prefs->intFor("n499"), std::nullopt);
}

}  // namespace
}  // namespace vorn
