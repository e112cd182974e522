#include "vorn/platform/HttpTransport.hpp"

namespace vorn {

// Defined here so the vtable and type information live in the library, once.
HttpTransport::~HttpTransport() = default;

}  // namespace vorn
