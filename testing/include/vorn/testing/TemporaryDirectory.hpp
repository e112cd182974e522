// A fresh private directory under the system's temporary directory, removed with everything
// in it when the object goes. For tests and benchmarks that need real files.
#pragma once

#include <filesystem>

namespace vorn::testing {

class TemporaryDirectory {
 public:
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace vorn::testing
