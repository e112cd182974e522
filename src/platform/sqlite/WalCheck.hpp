// A look at a database's write-ahead log before SQLite opens it.
//
// SQLite's recovery keeps the frames of the log up to the first one whose checksum fails and
// drops the rest without a word, as it must for the torn tail of a crash. When bytes in the
// middle of the log were damaged instead, every change after them is lost; so the store
// checks the log first and logs what will be lost. The check only reads the file and changes
// nothing. A log being written by another process at that moment may look damaged at its
// end; that costs a needless line, never data.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace vorn::platform {

/// Why part of the log `wal` cannot be read, or nothing when it is missing, empty or intact.
/// Frames left from an earlier generation of the log (other salts) are not damage.
std::optional<std::string> walDamage(const std::filesystem::path& wal);

}  // namespace vorn::platform
