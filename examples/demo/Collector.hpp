// The demo's view of the collector: starts the vornsdk-collector program on a free port of
// 127.0.0.1 and talks to it through the library's own HTTP transport.
#pragma once

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "Process.hpp"

namespace demo {

/// A JSON request to the collector at `baseUrl`; the answer's JSON, or null on any failure.
nlohmann::json collectorCall(const std::string& baseUrl, const std::string& method,
                             const std::string& path);

class Collector {
 public:
  /// Starts the collector storing into `database`; url() is empty when it did not start.
  explicit Collector(const std::filesystem::path& database);
  ~Collector();

  const std::string& url() const { return url_; }
  nlohmann::json summary() const { return collectorCall(url_, "GET", "/summary"); }

 private:
  std::unique_ptr<Process> process_;
  std::string url_;
};

}  // namespace demo
