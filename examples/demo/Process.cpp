#include "Process.hpp"

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

extern char** environ;

namespace demo {

Process::Process(const std::string& program, const std::vector<std::string>& arguments) {
  int pipeFds[2];
  if (pipe(pipeFds) != 0)
    return;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);
  posix_spawn_file_actions_addclose(&actions, pipeFds[0]);
  std::vector<char*> argv{const_cast<char*>(program.c_str())};
  for (const std::string& argument : arguments)
    argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  if (posix_spawn(&pid_, program.c_str(), &actions, nullptr, argv.data(), environ) != 0)
    pid_ = -1;
  posix_spawn_file_actions_destroy(&actions);
  close(pipeFds[1]);
  out_ = pipeFds[0];
}

Process::~Process() {
  if (pid_ > 0) {
    ::kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  if (out_ >= 0)
    close(out_);
}

std::optional<std::string> Process::readLine(std::chrono::milliseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  for (;;) {
    if (const auto end = buffer_.find('\n'); end != std::string::npos) {
      std::string line = buffer_.substr(0, end);
      buffer_.erase(0, end + 1);
      std::printf("%s\n", line.c_str());
      return line;
    }
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    pollfd descriptor{out_, POLLIN, 0};
    if (left.count() <= 0 || poll(&descriptor, 1, static_cast<int>(left.count())) <= 0)
      return std::nullopt;
    char chunk[4096];
    const ssize_t count = read(out_, chunk, sizeof chunk);
    if (count <= 0)
      return std::nullopt;
    buffer_.append(chunk, static_cast<std::size_t>(count));
  }
}

std::optional<std::string> Process::waitForLine(const std::string& text,
                                                std::chrono::milliseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (std::chrono::steady_clock::now() < deadline) {
    auto line = readLine(std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now()));
    if (!line)
      return std::nullopt;
    if (line->find(text) != std::string::npos)
      return line;
  }
  return std::nullopt;
}

int Process::wait() {
  while (readLine(std::chrono::hours(1))) {
  }
  int status = 0;
  if (pid_ <= 0 || waitpid(pid_, &status, 0) != pid_)
    return -1;
  pid_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void Process::kill(int signal) {
  if (pid_ <= 0)
    return;
  ::kill(pid_, signal);
  waitpid(pid_, nullptr, 0);
  pid_ = -1;
}

}  // namespace demo
