#include "storage/crypto/RandomBytes.hpp"

#include <openssl/rand.h>

#include <cerrno>
#include <climits>
#include <string>

#include "vorn/logging/Log.hpp"

namespace vorn {

std::optional<Bytes> randomBytes(std::size_t length) {
  Bytes out(length);
  if (length > static_cast<std::size_t>(INT_MAX) ||
      RAND_bytes(out.data(), static_cast<int>(length)) != 1) {
    VORN_LOG_WARNING(LoggerCategory::encryption,
                     "Failed to generate random bytes (errno = " + std::to_string(errno) + ")");
    return std::nullopt;
  }
  return out;
}

}  // namespace vorn
