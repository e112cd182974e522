#include "vorn/base/Uuid.hpp"

#include <openssl/rand.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <random>

#include "base/SystemHooks.hpp"

namespace vorn {
namespace {

constexpr std::size_t kPoolSize = 4096;
constexpr std::size_t kUuidBytes = 16;

// Bumped in every child after fork(); a pool filled under an older value is stale.
std::atomic<unsigned> forkGeneration{0};

void onForkChild() {
  forkGeneration.fetch_add(1, std::memory_order_relaxed);
}

void registerForkHandler() {
  static const bool registered = [] {
    detail::addForkChildHandler(onForkChild);
    return true;
  }();
  (void)registered;
}

void fillRandom(std::uint8_t* bytes, std::size_t count) {
  if (RAND_bytes(bytes, static_cast<int>(count)) == 1)
    return;
  // OpenSSL failed to seed; the kernel's generator is the next best source.
  std::random_device device;
  for (std::size_t i = 0; i < count; ++i)
    bytes[i] = static_cast<std::uint8_t>(device());
}

struct Pool {
  std::array<std::uint8_t, kPoolSize> bytes{};
  std::size_t used = kPoolSize;
  unsigned generation = 0;

  const std::uint8_t* take() {
    const unsigned current = forkGeneration.load(std::memory_order_relaxed);
    if (used + kUuidBytes > kPoolSize || generation != current) {
      fillRandom(bytes.data(), bytes.size());
      used = 0;
      generation = current;
    }
    const std::uint8_t* out = bytes.data() + used;
    used += kUuidBytes;
    return out;
  }
};

}  // namespace

std::string makeUuidString() {
  registerForkHandler();
  thread_local Pool pool;
  std::array<std::uint8_t, kUuidBytes> uuid;
  const std::uint8_t* random = pool.take();
  std::copy(random, random + kUuidBytes, uuid.begin());
  uuid[6] = static_cast<std::uint8_t>((uuid[6] & 0x0F) | 0x40);  // version 4
  uuid[8] = static_cast<std::uint8_t>((uuid[8] & 0x3F) | 0x80);  // RFC 4122 variant

  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string text(36, '-');
  std::size_t pos = 0;
  for (std::size_t i = 0; i < kUuidBytes; ++i) {
    if (pos == 8 || pos == 13 || pos == 18 || pos == 23)
      ++pos;
    text[pos++] = kHex[uuid[i] >> 4];
    text[pos++] = kHex[uuid[i] & 0x0F];
  }
  return text;
}

}  // namespace vorn
