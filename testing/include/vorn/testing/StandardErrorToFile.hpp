// Test support for checking what a process writes to standard error: the descriptor itself is
// redirected, so lines written by any code, not only through the library's sinks, are caught.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vorn::testing {

/// Sends this process's standard error to `file` while the object lives: whatever any thread
/// writes to it meanwhile lands in the file.
class StandardErrorToFile {
 public:
  explicit StandardErrorToFile(std::filesystem::path file);
  ~StandardErrorToFile();
  StandardErrorToFile(const StandardErrorToFile&) = delete;
  StandardErrorToFile& operator=(const StandardErrorToFile&) = delete;

  /// Puts standard error back and gives what was written to it meanwhile.
  std::string restore();

 private:
  const std::filesystem::path file_;
  int saved_ = -1;
};

/// The whole contents of a file, empty when it cannot be read.
std::string contentsOf(const std::filesystem::path& file);

/// Whether `value` occurs in `text`, ASCII letters compared without case: a secret written as
/// upper-case hex is still the secret.
bool containsIgnoringCase(std::string_view text, std::string_view value);

}  // namespace vorn::testing
