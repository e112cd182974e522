// A secure preference whose stored bytes are anything: what a damaged, rolled-back or
// foreign defaults file holds under an entry's key. The first byte chooses what is stored:
// the bytes as they come (so decryption itself sees them), their encryption (so the typed
// readers see any text), or a value of another type. Reading never fails loudly: every
// reader gives a value or none, and the typed readers agree with the text.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "FuzzInput.hpp"
#include "vorn/storage/crypto/Base64.hpp"
#include "vorn/storage/prefs/SecurePrefs.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace {

constexpr std::string_view kKey = "value";

std::shared_ptr<vorn::EncryptionManager> makeManager() {
  auto key =
      std::make_shared<vorn::VORNEncryptionKey>(vorn::Bytes(32, 0x5A), vorn::Bytes(16, 0xA5));
  return std::make_shared<vorn::EncryptionManager>(std::move(key));
}

void store(const vorn::DefaultsSuite& suite, const vorn::EncryptionManager& manager,
           vorn::fuzz::FuzzInput& input) {
  static const std::string storedKey = vorn::base64Encode(*manager.encrypt(kKey));
  switch (input.byte() % 4) {
    case 0: {
      const auto bytes = input.rest();
      suite.setData(vorn::DefaultsData(bytes.begin(), bytes.end()), storedKey);
      break;
    }
    case 1:
      if (const auto encrypted = manager.encrypt(input.restText()))
        suite.setData(*encrypted, storedKey);
      break;
    case 2:
      suite.setString(input.restText(), storedKey);
      break;
    default:
      suite.setInteger(input.number<std::int64_t>(), storedKey);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto sink = vorn::testing::CaptureLogSink::install();
  static const auto manager = makeManager();
  (void)manager->decrypt(vorn::ByteView(data, size));
  vorn::fuzz::FuzzInput input(data, size);
  const vorn::DefaultsSuite suite(vorn::DefaultsStore::inMemory(), "fuzz");
  store(suite, *manager, input);
  const vorn::SecurePrefs prefs(suite, manager);
  const auto text = prefs.stringFor(kKey);
  auto read = prefs.readString(kKey);
  if (read.isError() || std::move(read).valueIfFound() != text)
    std::abort();
  const bool typed = prefs.intFor(kKey).has_value() || prefs.boolFor(kKey).has_value() ||
                     prefs.doubleFor(kKey).has_value() || prefs.floatFor(kKey).has_value();
  if (typed && !text)
    std::abort();
  sink->clear();
  return 0;
}
