#include <gtest/gtest.h>

#include <memory>
#include <numeric>
#include <string>

#include "vorn/platform/Platform.hpp"
#include "vorn/storage/crypto/UnicodeEncoding.hpp"
#include "vorn/storage/keystore/VORNKeyStoreManager.hpp"
#include "vorn/storage/prefs/EncryptionManager.hpp"

namespace vorn {
namespace {

std::shared_ptr<const VORNEncryptionKey> countingKey() {
  Bytes key(32);
  Bytes iv(16);
  std::iota(key.begin(), key.end(), std::uint8_t{0});
  std::iota(iv.begin(), iv.end(), std::uint8_t{0});
  return std::make_shared<VORNEncryptionKey>(key, iv);
}

TEST(EncryptionManagerBytes, KnownAnswersOfTheUnicodeBytes) {
  const EncryptionManager manager(countingKey());
  // AES-256-CBC, key 00..1F, vector 00..0F, over FF FE and over FF FE "push" in UTF-16LE.
  EXPECT_EQ(manager.encrypt(""), (Bytes{0x30, 0x39, 0xf2, 0xab, 0xb3, 0xee, 0x4b, 0xbe, 0x44, 0xe4,
                                        0x9b, 0x19, 0x6b, 0x03, 0xb3, 0x2a}));
  EXPECT_EQ(manager.encrypt("push"), (Bytes{0x66, 0xd0, 0x52, 0xf4, 0xcb, 0xcd, 0x1b, 0x21, 0xdd,
                                            0xda, 0x7a, 0x3d, 0x21, 0xcd, 0x1e, 0x2c}));
}

TEST(EncryptionManagerBytes, CiphertextLengthFollowsTheMarkAndPadding) {
  const EncryptionManager manager(countingKey());
  EXPECT_EQ(manager.encrypt("")->size(), 16u);                  // the mark alone
  EXPECT_EQ(manager.encrypt("abcdef")->size(), 16u);            // 14 bytes
  EXPECT_EQ(manager.encrypt("abcdefg")->size(), 32u);           // 16 bytes: a full padding block
  EXPECT_EQ(manager.encrypt("\xF0\x9F\x98\x80")->size(), 16u);  // one surrogate pair
}

TEST(EncryptionManagerBytes, PlaintextIsTheUnicodeEncoding) {
  const auto key = countingKey();
  const EncryptionManager manager(key);
  const std::string text =
      "Gr\xC3\xBC\xC3\x9F"
      "e \xE2\x82\xAC";
  EXPECT_EQ(key->decryptData(manager.encrypt(text).value()), encodeUnicode(text));
}

TEST(EncryptionManagerBytes, DeterministicAndRoundTrips) {
  const EncryptionManager manager(countingKey());
  const std::string text = "registrationId \xF0\x9F\x94\x91";
  EXPECT_EQ(manager.encrypt(text), manager.encrypt(text));
  EXPECT_NE(manager.encrypt(text), manager.encrypt(text + " "));
  EXPECT_EQ(manager.decrypt(manager.encrypt(text).value()), text);
  EXPECT_EQ(manager.decrypt(manager.encrypt("").value()), "");
}

TEST(EncryptionManagerBytes, FailuresGiveNoValue) {
  const EncryptionManager manager(countingKey());
  EXPECT_FALSE(manager.encrypt("bad \xFF utf-8").has_value());
  Bytes cipher = manager.encrypt("abcdefg").value();
  cipher.pop_back();
  EXPECT_FALSE(manager.decrypt(cipher).has_value());  // not a multiple of 16
  EXPECT_FALSE(manager.decrypt(Bytes{}).has_value());

  // Valid ciphertext of bytes that are not UTF-16: an odd plaintext length.
  const auto key = countingKey();
  EXPECT_FALSE(manager.decrypt(key->encryptData(Bytes{0xFF, 0xFE, 'a'}).value()).has_value());

  const EncryptionManager keyless(std::shared_ptr<const VORNEncryptionKey>{});
  EXPECT_FALSE(keyless.encrypt("x").has_value());
  EXPECT_FALSE(keyless.decrypt(cipher).has_value());
}

class EncryptionManagerModules : public ::testing::Test {
 protected:
  void SetUp() override { Platform::install(Platform::ephemeral()); }
};

TEST_F(EncryptionManagerModules, ManagersOfOneModuleShareItsKey) {
  const EncryptionManager first(ModuleName::push);
  const EncryptionManager second(ModuleName::push);
  ASSERT_NE(first.encryptionKey(), nullptr);
  ASSERT_NE(second.encryptionKey(), nullptr);
  EXPECT_TRUE(first.encryptionKey()->isEqual(*second.encryptionKey()));
  const Bytes cipher = first.encrypt("shared").value();
  EXPECT_EQ(second.encrypt("shared"), cipher);
  EXPECT_EQ(second.decrypt(cipher), "shared");
}

TEST_F(EncryptionManagerModules, ModulesDoNotReadEachOther) {
  const EncryptionManager push(ModuleName::push);
  const EncryptionManager cdp(ModuleName::cdp);
  ASSERT_NE(push.encryptionKey(), nullptr);
  ASSERT_NE(cdp.encryptionKey(), nullptr);
  EXPECT_FALSE(push.encryptionKey()->isEqual(*cdp.encryptionKey()));
  const std::string text = "only for push, long enough to span blocks";
  const Bytes cipher = push.encrypt(text).value();
  EXPECT_NE(cdp.encrypt(text), cipher);
  EXPECT_NE(cdp.decrypt(cipher), text);
}

TEST_F(EncryptionManagerModules, ModuleKeysLiveUnderTheGeneratedLabels) {
  const EncryptionManager push(ModuleName::push);
  auto& store = VORNKeyStoreManager::sharedInstance();
  EXPECT_EQ(store.keyLabelForBaseLabel("push"), "push__Generated");
  EXPECT_EQ(store.retrieveKeyWithLabel(std::string_view("cdp"), false), nullptr);
  const auto again = store.retrieveKeyWithLabel(std::string_view("push"), false);
  ASSERT_NE(again, nullptr);
  EXPECT_TRUE(again->isEqual(*push.encryptionKey()));
}

}  // namespace
}  // namespace vorn
