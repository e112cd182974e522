#include <gtest/gtest.h>

#include "storage/CryptoTestSupport.hpp"
#include "vorn/storage/crypto/Hex.hpp"
#include "vorn/storage/crypto/VORNSDKCryptoUtils.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

using cryptotest::bytesOf;
using cryptotest::fromHex;
using Crypto = VORNSDKCryptoUtils;

// NIST SP 800-38A, F.2.5 (CBC-AES256) and F.2.1 (CBC-AES128), first block.
const Bytes kKey256 = fromHex("603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4");
const Bytes kKey128 = fromHex("2b7e151628aed2a6abf7158809cf4f3c");
const Bytes kIV = fromHex("000102030405060708090a0b0c0d0e0f");
const Bytes kPlain = fromHex("6bc1bee22e409f96e93d7e117393172a");

TEST(CryptoAes, MatchesNistVectorsInTheFirstBlock) {
  const auto c256 = Crypto::aes256EncryptData(kPlain, kKey256, kIV);
  ASSERT_TRUE(c256);
  ASSERT_EQ(c256->size(), 32u);  // the vector's block, then a whole block of padding
  EXPECT_EQ(newHexStringFromBytes(ByteView(*c256).first(16)), "f58c4c04d6e5f1ba779eabfb5f7bfbd6");
  const auto c128 = Crypto::aes128EncryptData(kPlain, kKey128, kIV);
  ASSERT_TRUE(c128);
  EXPECT_EQ(newHexStringFromBytes(ByteView(*c128).first(16)), "7649abac8119b246cee98e9b12e9197d");
}

TEST(CryptoAes, RoundTripsEveryLengthAroundABlock) {
  for (std::size_t n = 0; n <= 33; ++n) {
    const Bytes plain(n, static_cast<std::uint8_t>(n));
    const auto sealed = Crypto::aes256EncryptData(plain, kKey256, kIV);
    ASSERT_TRUE(sealed) << n;
    EXPECT_EQ(sealed->size(), (n / 16 + 1) * 16) << n;
    EXPECT_EQ(Crypto::aes256DecryptData(*sealed, kKey256, kIV), plain) << n;
  }
}

TEST(CryptoAes, EmptyInputGivesOneBlockAndSixteenBytesGiveTwo) {
  EXPECT_EQ(Crypto::aes256EncryptData({}, kKey256, kIV)->size(), 16u);
  EXPECT_EQ(Crypto::aes256EncryptData(Bytes(16, 1), kKey256, kIV)->size(), 32u);
}

TEST(CryptoAes, ShortKeyIsZeroPaddedAndLongKeyIsCut) {
  const Bytes key20(kKey256.begin(), kKey256.begin() + 20);
  Bytes padded = key20;
  padded.resize(32, 0);
  EXPECT_EQ(Crypto::aes256EncryptData(kPlain, key20, kIV),
            Crypto::aes256EncryptData(kPlain, padded, kIV));
  Bytes key40 = kKey256;
  key40.insert(key40.end(), 8, 0xEE);
  EXPECT_EQ(Crypto::aes256EncryptData(kPlain, key40, kIV),
            Crypto::aes256EncryptData(kPlain, kKey256, kIV));
  // The 128-bit routine uses only the first 16 bytes.
  EXPECT_EQ(Crypto::aes128EncryptData(kPlain, kKey256, kIV),
            Crypto::aes128EncryptData(kPlain, ByteView(kKey256).first(16), kIV));
}

TEST(CryptoAes, VectorIsCutOrPaddedAndMissingMeansZeros) {
  const Bytes zeros(16, 0);
  EXPECT_EQ(Crypto::aes256EncryptData(kPlain, kKey256, std::nullopt),
            Crypto::aes256EncryptData(kPlain, kKey256, zeros));
  EXPECT_EQ(Crypto::aes256EncryptData(kPlain, kKey256, Bytes{}),
            Crypto::aes256EncryptData(kPlain, kKey256, zeros));
  Bytes longIV = kIV;
  longIV.push_back(0x42);
  EXPECT_EQ(Crypto::aes256EncryptData(kPlain, kKey256, longIV),
            Crypto::aes256EncryptData(kPlain, kKey256, kIV));
  EXPECT_NE(Crypto::aes256EncryptData(kPlain, kKey256, kIV),
            Crypto::aes256EncryptData(kPlain, kKey256, zeros));
}

TEST(CryptoAes, WrongKeyFailsInTheFinalStep) {
  auto sink = testing::CaptureLogSink::install();
  const auto sealed = Crypto::aes256EncryptData(bytesOf("secret text"), kKey256, kIV);
  Bytes wrong = kKey256;
  wrong[0] ^= 0x01;
  EXPECT_FALSE(Crypto::aes256DecryptData(*sealed, wrong, kIV));
  const auto line = sink->find("CCCryptoFinal() failed with status code: -4304");
  ASSERT_TRUE(line);
  EXPECT_EQ(line->level, LogLevel::error);
  EXPECT_EQ(line->category, LoggerCategory::encryption);
}

TEST(CryptoAes, MisalignedCiphertextIsRefused) {
  auto sink = testing::CaptureLogSink::install();
  EXPECT_FALSE(Crypto::aes256DecryptData(Bytes(17, 0), kKey256, kIV));
  EXPECT_TRUE(sink->contains("CCCryptoFinal() failed with status code: -4303"));
}

TEST(CryptoAes, NullKeyLogsAndGivesNothing) {
  auto sink = testing::CaptureLogSink::install();
  EXPECT_FALSE(Crypto::aes256EncryptData(kPlain, std::nullopt, kIV));
  EXPECT_FALSE(Crypto::aes128DecryptData(kPlain, std::nullopt, kIV));
  EXPECT_TRUE(sink->contains("aesEncryptData: encryption key is nil. Cannot encrypt data."));
  EXPECT_TRUE(sink->contains("aesDecryptData: decryption key is nil. Cannot decrypt data."));
}

TEST(CryptoAes, UnsupportedKeyLengthFailsSetUp) {
  auto sink = testing::CaptureLogSink::install();
  EXPECT_FALSE(Crypto::aesEncryptData(kPlain, kKey256, 24, kIV));
  EXPECT_FALSE(Crypto::aesDecryptData(kPlain, kKey256, 24, kIV));
  EXPECT_TRUE(sink->contains(
      "Error creating encryption cryptor with CCCryptorCreate(). Status code: -4300"));
  EXPECT_TRUE(sink->contains(
      "Error creating decryption cryptor with CCCryptorCreate(). Status code: -4300"));
}

TEST(CryptoAes, ContextsReusedAcrossDirectionsAndLengthsStayIndependent) {
  // Interleave all four operations: a context carrying state over would garble the results.
  for (int i = 0; i < 3; ++i) {
    const auto a = Crypto::aes256EncryptData(kPlain, kKey256, kIV);
    const auto b = Crypto::aes128EncryptData(kPlain, kKey128, kIV);
    EXPECT_EQ(Crypto::aes128DecryptData(*b, kKey128, kIV), kPlain);
    EXPECT_EQ(Crypto::aes256DecryptData(*a, kKey256, kIV), kPlain);
  }
}

TEST(CryptoRandom, GivesTheLengthAskedAndDiffers) {
  const auto a = Crypto::randomByteDataWithLength(32);
  const auto b = Crypto::randomByteDataWithLength(32);
  ASSERT_TRUE(a && b);
  EXPECT_EQ(a->size(), 32u);
  EXPECT_NE(*a, *b);
  EXPECT_EQ(Crypto::randomByteDataWithLength(0)->size(), 0u);
}

}  // namespace
}  // namespace vorn
