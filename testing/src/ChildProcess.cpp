#include "vorn/testing/ChildProcess.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <vector>

extern char** environ;

namespace vorn::testing {

pid_t spawnSelf(const std::string& testName, const std::map<std::string, std::string>& env) {
  std::vector<std::string> strings;
  for (char** e = environ; *e != nullptr; ++e)
    strings.emplace_back(*e);
  for (const auto& [name, value] : env)
    strings.push_back(name + "=" + value);
  std::vector<char*> envp;
  for (auto& s : strings)
    envp.push_back(s.data());
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

int waitForExit(pid_t pid) {
  int status = 0;
  while (waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR)
      return -1;
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::optional<std::string> childOrder(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? std::optional<std::string>(value) : std::nullopt;
}

}  // namespace vorn::testing
