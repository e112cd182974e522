// The item wrapper: shared objects, write-through, and every failure status path with its
// exact log line, against the in-memory store behind fault injection.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "vorn/runtime/DispatchQueue.hpp"
#include "vorn/storage/keychain/VORNKeychainItemWrapper.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/FaultyKeychainStore.hpp"
#include "vorn/testing/PlatformInstall.hpp"

namespace vorn {
namespace {

using testing::CaptureLogSink;
using testing::FaultyKeychainStore;
using testing::KeychainOperation;

KeychainData bytes(std::string_view text) {
  return KeychainData(text.begin(), text.end());
}

std::string exception(std::string_view message) {
  return "com.quorvantis.security.keychainException - " + std::string(message);
}

class KeychainItemWrapperTest : public ::testing::Test {
 protected:
  void SetUp() override { testing::installEphemeralPlatform(store_); }

  std::optional<KeychainItem> stored(const std::string& service,
                                     std::optional<std::string> account = std::nullopt) {
    KeychainQuery query;
    query.service = service;
    query.account = std::move(account);
    query.returnAttributes = true;
    query.returnData = true;
    std::vector<KeychainItem> found;
    if (store_->inner()->copyMatching(query, found) != errSecSuccess)
      return std::nullopt;
    return found.front();
  }

  std::shared_ptr<FaultyKeychainStore> store_ = std::make_shared<FaultyKeychainStore>();
  std::shared_ptr<CaptureLogSink> sink_ = CaptureLogSink::install();
};

TEST_F(KeychainItemWrapperTest, CacheKeyUsesNullTextForMissingAccount) {
  EXPECT_EQ(VORNKeychainItemWrapper::itemDictKeyForIdentifier("svc", std::nullopt), "svc_(null)");
  EXPECT_EQ(VORNKeychainItemWrapper::itemDictKeyForIdentifier("svc", "acct"), "svc_acct");
  EXPECT_EQ(VORNKeychainItemWrapper::itemWithIdentifier("svc", std::nullopt),
            VORNKeychainItemWrapper::itemWithIdentifier("svc", "(null)"));
}

TEST_F(KeychainItemWrapperTest, SameKeySharesOneObjectUntilReset) {
  auto first = VORNKeychainItemWrapper::itemWithIdentifier("svc", "a");
  EXPECT_EQ(VORNKeychainItemWrapper::itemWithIdentifier("svc", "a"), first);
  EXPECT_NE(VORNKeychainItemWrapper::itemWithIdentifier("svc", "b"), first);
  const int readsBefore = store_->calls(KeychainOperation::copyMatching);

  // A change made behind the cache's back is seen only by objects made after the reset.
  ASSERT_EQ(store_->inner()->add(KeychainItem{"svc", "a", std::nullopt, bytes("outside"), {}}),
            errSecSuccess);
  EXPECT_FALSE(first->valueString().has_value());
  VORNKeychainItemWrapper::resetInMemoryKeychainItems();
  auto second = VORNKeychainItemWrapper::itemWithIdentifier("svc", "a");
  EXPECT_NE(second, first);
  EXPECT_EQ(store_->calls(KeychainOperation::copyMatching), readsBefore + 1);
  EXPECT_EQ(second->valueString(), "outside");
  EXPECT_FALSE(first->valueString().has_value());
}

TEST_F(KeychainItemWrapperTest, ConcurrentRequestsGetTheSameObject) {
  std::vector<std::shared_ptr<VORNKeychainItemWrapper>> seen(8);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < seen.size(); ++i)
    threads.emplace_back([&, i] { seen[i] = VORNKeychainItemWrapper::itemWithIdentifier("c"); });
  for (auto& thread : threads)
    thread.join();
  for (const auto& item : seen)
    EXPECT_EQ(item, seen.front());
}

TEST_F(KeychainItemWrapperTest, QueryAndPlaceholderOfAMissingItem) {
  VORNKeychainItemWrapper item("svc", "acct");
  EXPECT_EQ(item.keychainQuery().service, "svc");
  EXPECT_EQ(item.keychainQuery().account, "acct");
  EXPECT_EQ(item.keychainQuery().matchLimit, MatchLimit::one);
  EXPECT_TRUE(item.keychainQuery().returnAttributes);
  EXPECT_TRUE(item.keychainQuery().returnData);
  const KeychainDictionary expected{{std::string(kSecAttrService), std::string("svc")},
                                    {std::string(kSecAttrAccount), std::string("acct")}};
  EXPECT_EQ(item.keychainData(), expected);
  EXPECT_TRUE(sink_->lines().empty()) << "not found is not an error";
}

TEST_F(KeychainItemWrapperTest, LookupFailureIsLoggedAndLeavesOnlyTheName) {
  store_->failNext(KeychainOperation::copyMatching, errSecInteractionNotAllowed);
  VORNKeychainItemWrapper item("svc", std::nullopt);
  const auto line = sink_->find(
      exception("dictionaryItemFromKeychain: Error attempting to look up keychain item: "
                "errSecInteractionNotAllowed"));
  ASSERT_NE(line, nullptr) << ::testing::PrintToString(sink_->messages());
  EXPECT_EQ(line->level, LogLevel::debug);
  EXPECT_EQ(line->category, LoggerCategory::encryption);
  EXPECT_EQ(item.keychainData(),
            (KeychainDictionary{{std::string(kSecAttrService), std::string("svc")}}));
}

TEST_F(KeychainItemWrapperTest, FirstWriteAddsThenLaterWritesUpdate) {
  auto item = VORNKeychainItemWrapper::itemWithIdentifier("svc");
  ASSERT_EQ(item->setValueString("one"), errSecSuccess);
  EXPECT_EQ(store_->calls(KeychainOperation::add), 1);
  auto saved = stored("svc");
  ASSERT_TRUE(saved);
  EXPECT_EQ(saved->data, bytes("one"));
  EXPECT_EQ(saved->accessible, std::string(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly));
  EXPECT_EQ(std::get<std::string>(item->keychainData().at(std::string(kSecAttrAccessible))),
            kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);

  ASSERT_EQ(item->setValueData(bytes("two")), errSecSuccess);
  EXPECT_EQ(store_->calls(KeychainOperation::add), 1);
  EXPECT_EQ(store_->calls(KeychainOperation::update), 1);
  EXPECT_EQ(stored("svc")->data, bytes("two"));
  EXPECT_EQ(item->valueString(), "two");
}

TEST_F(KeychainItemWrapperTest, EqualValueMakesNoKeychainCall) {
  auto item = VORNKeychainItemWrapper::itemWithIdentifier("svc");
  ASSERT_EQ(item->setValueString("same"), errSecSuccess);
  const int callsBefore = store_->totalCalls();
  EXPECT_EQ(item->setValueString("same"), errSecSuccess);
  EXPECT_EQ(store_->totalCalls(), callsBefore);
  EXPECT_EQ(sink_->count("Value already stored in the keychain. No action taken."), 1u);
}

TEST_F(KeychainItemWrapperTest, NullRemovesTheValueAndWritesWithoutIt) {
  auto item = VORNKeychainItemWrapper::itemWithIdentifier("svc");
  ASSERT_EQ(item->setValueString("v"), errSecSuccess);
  ASSERT_EQ(item->setValueData(std::nullopt), errSecSuccess);
  EXPECT_FALSE(item->valueData().has_value());
  const auto update = store_->lastUpdate();
  ASSERT_TRUE(update);
  EXPECT_FALSE(update->second.data.has_value());
  EXPECT_EQ(update->second.accessible,
            std::string(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly));
}

TEST_F(KeychainItemWrapperTest, FailedUpdateRestoresThePreviousValue) {
  auto item = VORNKeychainItemWrapper::itemWithIdentifier("svc");
  ASSERT_EQ(item->setValueString("old"), errSecSuccess);
  store_->failNext(KeychainOperation::update, errSecInteractionNotAllowed);
  EXPECT_EQ(item->setValueString("new"), errSecInteractionNotAllowed);
  EXPECT_EQ(item->valueString(), "old");
  EXPECT_EQ(stored("svc")->data, bytes("old"));
  EXPECT_TRUE(sink_->contains(
      exception("writeToKeychain: Error updating keychain item: errSecInteractionNotAllowed.")));
  EXPECT_TRUE(sink_->contains(exception(
      "setObject:forKey:: Error saving value to the keychain: errSecInteractionNotAllowed.")));
}

TEST_F(KeychainItemWrapperTest, FailedFirstAddKeepsTheNewValueInMemory) {
  auto item = VORNKeychainItemWrapper::itemWithIdentifier("svc");
  store_->failNext(KeychainOperation::add, errSecNotAvailable);
  EXPECT_EQ(item->setValueString("unsaved"), errSecNotAvailable);
  EXPECT_EQ(item->valueString(), "unsaved");
  EXPECT_FALSE(stored("svc").has_value());
  EXPECT_TRUE(sink_->contains(
      exception("writeToKeychain: Error adding keychain item: errSecNotAvailable.")));
  EXPECT_TRUE(sink_->contains(
      exception("setObject:forKey:: Error saving value to the keychain: errSecNotAvailable.")));
}

TEST_F(KeychainItemWrapperTest, LookupErrorDuringWriteTriesAnAdd) {
  auto item = VORNKeychainItemWrapper::itemWithIdentifier("svc");
  ASSERT_EQ(item->setValueString("v1"), errSecSuccess);
  store_->failNext(KeychainOperation::copyMatching, errSecAuthFailed);
  EXPECT_EQ(item->setValueString("v2"), errSecDuplicateItem);
  EXPECT_EQ(item->valueString(), "v1");
  EXPECT_TRUE(sink_->contains(
      exception("writeToKeychain: Error adding keychain item: errSecDuplicateItem.")));
}

TEST_F(KeychainItemWrapperTest, EveryStatusOfAFailedWriteIsReturned) {
  for (OSStatus status : {errSecUnimplemented, errSecParam, errSecAllocate, errSecNotAvailable,
                          errSecAuthFailed, errSecInteractionNotAllowed, errSecDecode, -12345}) {
    auto item = VORNKeychainItemWrapper::itemWithIdentifier("svc" + std::to_string(status));
    store_->failNext(KeychainOperation::add, status);
    EXPECT_EQ(item->setValueString("v"), status);
    EXPECT_TRUE(
        sink_->contains(exception("writeToKeychain: Error adding keychain item: " +
                                  VORNKeychainItemWrapper::keychainErrorCodeString(status) + ".")));
  }
}

TEST_F(KeychainItemWrapperTest, ResetDeletesAndAnswersTrueWhenAbsent) {
  auto item = VORNKeychainItemWrapper::itemWithIdentifier("svc", "a");
  EXPECT_TRUE(item->resetKeychainItem());
  ASSERT_EQ(item->setValueString("v"), errSecSuccess);
  EXPECT_TRUE(item->resetKeychainItem());
  EXPECT_FALSE(stored("svc", "a").has_value());
  EXPECT_EQ(item->keychainData(),
            (KeychainDictionary{{std::string(kSecAttrService), std::string("svc")},
                                {std::string(kSecAttrAccount), std::string("a")}}));
}

TEST_F(KeychainItemWrapperTest, FailedResetKeepsTheItem) {
  auto item = VORNKeychainItemWrapper::itemWithIdentifier("svc");
  ASSERT_EQ(item->setValueString("v"), errSecSuccess);
  store_->failNext(KeychainOperation::remove, errSecInteractionNotAllowed);
  EXPECT_FALSE(item->resetKeychainItem());
  EXPECT_EQ(item->valueString(), "v");
  EXPECT_TRUE(stored("svc").has_value());
  EXPECT_TRUE(sink_->contains(
      exception("resetKeychainItem: Error deleting keychain item: errSecInteractionNotAllowed.")));
}

TEST_F(KeychainItemWrapperTest, StringForKeyDecodesUtf8Only) {
  auto item = VORNKeychainItemWrapper::itemWithIdentifier("svc");
  ASSERT_EQ(item->setValueData(KeychainData{0xC3, 0xA9}), errSecSuccess);
  EXPECT_EQ(item->valueString(), "\xC3\xA9");
  ASSERT_EQ(item->setValueData(KeychainData{0xFF, 0xFE, 0x41}), errSecSuccess);
  EXPECT_FALSE(item->valueString().has_value());
  EXPECT_EQ(item->valueData(), (KeychainData{0xFF, 0xFE, 0x41}));
  EXPECT_FALSE(item->stringForKey("absent").has_value());
}

TEST_F(KeychainItemWrapperTest, SecItemFormatForcesClassAccessibilityAndBytes) {
  VORNKeychainItemWrapper item("svc", std::nullopt);
  const KeychainDictionary formatted = item.dictionaryToSecItemFormat(
      {{std::string(kSecValueData), std::string("text")},
       {std::string(kSecAttrAccessible), std::string(kSecAttrAccessibleAlways)}});
  EXPECT_EQ(std::get<std::string>(formatted.at(std::string(kSecClass))), kSecClassGenericPassword);
  EXPECT_EQ(std::get<std::string>(formatted.at(std::string(kSecAttrAccessible))),
            kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
  EXPECT_EQ(std::get<KeychainData>(formatted.at(std::string(kSecValueData))), bytes("text"));
}

TEST(KeychainStatusTextTest, TableAndUnknownCodes) {
  const std::vector<std::pair<OSStatus, std::string>> table{
      {0, "errSecSuccess"},
      {-4, "errSecUnimplemented"},
      {-50, "errSecParam"},
      {-108, "errSecAllocate"},
      {-25291, "errSecNotAvailable"},
      {-25293, "errSecAuthFailed"},
      {-25299, "errSecDuplicateItem"},
      {-25300, "errSecItemNotFound"},
      {-25308, "errSecInteractionNotAllowed"},
      {-26275, "errSecDecode"},
      {-12345, "Unknown status code (-12345)"},
      {1, "Unknown status code (1)"}};
  for (const auto& [status, text] : table)
    EXPECT_EQ(VORNKeychainItemWrapper::keychainErrorCodeString(status), text);
}

TEST(KeychainExceptionLogTest, FormatIgnoresTheCode) {
  auto sink = CaptureLogSink::install();
  VORNKeychainItemWrapper::logKeychainItemExceptionWithCode(7, "message");
  const auto line = sink->find("com.quorvantis.security.keychainException - message");
  ASSERT_NE(line, nullptr);
  EXPECT_EQ(line->category, LoggerCategory::encryption);
  EXPECT_EQ(line->level, LogLevel::debug);
}

TEST(KeychainProtectedDataTest, AskedOnTheMainQueue) {
  Platform platform = Platform::ephemeral();
  auto mainQueue = std::make_shared<DispatchQueue>("test.main");
  std::atomic<int> askedOnMain{0};
  platform.mainQueue = mainQueue;
  platform.protectedDataAvailable = [&] {
    if (DispatchQueue::current() == mainQueue.get())
      ++askedOnMain;
    return false;
  };
  Platform::install(platform);
  EXPECT_FALSE(VORNKeychainItemWrapper::checkForProtectedData());
  EXPECT_EQ(askedOnMain.load(), 1);
  // From the main queue itself it asks directly instead of waiting for itself.
  const bool fromMain =
      mainQueue->sync([] { return VORNKeychainItemWrapper::checkForProtectedData(); });
  EXPECT_FALSE(fromMain);
  EXPECT_EQ(askedOnMain.load(), 2);
}

}  // namespace
}  // namespace vorn
