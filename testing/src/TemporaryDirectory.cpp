#include "vorn/testing/TemporaryDirectory.hpp"

#include <stdlib.h>

#include <string>
#include <system_error>

namespace vorn::testing {

TemporaryDirectory::TemporaryDirectory() {
  std::string pattern = (std::filesystem::temp_directory_path() / "vornsdk-XXXXXX").string();
  if (::mkdtemp(pattern.data()) != nullptr)
    path_ = pattern;
}

TemporaryDirectory::~TemporaryDirectory() {
  std::error_code ignored;
  if (!path_.empty())
    std::filesystem::remove_all(path_, ignored);
}

}  // namespace vorn::testing
