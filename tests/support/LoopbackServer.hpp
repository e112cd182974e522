// A real HTTP server on 127.0.0.1 for tests: binds a free port, serves on its own thread, and
// stops when destroyed. Routes are registered on server() before start().
//
// TCP_NODELAY is on and the keep-alive count raised: cpp-httplib's defaults add about 40 ms
// per request (Nagle against delayed ACKs) and close a kept-alive connection after five.
#pragma once

#include <httplib.h>

#include <string>
#include <thread>

namespace vorn::test {

class LoopbackServer {
 public:
  LoopbackServer() {
    server_.set_tcp_nodelay(true);
    server_.set_keep_alive_max_count(100000);
  }
  ~LoopbackServer() { stop(); }

  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  httplib::Server& server() { return server_; }

  /// Binds and starts serving. The socket listens once bound, so a client may connect as
  /// soon as this returns: the kernel queues it until the accept loop runs. Returns once the
  /// accept loop runs: cpp-httplib's stop() does nothing before that, and a server stopped
  /// that early would never end.
  void start() {
    port_ = server_.bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    while (port_ > 0 && !server_.is_running())
      std::this_thread::yield();
  }
  void stop() {
    server_.stop();
    if (thread_.joinable())
      thread_.join();
  }

  int port() const { return port_; }
  /// "http://127.0.0.1:<port>" followed by `path`.
  std::string url(const std::string& path = "") const {
    return "http://127.0.0.1:" + std::to_string(port_) + path;
  }

 private:
  httplib::Server server_;
  std::thread thread_;
  int port_ = 0;
};

}  // namespace vorn::test
