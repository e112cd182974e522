#include <gtest/gtest.h>

#include "storage/CountingKeychain.hpp"
#include "storage/CryptoTestSupport.hpp"
#include "vorn/platform/KeychainItem.hpp"
#include "vorn/storage/crypto/Hex.hpp"
#include "vorn/storage/crypto/VORNSDKCryptoUtils.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

using cryptotest::bytesOf;
using cryptotest::fromHex;
using Crypto = VORNSDKCryptoUtils;

class CryptoAsymmetric : public ::testing::Test {
 protected:
  void SetUp() override { keychain_ = cryptotest::installCountingPlatform(); }
  std::shared_ptr<cryptotest::CountingKeychain> keychain_;
};

TEST(CryptoDer, EncodesShortAndLongLengths) {
  const std::pair<std::size_t, const char*> cases[] = {
      {0, "00"}, {127, "7f"}, {128, "8180"}, {255, "81ff"}, {256, "820100"}, {65536, "83010000"}};
  for (const auto& [length, hex] : cases) {
    Bytes out{0xAA};
    const std::size_t written = Crypto::encodeLength(out, length);
    EXPECT_EQ(newHexStringFromBytes(ByteView(out).subspan(1)), hex) << length;
    EXPECT_EQ(written, out.size() - 1) << length;
  }
}

TEST(CryptoDer, WrapsAPublicKeyInSubjectPublicKeyInfo) {
  const Bytes raw = fromHex("3006020101020103");  // RSAPublicKey { n = 1, e = 3 }
  EXPECT_EQ(newHexStringFromBytes(Crypto::getRSAPublicKeyAsDER(raw)),
            "301a300d06092a864886f70d0101010500030900"
            "3006020101020103");
  // A 270-byte key needs two-byte lengths in both places.
  const Bytes big(270, 0x11);
  const Bytes der = Crypto::getRSAPublicKeyAsDER(big);
  EXPECT_EQ(newHexStringFromBytes(ByteView(der).first(4)), "30820122");
  EXPECT_EQ(newHexStringFromBytes(ByteView(der).subspan(19, 5)),
            "038201"
            "0f"
            "00");
  EXPECT_EQ(der.size(), 4u + 0x122u);
}

TEST_F(CryptoAsymmetric, RsaPairRoundTripsThroughTheKeychain) {
  Crypto::createRSAKeyPairWithName("sample", 2048,
                                   kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
  const KeyRef publicKey = Crypto::getRSAPublicKeyRefWithName("sample", 2048);
  const KeyRef privateKey = Crypto::getRSAPrivateKeyRefWithName("sample", 2048);
  ASSERT_TRUE(publicKey && privateKey);
  EXPECT_EQ(publicKey->blockSize(), 256u);
  const auto sealed = Crypto::encryptUsingRSAforData(bytesOf("attack at dawn"), publicKey);
  ASSERT_TRUE(sealed);
  EXPECT_EQ(sealed->size(), 256u);
  EXPECT_EQ(Crypto::decryptUsingRSAforData(*sealed, privateKey), bytesOf("attack at dawn"));

  KeychainKey stored;
  ASSERT_EQ(keychain_->loadKey("com.quorvantis.rsakey.public.sample", std::nullopt, stored),
            errSecSuccess);
  EXPECT_EQ(stored.accessible, std::string(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly));
  // The stored public key is the bare PKCS#1 structure, and its string form is its base64.
  EXPECT_EQ(stored.keyData[0], 0x30);
  EXPECT_TRUE(Crypto::getRSAPublicKeyStringWithName("sample", 2048));
  EXPECT_TRUE(Crypto::getRSAPrivateKeyDataWithName("sample", 2048));
}

TEST_F(CryptoAsymmetric, RsaLookupWithAnotherLengthFindsNothing) {
  auto sink = testing::CaptureLogSink::install();
  Crypto::createRSAKeyPairWithName("sized", 1024, kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
  EXPECT_TRUE(Crypto::getRSAPublicKeyRefWithName("sized", 1024));
  EXPECT_FALSE(Crypto::getRSAPublicKeyRefWithName("sized", 2048));
  EXPECT_TRUE(sink->contains(
      "Error getting RSA SecKeyRef with tag com.quorvantis.rsakey.public.sized and length 2048. "
      "Error code: -25300"));
}

TEST_F(CryptoAsymmetric, RsaRefusesOversizedInputAndForeignCiphertext) {
  auto sink = testing::CaptureLogSink::install();
  Crypto::createRSAKeyPairWithName("a", 1024, kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
  Crypto::createRSAKeyPairWithName("b", 1024, kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
  const auto publicA = Crypto::getRSAPublicKeyRefWithName("a", 1024);
  EXPECT_FALSE(Crypto::encryptUsingRSAforData(Bytes(128 - 10, 1), publicA));
  EXPECT_TRUE(Crypto::encryptUsingRSAforData(Bytes(128 - 11, 1), publicA));
  EXPECT_TRUE(sink->contains(
      "The encryptUsingRSAforData failed with message: Error: errSecParam, description: "
      "errSecParam, code: 18446744073709551566, localizedDesc: errSecParam"));
  const auto sealed = Crypto::encryptUsingRSAforData(bytesOf("x"), publicA);
  EXPECT_FALSE(
      Crypto::decryptUsingRSAforData(*sealed, Crypto::getRSAPrivateKeyRefWithName("b", 1024)));
  EXPECT_TRUE(sink->contains("The decryptUsingRSAforData failed with status code: -26275"));
  EXPECT_FALSE(Crypto::decryptUsingRSAforData(*sealed, publicA));  // not a private key
}

TEST_F(CryptoAsymmetric, EciesRoundTripsWithTheDocumentedLayout) {
  Crypto::createECKeyPairWithName("ec", kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly, false);
  const KeyRef publicKey = Crypto::getECPublicKeyRefWithName("ec");
  const KeyRef privateKey = Crypto::getECPrivateKeyRefWithName("ec");
  ASSERT_TRUE(publicKey && privateKey);
  EXPECT_EQ(publicKey->externalRepresentation().size(), 65u);
  EXPECT_EQ(privateKey->externalRepresentation().size(), 97u);
  for (const std::size_t n : {0u, 1u, 16u, 1000u}) {
    const Bytes plain(n, 0x5A);
    const auto sealed = Crypto::encryptUsingECforData(plain, publicKey);
    ASSERT_TRUE(sealed);
    ASSERT_EQ(sealed->size(), 65 + n + 16);
    EXPECT_EQ((*sealed)[0], 0x04);  // the ephemeral key, uncompressed
    EXPECT_EQ(Crypto::decryptUsingECforData(*sealed, privateKey), plain);
  }
  // A fresh ephemeral key each time.
  EXPECT_NE(Crypto::encryptUsingECforData(bytesOf("x"), publicKey),
            Crypto::encryptUsingECforData(bytesOf("x"), publicKey));
}

TEST_F(CryptoAsymmetric, EciesRejectsTamperingAndTheWrongKey) {
  auto sink = testing::CaptureLogSink::install();
  Crypto::createECKeyPairWithName("one", kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly, false);
  Crypto::createECKeyPairWithName("two", kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly, false);
  const auto sealed =
      *Crypto::encryptUsingECforData(bytesOf("payload"), Crypto::getECPublicKeyRefWithName("one"));
  const KeyRef privateOne = Crypto::getECPrivateKeyRefWithName("one");
  for (const std::size_t at : {std::size_t{70}, sealed.size() - 1}) {
    Bytes tampered = sealed;
    tampered[at] ^= 0x01;
    EXPECT_FALSE(Crypto::decryptUsingECforData(tampered, privateOne)) << at;
  }
  Bytes badPoint = sealed;
  badPoint[10] ^= 0x01;  // no longer on the curve
  EXPECT_FALSE(Crypto::decryptUsingECforData(badPoint, privateOne));
  EXPECT_FALSE(Crypto::decryptUsingECforData(sealed, Crypto::getECPrivateKeyRefWithName("two")));
  EXPECT_FALSE(Crypto::decryptUsingECforData(ByteView(sealed).first(80), privateOne));
  EXPECT_TRUE(sink->contains("Error decrypting data with EC key. Error code: -26275"));
  EXPECT_TRUE(sink->contains("Error decrypting data with EC key. Error code: -50"));
}

TEST_F(CryptoAsymmetric, DeletedEcPairIsGoneAndLookupLogs) {
  auto sink = testing::CaptureLogSink::install();
  Crypto::createECKeyPairWithName("gone", kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly, false);
  Crypto::deleteECKeyPairWithName("gone");
  EXPECT_FALSE(Crypto::getECPublicKeyRefWithName("gone"));
  EXPECT_TRUE(sink->contains(
      "Error getting EC SecKeyRef with tag com.quorvantis.eckey.public.gone. Error code: -25300"));
  EXPECT_FALSE(Crypto::encryptUsingECforData(bytesOf("x"), nullptr));
  EXPECT_TRUE(sink->contains("Error encrypting data with EC key. Error code: -50"));
}

TEST_F(CryptoAsymmetric, CorruptStoredKeyMaterialGivesNoKey) {
  KeychainKey junk;
  junk.applicationTag = "com.quorvantis.eckey.private.junk";
  junk.keyType = KeychainKeyType::ec;
  junk.keyData = Bytes(97, 0x04);
  ASSERT_EQ(keychain_->storeKey(junk), errSecSuccess);
  EXPECT_FALSE(Crypto::getECPrivateKeyRefWithName("junk"));
}

}  // namespace
}  // namespace vorn
