// Built by the test architecture.upward_include_fails as if it belonged to the lowest
// layer: including the top layer's header must stop the build.
#include "vorn/sdk/VORNSdk.hpp"
