// The version text the SDK reports in its start-up line and its state snapshot.
#pragma once

#include <string>

namespace vorn::detail {

/// Read once, on first use, from the current Platform's app info (the "VORNSdk_version"
/// entry); "Failed to read version" when that entry is missing. Thread-safe.
std::string sdkVersion();

/// Replaces the text from then on, whether or not it was read yet. Thread-safe.
void setSdkVersion(std::string version);

}  // namespace vorn::detail
