// Private files and directories: the library's data never becomes readable by other users,
// whatever umask the host process runs with.
#pragma once

#include <filesystem>

namespace vorn::platform {

/// Creates `directory` and any missing parents with mode 0700, then sets the directory's own
/// mode to 0700. False when it cannot be created or is not a directory.
bool makePrivateDirectory(const std::filesystem::path& directory);

/// Creates `file` when missing and sets its mode to 0600. False when that fails.
bool makePrivateFile(const std::filesystem::path& file);

/// Sets the mode of `file` to 0600 when it exists.
void restrictIfPresent(const std::filesystem::path& file);

}  // namespace vorn::platform
