#include "vorn/testing/StandardErrorToFile.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <fstream>
#include <iterator>

namespace vorn::testing {

StandardErrorToFile::StandardErrorToFile(std::filesystem::path file) : file_(std::move(file)) {
  std::fflush(stderr);
  saved_ = ::dup(STDERR_FILENO);
  const int fd = ::open(file_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  ::dup2(fd, STDERR_FILENO);
  ::close(fd);
}

StandardErrorToFile::~StandardErrorToFile() {
  restore();
}

std::string StandardErrorToFile::restore() {
  if (saved_ >= 0) {
    std::fflush(stderr);
    ::dup2(saved_, STDERR_FILENO);
    ::close(saved_);
    saved_ = -1;
  }
  return contentsOf(file_);
}

std::string contentsOf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

bool containsIgnoringCase(std::string_view text, std::string_view value) {
  const auto same = [](char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) ==
           std::tolower(static_cast<unsigned char>(b));
  };
  return std::search(text.begin(), text.end(), value.begin(), value.end(), same) != text.end();
}

}  // namespace vorn::testing
