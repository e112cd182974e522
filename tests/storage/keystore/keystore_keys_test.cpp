#include <gtest/gtest.h>

#include <random>

#include "storage/CountingKeychain.hpp"
#include "storage/CryptoTestSupport.hpp"
#include "vorn/storage/keychain/VORNCrypto.hpp"
#include "vorn/storage/keychain/VORNKeychainItemWrapper.hpp"
#include "vorn/storage/keystore/VORNGeneratedKeyStore.hpp"
#include "vorn/storage/keystore/VORNSecureEncryptionKey.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

using cryptotest::bytesOf;

class KeyStoreKeys : public ::testing::Test {
 protected:
  void SetUp() override { keychain_ = cryptotest::installCountingPlatform(); }
  std::shared_ptr<cryptotest::CountingKeychain> keychain_;
};

TEST_F(KeyStoreKeys, PlainKeyEncryptsWithAes256UnderItsOwnVector) {
  const auto key = VORNEncryptionKey::createKey();
  ASSERT_TRUE(key);
  const auto sealed = key->encryptData(bytesOf("hello"));
  ASSERT_TRUE(sealed);
  EXPECT_EQ(sealed->size(), 16u);
  EXPECT_EQ(sealed, key->encryptData(bytesOf("hello")));  // deterministic: fixed vector
  EXPECT_EQ(key->decryptData(*sealed), bytesOf("hello"));
  EXPECT_EQ(key->keyAsString().size(), 44u);
  EXPECT_EQ(key->initializationVectorAsString().size(), 24u);
  EXPECT_TRUE(key->isEqual(VORNEncryptionKey(key->key(), key->initializationVector())));
  EXPECT_FALSE(key->isEqual(VORNEncryptionKey(key->key(), Bytes(16, 0))));
}

TEST_F(KeyStoreKeys, SecureKeyNeedsItsPairUnlessAutoCreated) {
  auto sink = testing::CaptureLogSink::install();
  EXPECT_FALSE(VORNSecureEncryptionKey::create("label", false));
  const auto made = VORNSecureEncryptionKey::create("label", true);
  ASSERT_TRUE(made);
  EXPECT_TRUE(sink->contains("Creating secure key NOT using secure enclave"));
  const auto found = VORNSecureEncryptionKey::retrieveKey("label");
  ASSERT_TRUE(found);
  const auto sealed = made->encryptData(bytesOf("secret"));
  ASSERT_TRUE(sealed);
  EXPECT_EQ(found->decryptData(*sealed), bytesOf("secret"));
  EXPECT_TRUE(found->isEqual(*made));
  // createKey replaces the pair, so earlier ciphertexts no longer open.
  const auto replaced = VORNSecureEncryptionKey::createKey("label");
  ASSERT_TRUE(replaced);
  EXPECT_FALSE(replaced->decryptData(*sealed));
  VORNSecureEncryptionKey::deleteKey("label");
  EXPECT_FALSE(VORNSecureEncryptionKey::retrieveKey("label"));
}

TEST_F(KeyStoreKeys, SecureKeyReportsItsSymmetricAccessorsAsUnsupported) {
  auto sink = testing::CaptureLogSink::install();
  const auto key = VORNSecureEncryptionKey::create("x", true);
  ASSERT_TRUE(key);
  EXPECT_TRUE(key->key().empty());
  EXPECT_TRUE(key->initializationVectorAsString().empty());
  const auto line = sink->find("key not supported on ZQSecureEncryptionKey.");
  ASSERT_TRUE(line);
  EXPECT_EQ(line->level, LogLevel::fault);
  EXPECT_TRUE(
      sink->contains("initializationVectorAsString not supported on ZQSecureEncryptionKey."));
}

TEST_F(KeyStoreKeys, KeyStoreKeysRoundTripThroughTheKeychain) {
  const auto plain = VORNKeyStoreKey::createKey();
  ASSERT_EQ(plain->toKeyChain("com.quorvantis.test.plain", "archive"), errSecSuccess);
  const auto back = VORNKeyStoreKey::fromKeyChain("com.quorvantis.test.plain", "archive");
  ASSERT_TRUE(back);
  EXPECT_TRUE(back->isEqual(*plain));
  EXPECT_FALSE(VORNKeyStoreKey::fromKeyChain("com.quorvantis.test.plain", "another key"));
  EXPECT_FALSE(VORNKeyStoreKey::fromKeyChain("com.quorvantis.test.absent", "archive"));

  const VORNKeyStoreKey secure(VORNSecureEncryptionKey::create("s", true));
  ASSERT_EQ(secure.toKeyChain("com.quorvantis.test.secure", "archive"), errSecSuccess);
  const auto secureBack = VORNKeyStoreKey::fromKeyChain("com.quorvantis.test.secure", "archive");
  ASSERT_TRUE(secureBack);
  EXPECT_TRUE(secureBack->isEqual(secure));
  EXPECT_FALSE(secureBack->isEqual(*plain));
}

TEST_F(KeyStoreKeys, UnreadableKeyItemIsLoggedAndGivesNull) {
  auto sink = testing::CaptureLogSink::install();
  VORNKeychainItemWrapper::itemWithIdentifier("com.quorvantis.test.junk")
      ->setValueData(bytesOf("not an archive"));
  EXPECT_FALSE(VORNKeyStoreKey::fromKeyChain("com.quorvantis.test.junk", "archive"));
  EXPECT_TRUE(sink->contains(
      "Failed to init unarchiver for key store key data: the data is not a keyed archive."));
}

TEST_F(KeyStoreKeys, DictionaryArchiveRoundTripsWithAndWithoutKey) {
  VORNGeneratedKeyStore store;
  const auto storeKey = VORNKeyStoreKey::createKey();
  const KeyStoreDictionary dictionary{{"a__Generated", VORNKeyStoreKey::createKey()},
                                      {"b__Generated", VORNKeyStoreKey::createKey()}};
  for (const auto& key : {storeKey, std::shared_ptr<VORNKeyStoreKey>()}) {
    const auto data = store.encryptDictionary(dictionary, key);
    ASSERT_TRUE(data);
    const auto back = store.decryptDictionaryData(*data, key);
    ASSERT_TRUE(back);
    ASSERT_EQ(back->size(), 2u);
    EXPECT_TRUE(back->at("a__Generated")->isEqual(*dictionary.at("a__Generated")));
    EXPECT_TRUE(back->at("b__Generated")->isEqual(*dictionary.at("b__Generated")));
  }
}

// Feeds random, truncated and bit-flipped archives to the decoders: none may crash, and only
// intact archives may decode.
TEST_F(KeyStoreKeys, ArchiveDecodersSurviveHostileBytes) {
  auto sink = testing::CaptureLogSink::install();
  VORNGeneratedKeyStore store;
  const KeyStoreDictionary dictionary{{"push__Generated", VORNKeyStoreKey::createKey()}};
  const Bytes valid = *store.encryptDictionary(dictionary, nullptr);
  std::mt19937 random(1234);
  for (std::size_t cut = 0; cut < valid.size(); ++cut)
    EXPECT_FALSE(store.decryptDictionaryData(ByteView(valid).first(cut), nullptr)) << cut;
  for (int round = 0; round < 2000; ++round) {
    Bytes mutated = valid;
    mutated[random() % mutated.size()] ^= static_cast<std::uint8_t>(1u << (random() % 8));
    store.decryptDictionaryData(mutated, nullptr);
    Bytes noise(random() % 300);
    for (auto& b : noise)
      b = static_cast<std::uint8_t>(random());
    store.decryptDictionaryData(noise, nullptr);
    VORNKeychainItemWrapper::itemWithIdentifier("com.quorvantis.test.fuzz")->setValueData(noise);
    VORNKeyStoreKey::fromKeyChain("com.quorvantis.test.fuzz", "archive");
  }
  // Deep nesting must be refused before the recursive decoder sees it.
  const Bytes nested(200000, 0x81);
  EXPECT_FALSE(store.decryptDictionaryData(nested, nullptr));
  Bytes deepMap(100000, 0xA1);
  EXPECT_FALSE(store.decryptDictionaryData(deepMap, nullptr));
  // A huge declared length with nothing behind it.
  EXPECT_FALSE(store.decryptDictionaryData(cryptotest::fromHex("5bffffffffffffffff"), nullptr));
  EXPECT_TRUE(sink->contains(
      "Unable to init unarchiver for key store data. Key store is invalid: the data is not a "
      "keyed archive."));
}

TEST_F(KeyStoreKeys, BaseAppIdentifierIsMadeOnceAndKeptInDefaults) {
  const std::string first = VORNCrypto::baseAppIdentifier();
  EXPECT_EQ(first.size(), 36u);
  EXPECT_EQ(first, VORNCrypto::baseAppIdentifier());
  EXPECT_TRUE(VORNCrypto::baseAppIdentifierIsConfigured());
  EXPECT_TRUE(VORNCrypto::baseAppIdentifierConfiguredThisLaunch());
  EXPECT_EQ(
      Platform::current()->defaults->standard().stringFor("com.quorvantis.security.baseappid.sim"),
      first);
}

TEST(KeyStoreBaseAppIdentifier, AnIdentifierFromAnEarlierLaunchIsKept) {
  Platform platform = Platform::ephemeral();
  platform.defaults->standard().setString("11111111-2222-3333-4444-555555555555",
                                          "com.quorvantis.security.baseappid.sim");
  Platform::install(platform);
  EXPECT_EQ(VORNCrypto::baseAppIdentifier(), "11111111-2222-3333-4444-555555555555");
  EXPECT_FALSE(VORNCrypto::baseAppIdentifierConfiguredThisLaunch());
}

TEST_F(KeyStoreKeys, DeviceIdentifierRetriesOnceThenGivesUp) {
  auto sink = testing::CaptureLogSink::install();
  ASSERT_TRUE(VORNCrypto::setDeviceBaseAppIdentifier("OLD"));
  keychain_->failWrites = errSecInteractionNotAllowed;
  // The item layer puts the previous value back after a failed write, so the retry writes
  // again and fails too.
  EXPECT_FALSE(VORNCrypto::setDeviceBaseAppIdentifier("ID"));
  EXPECT_EQ(sink->count("Could not save the base app identifier to the keychain (result: "
                        "errSecInteractionNotAllowed). Retrying."),
            1u);
  EXPECT_TRUE(
      sink->contains("Giving up on saving the base app identifier to the keychain "
                     "(result: errSecInteractionNotAllowed)."));
  keychain_->failWrites = errSecSuccess;
  VORNCrypto::setBaseAppIdentifierIsConfigured(false);
  const std::string made = VORNCrypto::deviceBaseAppIdentifier();
  EXPECT_TRUE(sink->contains("Base app identifier not configured. Creating a new value."));
  EXPECT_TRUE(sink->contains(
      "Successfully created a new base app identifier and stored it in the keychain."));
  EXPECT_EQ(VORNCrypto::deviceBaseAppIdentifier(), made);
}

TEST_F(KeyStoreKeys, DeviceIdentifierRetryOfAFirstValueCountsAsStored) {
  // With no earlier value the item layer keeps the unsaved value in memory, so the retry finds
  // it "already stored": a quirk of that layer which this caller inherits.
  auto sink = testing::CaptureLogSink::install();
  keychain_->failWrites = errSecInteractionNotAllowed;
  EXPECT_TRUE(VORNCrypto::setDeviceBaseAppIdentifier("ID"));
  EXPECT_EQ(sink->count("Could not save the base app identifier to the keychain (result: "
                        "errSecInteractionNotAllowed). Retrying."),
            1u);
  EXPECT_EQ(keychain_->writes, 1);
}

}  // namespace
}  // namespace vorn
