// A TCP server on 127.0.0.1 that answers with whatever bytes a test writes, for clients that
// must survive servers no HTTP library would imitate: stalls, endless bodies, resets, garbage.
//
// Every accepted connection runs the test's handler on a thread of its own. Destroying the
// server (or stop()) wakes every handler: the connections are shut down, so blocked reads
// and writes return, and stalled() returns false.
#pragma once

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace vorn::test {

class RawTcpServer;

/// One accepted connection, as the handler sees it.
class RawConnection {
 public:
  RawConnection(RawTcpServer& server, int fd) : server_(server), fd_(fd) {}

  /// Reads up to the blank line that ends the request's head and returns the head. The
  /// request body, if any, is left unread.
  std::string readHead() {
    std::string head;
    char c = 0;
    while (!head.ends_with("\r\n\r\n") && ::recv(fd_, &c, 1, 0) == 1)
      head.push_back(c);
    return head;
  }

  /// Writes all of `bytes`; false once the peer is gone or the server stops.
  bool send(std::string_view bytes) {
    while (!bytes.empty()) {
      const auto sent = ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
      if (sent <= 0)
        return false;
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
  }

  /// Closes with a TCP reset instead of an orderly end (SO_LINGER with a zero time-out).
  void reset() {
    linger option{1, 0};
    ::setsockopt(fd_, SOL_SOCKET, SO_LINGER, &option, sizeof option);
  }

  /// Blocks for `duration`, or until the server stops (then false).
  bool stalled(std::chrono::milliseconds duration);

 private:
  RawTcpServer& server_;
  int fd_;
};

class RawTcpServer {
 public:
  using Handler = std::function<void(RawConnection&)>;

  explicit RawTcpServer(Handler handler) : handler_(std::move(handler)) {
    listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    ::bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address);
    ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
    port_ = ntohs(address.sin_port);
    ::listen(listener_, 16);
    acceptor_ = std::thread([this] { acceptLoop(); });
  }
  ~RawTcpServer() { stop(); }

  RawTcpServer(const RawTcpServer&) = delete;
  RawTcpServer& operator=(const RawTcpServer&) = delete;

  /// Wakes every handler and waits for them; the port is closed when it returns.
  void stop() {
    {
      std::lock_guard lock(mutex_);
      if (stopping_)
        return;
      stopping_ = true;
      for (int fd : open_)
        ::shutdown(fd, SHUT_RDWR);
    }
    stopped_.notify_all();
    ::shutdown(listener_, SHUT_RDWR);
    acceptor_.join();
    for (auto& handler : handlers_)
      handler.join();
    ::close(listener_);
  }

  int port() const { return port_; }
  std::string url(const std::string& path = "/") const {
    return "http://127.0.0.1:" + std::to_string(port_) + path;
  }
  int acceptedCount() const { return accepted_.load(); }

 private:
  friend class RawConnection;

  void acceptLoop() {
    for (;;) {
      const int fd = ::accept(listener_, nullptr, nullptr);
      if (fd < 0)
        return;
      std::lock_guard lock(mutex_);
      if (stopping_) {
        ::close(fd);
        return;
      }
      ++accepted_;
      open_.insert(fd);
      handlers_.emplace_back([this, fd] { serve(fd); });
    }
  }

  void serve(int fd) {
    RawConnection connection(*this, fd);
    handler_(connection);
    {
      std::lock_guard lock(mutex_);
      open_.erase(fd);
    }
    ::close(fd);
  }

  Handler handler_;
  int listener_ = -1;
  int port_ = 0;
  std::atomic<int> accepted_{0};
  std::thread acceptor_;
  std::mutex mutex_;
  std::condition_variable stopped_;
  bool stopping_ = false;              // guarded by mutex_
  std::set<int> open_;                 // guarded by mutex_
  std::vector<std::thread> handlers_;  // guarded by mutex_ until stop() joins them
};

inline bool RawConnection::stalled(std::chrono::milliseconds duration) {
  std::unique_lock lock(server_.mutex_);
  return !server_.stopped_.wait_for(lock, duration, [this] { return server_.stopping_; });
}

}  // namespace vorn::test
