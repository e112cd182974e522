#include "vorn/platform/KeychainStore.hpp"

#include <mutex>

namespace vorn {

// Defined here so the vtable and type information live in the library, once.
KeychainStore::~KeychainStore() = default;

OSStatus KeychainStore::exclusively(const std::function<void()>& body) {
  // One lock for every store of the process: in-memory stores are not shared with another
  // process, and never destroyed so that a section may run while the process exits.
  static auto* const lock = new std::recursive_mutex();
  std::lock_guard guard(*lock);
  body();
  return errSecSuccess;
}

}  // namespace vorn
