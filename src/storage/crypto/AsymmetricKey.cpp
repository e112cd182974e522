#include "vorn/storage/crypto/AsymmetricKey.hpp"

#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/param_build.h>
#include <openssl/x509.h>

#include <string>
#include <vector>

#include "storage/crypto/KeyMaterial.hpp"
#include "storage/crypto/KeySecrets.hpp"
#include "vorn/logging/VORNSdkLogger.hpp"

namespace vorn {
namespace {

struct ParamBuildDeleter {
  void operator()(OSSL_PARAM_BLD* build) const noexcept { OSSL_PARAM_BLD_free(build); }
};
struct ParamDeleter {
  void operator()(OSSL_PARAM* params) const noexcept { OSSL_PARAM_free(params); }
};
struct BignumDeleter {
  void operator()(BIGNUM* number) const noexcept { BN_clear_free(number); }
};
using Bignum = std::unique_ptr<BIGNUM, BignumDeleter>;

// A P-256 key from its public point and, for a private key, its scalar.
PKey ecKeyFromParts(ByteView point, const std::uint8_t* scalar) {
  if (point.size() != kECPointLength || point[0] != 0x04)
    return nullptr;
  std::unique_ptr<OSSL_PARAM_BLD, ParamBuildDeleter> build(OSSL_PARAM_BLD_new());
  Bignum privateScalar(scalar ? BN_bin2bn(scalar, kECScalarLength, nullptr) : nullptr);
  if (!build || (scalar && !privateScalar) ||
      !OSSL_PARAM_BLD_push_utf8_string(build.get(), OSSL_PKEY_PARAM_GROUP_NAME, "prime256v1", 0) ||
      !OSSL_PARAM_BLD_push_octet_string(build.get(), OSSL_PKEY_PARAM_PUB_KEY, point.data(),
                                        point.size()) ||
      (scalar &&
       !OSSL_PARAM_BLD_push_BN(build.get(), OSSL_PKEY_PARAM_PRIV_KEY, privateScalar.get())))
    return nullptr;
  std::unique_ptr<OSSL_PARAM, ParamDeleter> params(OSSL_PARAM_BLD_to_param(build.get()));
  PKeyContext context(EVP_PKEY_CTX_new_from_name(nullptr, "EC", nullptr));
  EVP_PKEY* key = nullptr;
  if (!params || !context || EVP_PKEY_fromdata_init(context.get()) != 1 ||
      EVP_PKEY_fromdata(context.get(), &key, scalar ? EVP_PKEY_KEYPAIR : EVP_PKEY_PUBLIC_KEY,
                        params.get()) != 1)
    return nullptr;
  PKey result(key);
  // fromdata takes any point; make sure it lies on the curve before anyone derives with it.
  PKeyContext check(EVP_PKEY_CTX_new_from_pkey(nullptr, key, nullptr));
  if (!check || EVP_PKEY_public_check(check.get()) != 1)
    return nullptr;
  return result;
}

// A private key's external form, and for EC its scalar alone (the rest is the public point),
// are secrets of the logger while the key lives.
void holdPrivateMaterial(const AsymmetricKey& key) {
  const Bytes external = key.externalRepresentation();
  std::vector<std::string> secrets;
  detail::addKeySecrets(secrets, external);
  if (!key.isRsa() && external.size() == kECPointLength + kECScalarLength)
    detail::addKeySecrets(secrets, ByteView(external).subspan(kECPointLength));
  VORNSdkLogger::shared().setSecrets(&key, std::move(secrets));
}

}  // namespace

AsymmetricKey::AsymmetricKey(std::unique_ptr<Native> native) noexcept
    : native_(std::move(native)) {}

AsymmetricKey::~AsymmetricKey() {
  if (native_ && native_->isPrivate)
    VORNSdkLogger::shared().setSecrets(this, {});
}

bool AsymmetricKey::isRsa() const noexcept {
  return native_->rsa;
}

bool AsymmetricKey::isPrivate() const noexcept {
  return native_->isPrivate;
}

std::size_t AsymmetricKey::blockSize() const noexcept {
  return native_->rsa ? static_cast<std::size_t>(EVP_PKEY_get_size(native_->key.get()))
                      : kECScalarLength;
}

Bytes AsymmetricKey::externalRepresentation() const {
  return native_->rsa ? rsaExternal(native_->key.get(), native_->isPrivate)
                      : ecExternal(native_->key.get(), native_->isPrivate);
}

KeyRef makeKeyRef(PKey key, bool rsa, bool isPrivate) {
  if (!key)
    return nullptr;
  auto native = std::make_unique<AsymmetricKey::Native>();
  native->key = std::move(key);
  native->rsa = rsa;
  native->isPrivate = isPrivate;
  auto made = std::make_shared<const AsymmetricKey>(std::move(native));
  if (isPrivate)
    holdPrivateMaterial(*made);
  return made;
}

PKey generateRsaKey(std::size_t bits) {
  return PKey(EVP_PKEY_Q_keygen(nullptr, nullptr, "RSA", bits));
}

PKey generateEcKey() {
  return PKey(EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", "P-256"));
}

Bytes rsaExternal(EVP_PKEY* key, bool isPrivate) {
  unsigned char* der = nullptr;
  const int length = isPrivate ? i2d_PrivateKey(key, &der) : i2d_PublicKey(key, &der);
  if (length <= 0)
    return {};
  Bytes out(der, der + length);
  OPENSSL_clear_free(der, static_cast<std::size_t>(length));
  return out;
}

Bytes ecExternal(EVP_PKEY* key, bool isPrivate) {
  Bytes out(kECPointLength + (isPrivate ? kECScalarLength : 0));
  std::size_t pointLength = 0;
  if (EVP_PKEY_get_octet_string_param(key, OSSL_PKEY_PARAM_PUB_KEY, out.data(), kECPointLength,
                                      &pointLength) != 1 ||
      pointLength != kECPointLength)
    return {};
  if (!isPrivate)
    return out;
  BIGNUM* raw = nullptr;
  if (EVP_PKEY_get_bn_param(key, OSSL_PKEY_PARAM_PRIV_KEY, &raw) != 1)
    return {};
  Bignum scalar(raw);
  if (BN_bn2binpad(scalar.get(), out.data() + kECPointLength, kECScalarLength) !=
      static_cast<int>(kECScalarLength))
    return {};
  return out;
}

KeyRef rsaKeyFromExternal(ByteView bytes, bool isPrivate) {
  const unsigned char* cursor = bytes.data();
  const auto length = static_cast<long>(bytes.size());
  PKey key(isPrivate ? d2i_PrivateKey(EVP_PKEY_RSA, nullptr, &cursor, length)
                     : d2i_PublicKey(EVP_PKEY_RSA, nullptr, &cursor, length));
  return makeKeyRef(std::move(key), true, isPrivate);
}

KeyRef ecKeyFromExternal(ByteView bytes, bool isPrivate) {
  const std::size_t expected = kECPointLength + (isPrivate ? kECScalarLength : 0);
  if (bytes.size() != expected)
    return nullptr;
  PKey key = ecKeyFromParts(bytes.first(kECPointLength),
                            isPrivate ? bytes.data() + kECPointLength : nullptr);
  return makeKeyRef(std::move(key), false, isPrivate);
}

PKey ecPublicKeyFromPoint(ByteView point) {
  return ecKeyFromParts(point, nullptr);
}

}  // namespace vorn
