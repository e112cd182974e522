#include "base/CborDepth.hpp"

#include <cstdint>
#include <optional>
#include <vector>

namespace vorn {
namespace {

constexpr std::uint64_t kIndefinite = UINT64_MAX;

class Scanner {
 public:
  explicit Scanner(ByteView data) : data_(data) {}

  bool atEnd() const { return position_ == data_.size(); }

  std::optional<std::uint8_t> byte() {
    if (atEnd())
      return std::nullopt;
    return data_[position_++];
  }

  // The argument of an item head with additional information `info`.
  std::optional<std::uint64_t> argument(std::uint8_t info) {
    if (info < 24)
      return info;
    if (info == 31)
      return kIndefinite;
    if (info > 27)
      return std::nullopt;
    const std::size_t width = std::size_t{1} << (info - 24);
    if (data_.size() - position_ < width)
      return std::nullopt;
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i)
      value = (value << 8) | data_[position_++];
    return value;
  }

  bool skip(std::uint64_t count) {
    if (count > data_.size() - position_)
      return false;
    position_ += static_cast<std::size_t>(count);
    return true;
  }

 private:
  ByteView data_;
  std::size_t position_ = 0;
};

// Counts one finished item against the open containers, closing those that are full.
void finishItem(std::vector<std::uint64_t>& open) {
  while (!open.empty() && open.back() != kIndefinite) {
    if (--open.back() > 0)
      return;
    open.pop_back();
  }
}

}  // namespace

bool isShallowCbor(ByteView data, std::size_t maxDepth) {
  Scanner scanner(data);
  std::vector<std::uint64_t> open;  // items still owed by each open container
  do {
    const auto head = scanner.byte();
    if (!head)
      return false;
    const std::uint8_t major = *head >> 5;
    const std::uint8_t info = *head & 0x1F;
    if (*head == 0xFF) {
      if (open.empty() || open.back() != kIndefinite)
        return false;
      open.pop_back();
      finishItem(open);
      continue;
    }
    const auto argument = scanner.argument(info);
    if (!argument || (*argument == kIndefinite && (major < 2 || major == 6 || major == 7)))
      return false;
    if (major == 6)
      continue;  // a tag prefixes the next item
    const bool container = major == 4 || major == 5 || *argument == kIndefinite;
    if (major == 7 || major < 2 || (!container && scanner.skip(*argument))) {
      finishItem(open);
    } else if (!container) {
      return false;
    } else if (*argument == kIndefinite) {
      open.push_back(kIndefinite);
    } else if (*argument > 0) {
      if (major == 5 && *argument > kIndefinite / 2)
        return false;
      open.push_back(major == 5 ? *argument * 2 : *argument);
    } else {
      finishItem(open);
    }
    if (open.size() > maxDepth)
      return false;
  } while (!open.empty());
  return scanner.atEnd();
}

}  // namespace vorn
