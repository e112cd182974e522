// Collector: the small backend the reference modules talk to in the demo, on 127.0.0.1.
//
// Endpoints (JSON bodies):
//   POST   /v1/token               a new bearer token {"token", "expiresIn"}
//   POST   /v1/events              {"events": [{"id", "name", ...}]} -> 202 {"accepted": n}
//   POST   /v1/registration        the device's registration (bearer token required)
//   GET    /v1/inbox               {"messages": [{"id", "subject", "read"}]} (token required)
//   POST   /v1/inbox/<id>/read     marks a message read (token required)
//   DELETE /v1/inbox/<id>          deletes a message (token required)
//   GET    /summary                what was received (CollectorStore::summary)
// Faults on request, so a demo can show the SDK's answers to them:
//   POST   /control/expire-tokens                 every issued token stops being valid: the
//                                                  next authorised call gets one 401
//   POST   /control/retry-after?path=P&seconds=S  the next call to P gets 503 + Retry-After S
//   POST   /control/shutdown                      stops the server
//
// Every request except those to /control and /summary is recorded with the status answered.
// Thread safety: handlers run on the server's threads; the fault state has its own mutex.
#pragma once

#include <httplib.h>

#include <map>
#include <mutex>
#include <set>
#include <string>

#include "CollectorStore.hpp"

namespace vorn::collector {

class Collector {
 public:
  explicit Collector(CollectorStore& store);

  /// Binds 127.0.0.1:`port` (0: any free port); the bound port, or -1.
  int bind(int port);
  /// Serves until /control/shutdown or stop().
  void serve();
  void stop() { server_.stop(); }

 private:
  void routeApi();
  void routeControl();
  // Answers a pending Retry-After or 401 for this request instead of the handler; true when
  // it did.
  bool injectFault(const httplib::Request& request, httplib::Response& response, bool needsToken);
  bool tokenValid(const httplib::Request& request);

  CollectorStore& store_;
  httplib::Server server_;
  std::mutex mutex_;
  int issued_ = 0;                         // guarded by mutex_
  std::set<std::string> validTokens_;      // guarded by mutex_
  std::map<std::string, int> retryAfter_;  // path -> seconds, one-shot; guarded by mutex_
};

}  // namespace vorn::collector
