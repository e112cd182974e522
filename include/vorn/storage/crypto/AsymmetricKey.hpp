// One half of an RSA or EC P-256 key pair, as found in the keychain: the counterpart of the
// platform's key reference. Immutable once made; share it through KeyRef and use it from any
// thread.
//
// The external representation is the keychain's: an RSA key is its PKCS#1 DER structure
// (RSAPublicKey or RSAPrivateKey); an EC public key is the uncompressed point 04 || X || Y and
// an EC private key the point followed by the 32-byte private scalar.
//
// While a private key made by the library lives, its external representation (and an EC key's
// scalar alone) is a secret of the logger (VORNSdkLogger::setSecrets) as raw bytes,
// hexadecimal and base64 text, so no log line and no sink can show it.
#pragma once

#include <cstddef>
#include <memory>

#include "vorn/base/Bytes.hpp"
#include "vorn/base/Export.hpp"

namespace vorn {

class VORN_API AsymmetricKey {
 public:
  /// The crypto library's key object; defined inside the library only.
  struct Native;

  explicit AsymmetricKey(std::unique_ptr<Native> native) noexcept;
  ~AsymmetricKey();
  AsymmetricKey(const AsymmetricKey&) = delete;
  AsymmetricKey& operator=(const AsymmetricKey&) = delete;

  bool isRsa() const noexcept;
  bool isPrivate() const noexcept;
  /// The RSA modulus size in bytes, or the EC field size in bytes.
  std::size_t blockSize() const noexcept;
  /// See the contract above; empty when the key cannot be exported.
  Bytes externalRepresentation() const;

  const Native& native() const noexcept { return *native_; }

 private:
  std::unique_ptr<Native> native_;
};

using KeyRef = std::shared_ptr<const AsymmetricKey>;

}  // namespace vorn
