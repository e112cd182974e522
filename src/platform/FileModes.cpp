#include "platform/FileModes.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace vorn::platform {

bool makePrivateDirectory(const std::filesystem::path& directory) {
  std::error_code error;
  if (directory.empty())
    return false;
  if (!std::filesystem::is_directory(directory, error)) {
    const auto parent = directory.parent_path();
    if (parent != directory && !parent.empty() && !std::filesystem::exists(parent, error) &&
        !makePrivateDirectory(parent))
      return false;
    if (::mkdir(directory.c_str(), 0700) != 0 && errno != EEXIST)
      return false;
  }
  if (!std::filesystem::is_directory(directory, error))
    return false;
  return ::chmod(directory.c_str(), 0700) == 0;
}

bool makePrivateFile(const std::filesystem::path& file) {
  const int fd = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (fd < 0)
    return false;
  const bool restricted = ::fchmod(fd, 0600) == 0;
  ::close(fd);
  return restricted;
}

void restrictIfPresent(const std::filesystem::path& file) {
  std::error_code error;
  if (std::filesystem::exists(file, error))
    ::chmod(file.c_str(), 0600);
}

}  // namespace vorn::platform
