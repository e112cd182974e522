// The class-wide lock of the item wrapper: every key store write made by the wrapper class
// (item writes, item deletes, the accessibility migration) runs under it, so none overlap.
// Re-entrant, and never destroyed.
#pragma once

#include <mutex>

namespace vorn::detail {

std::recursive_mutex& keychainWriteLock();

}  // namespace vorn::detail
