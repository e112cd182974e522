// The retry deadlines of a request name: a server's Retry-After header with any text, any
// rate limit and response times, and any text already stored as a deadline. Parsing never
// fails loudly, a deadline found is never before `now`, and a header that parses is digits.
//
// The deadlines are internal to the network layer; their source is compiled into this
// target (see CMakeLists.txt). Secure preferences live in an in-memory store.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "FuzzInput.hpp"
#include "network/RetryDeadlines.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace {

std::shared_ptr<vorn::SecurePrefs> makePrefs() {
  static const auto manager = std::make_shared<vorn::EncryptionManager>(
      std::make_shared<vorn::VORNEncryptionKey>(vorn::Bytes(32, 0x11), vorn::Bytes(16, 0x22)));
  return std::make_shared<vorn::SecurePrefs>(
      vorn::DefaultsSuite(vorn::DefaultsStore::inMemory(), "fuzz"), manager);
}

vorn::WrappedResponse response(vorn::fuzz::FuzzInput& input, const std::string& header) {
  vorn::WrappedResponse wrapped;
  wrapped.endTimeMillis = input.number<std::int64_t>();
  if (input.byte() & 1) {
    vorn::HttpResponse http;
    http.statusCode = input.number<std::int16_t>();
    http.headers.emplace_back(input.byte() & 1 ? "Retry-After" : "retry-after", header);
    wrapped.response = std::move(http);
  }
  return wrapped;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto sink = vorn::testing::CaptureLogSink::install();
  vorn::fuzz::FuzzInput input(data, size);
  const std::string header = input.text();
  if (const auto seconds = vorn::network::parseRetryAfter(header)) {
    if (header.empty() || header.find_first_not_of("0123456789") != std::string::npos)
      std::abort();
  }
  const std::string name = input.text();
  const auto prefs = makePrefs();
  if (input.byte() & 1)
    prefs->setString(input.text(), vorn::network::serverKey(name));
  if (input.byte() & 1)
    prefs->setString(input.text(), vorn::network::deviceKey(name));
  const vorn::network::RetryDeadlines deadlines(prefs);
  const double rateLimit = input.number<double>();
  deadlines.apply(name, rateLimit, response(input, header));
  const auto now = input.number<std::int64_t>();
  if (const auto deadline = deadlines.blockingDeadline(name, now); deadline && *deadline < now)
    std::abort();
  sink->clear();
  return 0;
}
