// The bridge's logger: the level, and a C function as the sink.
#include <memory>
#include <string>

#include "capi/Boundary.hpp"
#include "vorn/logging/LogOutputter.hpp"
#include "vorn/sdk/VORNSdk.hpp"
#include "vorn/vorn.h"

namespace vorn::capi {
namespace {

// Hands each line to the C function as NUL-terminated copies, which the views need not be.
class CLogSink final : public LogOutputter {
 public:
  CLogSink(vorn_log_sink sink, void* context) : sink_(sink), context_(context) {}

  void out(LogLevel level, std::string_view subsystem, LoggerCategory category,
           std::string_view message) override {
    try {
      const std::string subsystemText(subsystem);
      const std::string categoryText(rawValue(category));
      const std::string messageText(message);
      sink_(static_cast<vorn_log_level>(level), subsystemText.c_str(), categoryText.c_str(),
            messageText.c_str(), context_);
    } catch (...) {
      // A line that cannot be copied is lost; logging must never fail the caller.
    }
  }

 private:
  const vorn_log_sink sink_;
  void* const context_;
};

}  // namespace
}  // namespace vorn::capi

extern "C" {

vorn_status vorn_set_logger(vorn_log_level level, vorn_log_sink sink, void* context) {
  constexpr std::string_view function = "vorn_set_logger";
  return vorn::capi::guardedStatus(function, [&] {
    const int raw = vorn::capi::rawEnum(level);
    const auto logLevel = vorn::logLevelFrom(raw);
    if (!logLevel)
      return vorn::capi::refuse(function, VORN_ERROR_INVALID_ARGUMENT,
                                "unknown log level " + std::to_string(raw));
    std::shared_ptr<vorn::LogOutputter> outputter;
    if (sink != nullptr)
      outputter = std::make_shared<vorn::capi::CLogSink>(sink, context);
    else
      outputter = std::make_shared<vorn::LogOutputter>();
    vorn::VORNSdk::setLogger(*logLevel, std::move(outputter));
    return VORN_OK;
  });
}

vorn_log_level vorn_get_log_level(void) {
  return vorn::capi::guarded("vorn_get_log_level", VORN_LOG_NONE, [] {
    return static_cast<vorn_log_level>(vorn::VORNSdk::getLogLevel());
  });
}

}  // extern "C"
