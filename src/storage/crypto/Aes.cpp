// AES-CBC with PKCS#7 padding, one whole buffer per call.
//
// Looking a cipher up and allocating a context cost several times the encryption of a short
// buffer, so each cipher is fetched once per process and each thread keeps one context per
// key length, re-keyed on every call.

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "storage/crypto/Aes.hpp"

#include "vorn/logging/Log.hpp"
#include "vorn/storage/crypto/VORNSDKCryptoUtils.hpp"

namespace vorn {
namespace {

// The host's status codes for a failing cipher, so that log lines read the same everywhere.
constexpr int kCCParamError = -4300;
constexpr int kCCAlignmentError = -4303;
constexpr int kCCDecodeError = -4304;

struct CipherContextDeleter {
  void operator()(EVP_CIPHER_CTX* context) const noexcept { EVP_CIPHER_CTX_free(context); }
};
using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, CipherContextDeleter>;

// Never freed: the ciphers outlive every thread that may still be encrypting at exit.
const EVP_CIPHER* cipherFor(std::size_t keyLength) {
  static const EVP_CIPHER* const aes128 = EVP_CIPHER_fetch(nullptr, "AES-128-CBC", nullptr);
  static const EVP_CIPHER* const aes256 = EVP_CIPHER_fetch(nullptr, "AES-256-CBC", nullptr);
  switch (keyLength) {
    case kAES128KeyLength:
      return aes128;
    case kAES256KeyLength:
      return aes256;
    default:
      return nullptr;
  }
}

// This thread's context for the cipher, bound to it on first use; null when none can be made.
EVP_CIPHER_CTX* contextFor(const EVP_CIPHER* cipher, bool encrypt, std::size_t keyLength) {
  thread_local std::array<CipherContext, 2> contexts;
  CipherContext& context = contexts[keyLength == kAES256KeyLength ? 1 : 0];
  if (!context) {
    CipherContext fresh(EVP_CIPHER_CTX_new());
    if (!fresh || EVP_CipherInit_ex2(fresh.get(), cipher, nullptr, nullptr, encrypt, nullptr) != 1)
      return nullptr;
    context = std::move(fresh);
  }
  return context.get();
}

// Copies `bytes` into a buffer of exactly `length` bytes, cutting or zero-filling.
template <std::size_t N>
void fitInto(std::array<unsigned char, N>& out, std::size_t length,
             const std::optional<ByteView>& bytes) {
  out.fill(0);
  if (bytes)
    std::copy_n(bytes->begin(), std::min(length, bytes->size()), out.begin());
}

// The executeCrypt step: one update over the whole input, then the final block.
std::optional<Bytes> executeCrypt(ByteView data, EVP_CIPHER_CTX* context, bool encrypt) {
  Bytes out(data.size() + kAESBlockSize);
  int written = 0;
  if (EVP_CipherUpdate(context, out.data(), &written, data.data(), static_cast<int>(data.size())) !=
      1) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "CCCryptorUpdate() failed with status code: " + std::to_string(kCCParamError));
    return std::nullopt;
  }
  int finalWritten = 0;
  if (EVP_CipherFinal_ex(context, out.data() + written, &finalWritten) != 1) {
    const bool misaligned = !encrypt && data.size() % kAESBlockSize != 0;
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "CCCryptoFinal() failed with status code: " +
                       std::to_string(misaligned ? kCCAlignmentError : kCCDecodeError));
    return std::nullopt;
  }
  out.resize(static_cast<std::size_t>(written + finalWritten));
  return out;
}

std::optional<Bytes> crypt(bool encrypt, ByteView data, const std::optional<ByteView>& key,
                           std::size_t keyLength, const std::optional<ByteView>& iv) {
  if (!key) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   encrypt ? "aesEncryptData: encryption key is nil. Cannot encrypt data."
                           : "aesDecryptData: decryption key is nil. Cannot decrypt data.");
    return std::nullopt;
  }
  std::array<unsigned char, kAES256KeyLength> keyBytes;
  std::array<unsigned char, kAESBlockSize> ivBytes;
  fitInto(keyBytes, keyLength, key);
  fitInto(ivBytes, kAESBlockSize, iv);
  // The context stays bound to its cipher; a null cipher below only re-keys it.
  const EVP_CIPHER* cipher = cipherFor(keyLength);
  EVP_CIPHER_CTX* context = cipher ? contextFor(cipher, encrypt, keyLength) : nullptr;
  if (!context || data.size() > static_cast<std::size_t>(INT32_MAX) - kAESBlockSize ||
      EVP_CipherInit_ex2(context, nullptr, keyBytes.data(), ivBytes.data(), encrypt, nullptr) !=
          1) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   std::string(encrypt ? "Error creating encryption cryptor"
                                       : "Error creating decryption cryptor") +
                       " with CCCryptorCreate(). Status code: " + std::to_string(kCCParamError));
    return std::nullopt;
  }
  return executeCrypt(data, context, encrypt);
}

}  // namespace

namespace aes {

std::optional<Bytes> encrypt(ByteView data, std::optional<ByteView> key, std::size_t keyLength,
                             std::optional<ByteView> iv) {
  return crypt(true, data, key, keyLength, iv);
}

std::optional<Bytes> decrypt(ByteView data, std::optional<ByteView> key, std::size_t keyLength,
                             std::optional<ByteView> iv) {
  return crypt(false, data, key, keyLength, iv);
}

}  // namespace aes
}  // namespace vorn
