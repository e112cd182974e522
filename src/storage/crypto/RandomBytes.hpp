// Random bytes from the crypto library's generator, for keys and vectors. Thread-safe.
#pragma once

#include <cstddef>
#include <optional>

#include "vorn/base/Bytes.hpp"

namespace vorn {

/// `length` random bytes; no value, and a warning in category `encryption`, when the
/// generator fails.
std::optional<Bytes> randomBytes(std::size_t length);

}  // namespace vorn
