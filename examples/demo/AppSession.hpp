// AppSession: the app side of one demo run: installs the platform on the run's data
// directory, configures the logger, starts the SDK with both reference modules, and reads
// the modules' state back for the checks.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "Checks.hpp"
#include "DemoApp.hpp"
#include "DemoSink.hpp"
#include "cdp/CdpModule.hpp"

namespace demo {

class AppSession {
 public:
  AppSession(const AppOptions& options, std::string appVersion);

  /// Starts both modules with these customer-data settings; true once both are operational.
  bool startUp(cdp::CdpSettings cdpSettings);
  /// Tears both modules down and waits until both have finished.
  void shutDown();

  /// A counter the module reports in its state properties; -1 when absent.
  static std::int64_t counter(const std::string& module, const std::string& key);
  static bool flag(const std::string& module, const std::string& key);
  /// The customer-data settings of a normal run: small batches, a short flush timer.
  cdp::CdpSettings cdpSettings() const;
  /// Prints the SDK state and the identity JSON.
  void printStateAndIdentity() const;
  /// Prints a heading.
  void section(const std::string& title);

  Checks& checks() { return checks_; }
  const DemoSink& sink() const { return *sink_; }
  const AppOptions& options() const { return options_; }

 private:
  const AppOptions options_;
  std::shared_ptr<DemoSink> sink_;
  Checks checks_;
};

}  // namespace demo
