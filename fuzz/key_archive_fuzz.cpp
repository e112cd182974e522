// The key store's archive decoder over any bytes, as a damaged or foreign keychain item
// holds them: the key store's dictionary, one key store key and plain data. Decoding may
// refuse anything and never crash; what decodes archives again to bytes that decode to an
// equal object. Secure keys are looked up in an empty in-memory store, so none is found.
//
// The decoder is internal to the library; its source is compiled into this target (see
// CMakeLists.txt).
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "storage/keystore/KeyArchive.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace {

constexpr std::string_view kArchiveKey = "root";

bool sameKeys(const vorn::KeyStoreDictionary& a, const vorn::KeyStoreDictionary& b) {
  if (a.size() != b.size())
    return false;
  for (auto left = a.begin(), right = b.begin(); left != a.end(); ++left, ++right) {
    if (left->first != right->first || !left->second || !right->second ||
        !left->second->isEqual(*right->second))
      return false;
  }
  return true;
}

void dictionary(vorn::ByteView bytes, vorn::KeychainStore& store) {
  const auto decoded = vorn::unarchiveDictionary(bytes, kArchiveKey, store);
  if (!decoded.object)
    return;
  const auto again = vorn::unarchiveDictionary(
      vorn::archiveDictionary(*decoded.object, kArchiveKey), kArchiveKey, store);
  if (!again.object || !sameKeys(*again.object, *decoded.object))
    std::abort();
}

void key(vorn::ByteView bytes, vorn::KeychainStore& store) {
  const auto decoded = vorn::unarchiveKeyStoreKey(bytes, kArchiveKey, store);
  if (!decoded.object)
    return;
  const auto again = vorn::unarchiveKeyStoreKey(
      vorn::archiveKeyStoreKey(*decoded.object, kArchiveKey), kArchiveKey, store);
  if (!again.object || !again.object->isEqual(*decoded.object))
    std::abort();
}

void data(vorn::ByteView bytes) {
  const auto decoded = vorn::unarchiveData(bytes, kArchiveKey);
  if (!decoded.object)
    return;
  if (vorn::unarchiveData(vorn::archiveData(*decoded.object, kArchiveKey), kArchiveKey).object !=
      decoded.object)
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const auto sink = vorn::testing::CaptureLogSink::install();
  static const auto store = vorn::KeychainStore::inMemory();
  const vorn::ByteView input(bytes, size);
  dictionary(input, *store);
  key(input, *store);
  data(input);
  sink->clear();
  return 0;
}
