#include "vorn/platform/KeychainStore.hpp"

namespace vorn {

// Defined here so the vtable and type information live in the library, once.
KeychainStore::~KeychainStore() = default;

}  // namespace vorn
