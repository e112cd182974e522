#include "vorn/runtime/Executor.hpp"

namespace vorn {

// Defined here so the vtable and type information live in the library, once.
Executor::~Executor() = default;

}  // namespace vorn
