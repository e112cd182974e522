// Links the installed library and its test support through their umbrella headers, logs one
// line and checks it arrived.
#include <vorn/testing/testing.hpp>
#include <vorn/vorn.hpp>

int main() {
  auto sink = vorn::testing::CaptureLogSink::install();
  VORN_LOG_DEBUG(vorn::LoggerCategory::sdk, "installed");
  return sink->contains("installed") && vorn::VORNSdk::getLogLevel() == vorn::LogLevel::debug ? 0
                                                                                              : 1;
}
