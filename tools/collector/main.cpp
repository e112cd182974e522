// vornsdk-collector: the demo's backend. Prints "listening on http://127.0.0.1:<port>" once
// it accepts connections, then serves until POST /control/shutdown or SIGTERM.
#include <pthread.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <thread>

#include "Collector.hpp"

int main(int argc, char** argv) {
  CLI::App app{"The demo's collector: stores what the reference modules send, in SQLite."};
  int port = 0;
  std::string database = "collector.db";
  app.add_option("--port", port, "Port on 127.0.0.1 (0: any free port)");
  app.add_option("--db", database, "SQLite file of what was received");
  CLI11_PARSE(app, argc, argv);

  vorn::collector::CollectorStore store(database);
  if (!store.isOpen()) {
    std::fprintf(stderr, "cannot open %s\n", database.c_str());
    return 1;
  }
  vorn::collector::Collector collector(store);
  const int bound = collector.bind(port);
  if (bound < 0) {
    std::fprintf(stderr, "cannot bind 127.0.0.1:%d\n", port);
    return 1;
  }
  // SIGTERM and SIGINT are taken by one waiting thread, not a handler: stopping the server is
  // not something a signal handler may do.
  sigset_t stopSignals;
  sigemptyset(&stopSignals);
  sigaddset(&stopSignals, SIGTERM);
  sigaddset(&stopSignals, SIGINT);
  pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
  std::thread([&] {
    int signal = 0;
    sigwait(&stopSignals, &signal);
    collector.stop();
  }).detach();
  std::printf("listening on http://127.0.0.1:%d\n", bound);
  std::fflush(stdout);
  collector.serve();
  return 0;
}
