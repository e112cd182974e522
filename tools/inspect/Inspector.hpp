// vornsdk-inspect's work: list what a data directory's stores hold, or decrypt one module's
// secure preferences, without changing anything in the directory.
//
// Listing shows every key store item (service, account, accessibility, value size), every
// key store key (tag, class, type, size) and every defaults suite with its keys (type and
// size). Values are shown only for the standard suite, the SDK's own non-secret one; the
// module suites and the registration suite are encrypted and only sized.
//
// Decrypting reads the module's key the way the SDK does: the base application id from the
// defaults, the key store key and the key store dictionary from the key store, the module's
// key under "<module>__Generated" in it. The stores are opened read-only, so nothing the SDK
// would make on a first start (a base id, a key store key, a module key, a registration id)
// can be made here: where one is missing, the inspection says so and fails.
//
// Key material (item values, key store keys, the module's key and vector) prints as
// "<hidden: N bytes>" unless showKeyMaterial is set, then as lower-case hex.
//
// Nothing is thrown; problems go to `err` and make the result non-zero.
#pragma once

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>

namespace vorn::inspect {

struct Options {
  std::filesystem::path dataDirectory;
  /// The module ("push", "cdp") whose secure preferences to decrypt; nothing lists instead.
  std::optional<std::string> decryptModule;
  bool showKeyMaterial = false;
};

/// Exit codes.
inline constexpr int kSucceeded = 0;
inline constexpr int kFailed = 1;

/// Lists or decrypts (see above); kSucceeded or kFailed.
int inspect(const Options& options, std::ostream& out, std::ostream& err);

}  // namespace vorn::inspect
