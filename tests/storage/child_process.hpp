// Runs one test of this very binary in a new process, for tests that need a second launch
// of the library (persistence, crash recovery). The child test is selected with
// --gtest_filter and finds its orders in environment variables; without them it skips.
#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

extern char** environ;

namespace vorn::test {

/// This binary with only `testName` selected and `env` added to the environment; the
/// child's standard output is discarded, its standard error is kept. Every descriptor of
/// the parent that is not close-on-exec is inherited. -1 when it cannot start.
inline pid_t spawnSelf(const std::string& testName, const std::map<std::string, std::string>& env) {
  std::vector<std::string> strings;
  for (char** e = environ; *e != nullptr; ++e) {
    strings.emplace_back(*e);
  }
  for (const auto& [name, value] : env) {
    strings.push_back(name + "=" + value);
  }
  std::vector<char*> envp;
  for (auto& s : strings) {
    envp.push_back(s.data());
  }
  envp.push_back(nullptr);
  std::string exe = "/proc/self/exe";
  std::string filter = "--gtest_filter=" + testName;
  char* argv[] = {exe.data(), filter.data(), nullptr};

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t pid = -1;
  const int rc = posix_spawn(&pid, exe.c_str(), &actions, nullptr, argv, envp.data());
  posix_spawn_file_actions_destroy(&actions);
  return rc == 0 ? pid : -1;
}

/// The child's exit code, or 128 + the signal that ended it.
inline int waitForExit(pid_t pid) {
  int status = 0;
  while (waitpid(pid, &status, 0) < 0) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

/// The variable's value when this process is a child started for it.
inline std::optional<std::string> childOrder(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? std::optional<std::string>(value) : std::nullopt;
}

/// A fresh private directory under the system's temporary directory, removed on scope exit.
class TempDir {
 public:
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vorn-prefs-XXXXXX").string();
    path_ = mkdtemp(pattern.data()) != nullptr ? pattern : std::string();
  }
  ~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace vorn::test
