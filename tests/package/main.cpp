// Links the installed library and its test support, logs one line and checks it arrived.
#include <vorn/core/VORNSdk.hpp>
#include <vorn/logging/Log.hpp>
#include <vorn/testing/CaptureLogSink.hpp>

int main() {
  auto sink = vorn::testing::CaptureLogSink::install();
  VORN_LOG_DEBUG(vorn::LoggerCategory::sdk, "installed");
  return sink->contains("installed") && vorn::VORNSdk::getLogLevel() == vorn::LogLevel::debug ? 0
                                                                                              : 1;
}
