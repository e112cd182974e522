#include "platform/sqlite/WalCheck.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace vorn::platform {
namespace {

// The layout of SQLite's write-ahead log (its file format, version 3007000).
constexpr std::size_t kHeaderSize = 32;
constexpr std::size_t kFrameHeaderSize = 24;
constexpr std::uint32_t kMagic = 0x377F0682;  // the low bit tells the checksum byte order
constexpr std::uint32_t kVersion = 3007000;

std::uint32_t bigEndian32(const std::uint8_t* bytes) {
  return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
         std::uint32_t{bytes[2]} << 8 | bytes[3];
}

// SQLite's running checksum over 32-bit words, carried on from `sums`.
class Checksum {
 public:
  explicit Checksum(bool bigEndianWords) : bigEndianWords_(bigEndianWords) {}

  void add(const std::uint8_t* bytes, std::size_t size) {
    for (std::size_t i = 0; i + 8 <= size; i += 8) {
      sums_[0] += word(bytes + i) + sums_[1];
      sums_[1] += word(bytes + i + 4) + sums_[0];
    }
  }
  bool matches(const std::uint8_t* stored) const {
    return bigEndian32(stored) == sums_[0] && bigEndian32(stored + 4) == sums_[1];
  }

 private:
  std::uint32_t word(const std::uint8_t* bytes) const {
    return bigEndianWords_ ? bigEndian32(bytes)
                           : std::uint32_t{bytes[3]} << 24 | std::uint32_t{bytes[2]} << 16 |
                                 std::uint32_t{bytes[1]} << 8 | bytes[0];
  }

  bool bigEndianWords_;
  std::array<std::uint32_t, 2> sums_{0, 0};
};

bool validPageSize(std::uint32_t size) {
  return size >= 512 && size <= 65536 && (size & (size - 1)) == 0;
}

bool sameSalts(const std::vector<std::uint8_t>& log, std::size_t frameOffset) {
  return std::equal(log.begin() + 16, log.begin() + 24, log.begin() + frameOffset + 8);
}

// Frames of an earlier generation of the log (other salts) end it. A frame of the current
// generation after such a one shows that the salts themselves were damaged.
bool laterFrameOfThisGeneration(const std::vector<std::uint8_t>& log, std::size_t offset,
                                std::size_t frameSize) {
  for (offset += frameSize; offset < log.size() && log.size() - offset >= frameSize;
       offset += frameSize) {
    if (sameSalts(log, offset))
      return true;
  }
  return false;
}

std::optional<std::string> frameDamage(const std::vector<std::uint8_t>& log, Checksum checksum,
                                       std::size_t pageSize) {
  const std::size_t frameSize = kFrameHeaderSize + pageSize;
  for (std::size_t offset = kHeaderSize, frame = 1; offset < log.size();
       offset += frameSize, ++frame) {
    if (log.size() - offset < frameSize)
      return "the file ends inside frame " + std::to_string(frame);
    const std::uint8_t* header = log.data() + offset;
    if (!sameSalts(log, offset)) {
      if (laterFrameOfThisGeneration(log, offset, frameSize))
        return "frame " + std::to_string(frame) + " is damaged";
      return std::nullopt;
    }
    checksum.add(header, 8);
    checksum.add(header + kFrameHeaderSize, pageSize);
    if (bigEndian32(header) == 0 || !checksum.matches(header + 16))
      return "frame " + std::to_string(frame) + " is damaged";
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> walDamage(const std::filesystem::path& wal) {
  std::ifstream stream(wal, std::ios::binary);
  const std::vector<std::uint8_t> log((std::istreambuf_iterator<char>(stream)), {});
  if (log.empty())
    return std::nullopt;
  if (log.size() < kHeaderSize)
    return "the file is shorter than its header";
  const std::uint32_t magic = bigEndian32(log.data());
  const std::uint32_t pageSize = bigEndian32(log.data() + 8);
  Checksum checksum((magic & 1) != 0);
  checksum.add(log.data(), kHeaderSize - 8);
  if ((magic & ~1u) != kMagic || bigEndian32(log.data() + 4) != kVersion ||
      !validPageSize(pageSize) || !checksum.matches(log.data() + 24))
    return "the header is damaged";
  return frameDamage(log, checksum, pageSize);
}

}  // namespace vorn::platform
