// The system calls behind the lower layers' hooks (base/SystemHooks.hpp), installed when the
// library is loaded.
#include "base/SystemHooks.hpp"

#include <pthread.h>
#include <unistd.h>

#include <cstddef>

namespace vorn::detail {
namespace {

// One write(2) per line, retried only for what a partial write left, so that lines from
// concurrent threads never interleave. A closed or full stderr must not stop the app: the
// rest of the line is dropped.
void writeToFileDescriptor2(std::string_view line) noexcept {
  std::size_t written = 0;
  while (written < line.size()) {
    const ssize_t n = ::write(STDERR_FILENO, line.data() + written, line.size() - written);
    if (n <= 0)
      return;
    written += static_cast<std::size_t>(n);
  }
}

const bool installed = [] {
  installStandardErrorWriter(writeToFileDescriptor2);
  pthread_atfork(nullptr, nullptr, runForkChildHandlers);
  return true;
}();

}  // namespace
}  // namespace vorn::detail
