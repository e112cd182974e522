#include <gtest/gtest.h>

#include "storage/CryptoTestSupport.hpp"
#include "vorn/storage/crypto/Base64.hpp"
#include "vorn/storage/crypto/Digest.hpp"
#include "vorn/storage/crypto/Gzip.hpp"
#include "vorn/storage/crypto/Hex.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

using cryptotest::bytesOf;
using cryptotest::fromHex;

TEST(CryptoDigest, MatchesFipsVectors) {
  const Bytes abc = bytesOf("abc");
  EXPECT_EQ(newHexStringFromBytes(sha1(abc)), "a9993e364706816aba3e25717850c26c9cd0d89d");
  EXPECT_EQ(newHexStringFromBytes(sha224(abc)),
            "23097d223405d8228642a477bda255b32aadbce4bda0b3f7e36c9da7");
  EXPECT_EQ(newHexStringFromBytes(sha256(abc)),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(newHexStringFromBytes(sha256(Bytes{})),
            "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  const std::string twoBlocks = "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq";
  EXPECT_EQ(newHexStringFromBytes(sha256(std::string_view(twoBlocks))),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
}

TEST(CryptoHex, IsLowerCaseTwoDigitsPerByte) {
  EXPECT_EQ(newHexStringFromBytes(fromHex("00ff0aA0")), "00ff0aa0");
  EXPECT_EQ(stringWithHexData(Bytes{}), "");
}

TEST(CryptoBase64, MatchesRfc4648Vectors) {
  const std::pair<const char*, const char*> vectors[] = {{"", ""},
                                                         {"f", "Zg=="},
                                                         {"fo", "Zm8="},
                                                         {"foo", "Zm9v"},
                                                         {"foob", "Zm9vYg=="},
                                                         {"fooba", "Zm9vYmE="},
                                                         {"foobar", "Zm9vYmFy"}};
  for (const auto& [plain, encoded] : vectors) {
    EXPECT_EQ(encode64(plain), encoded);
    EXPECT_EQ(base64Encode(bytesOf(plain)), encoded);
    EXPECT_EQ(decode64(encoded), plain);
  }
  EXPECT_EQ(base64Encode(fromHex("fbff")), "+/8=");
}

TEST(CryptoBase64, SkipsLineBreaksAndRefusesForeignCharacters) {
  EXPECT_EQ(dataFromBase64String("Zm9v\r\nYmFy"), bytesOf("foobar"));
  EXPECT_FALSE(dataFromBase64String("Zm9v*mFy"));
  EXPECT_FALSE(dataFromBase64String("Zg==Zg=="));
  EXPECT_FALSE(dataFromBase64String("Z"));
  EXPECT_FALSE(dataFromBase64String("Zm9v="));
}

TEST(CryptoBase64, RoundTripsEveryByte) {
  Bytes all(256);
  for (int i = 0; i < 256; ++i)
    all[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(i);
  EXPECT_EQ(dataFromBase64String(base64Encode(all)), all);
}

TEST(CryptoGzip, RoundTripsAndWritesAGzipHeader) {
  Bytes input;
  for (int i = 0; i < 100000; ++i)
    input.push_back(static_cast<std::uint8_t>(i * 7 % 251));
  const auto packed = gzipDeflate(input);
  ASSERT_TRUE(packed);
  ASSERT_GE(packed->size(), 18u);
  EXPECT_EQ((*packed)[0], 0x1f);
  EXPECT_EQ((*packed)[1], 0x8b);
  EXPECT_EQ(gzipInflate(*packed), input);
  // Twice on one thread: the reused streams must start clean.
  EXPECT_EQ(gzipDeflate(input), packed);
  EXPECT_EQ(gzipInflate(*packed), input);
}

TEST(CryptoGzip, OutputLargerThanOneChunkInflates) {
  const Bytes zeros(1 << 20, 0);
  const auto packed = gzipDeflate(zeros);
  ASSERT_TRUE(packed);
  EXPECT_LT(packed->size(), 16384u);
  EXPECT_EQ(gzipInflate(*packed), zeros);
}

TEST(CryptoGzip, EmptyInputGivesEmptyOutputBothWays) {
  EXPECT_EQ(gzipDeflate(Bytes{}), Bytes{});
  EXPECT_EQ(gzipInflate(Bytes{}), Bytes{});
}

TEST(CryptoGzip, InflateReadsZlibStreamsToo) {
  // zlib-wrapped "hello" (RFC 1950 header 78 9c).
  EXPECT_EQ(gzipInflate(fromHex("789ccb48cdc9c90700062c0215")), bytesOf("hello"));
}

TEST(CryptoGzip, GarbageAndTruncatedStreamsGiveNothing) {
  EXPECT_FALSE(gzipInflate(bytesOf("definitely not compressed")));
  auto packed = *gzipDeflate(bytesOf("some text to pack, some text to pack"));
  packed.resize(packed.size() - 6);
  EXPECT_FALSE(gzipInflate(packed));
  // A failure must not poison the thread's stream for the next call.
  EXPECT_EQ(gzipInflate(*gzipDeflate(bytesOf("again"))), bytesOf("again"));
}

}  // namespace
}  // namespace vorn
