#include "vorn/messaging/MessageProducer.hpp"

#include <array>

#include "base/RawValues.hpp"

namespace vorn {
namespace {
constexpr std::array<std::string_view, 3> kRawValues{"cdp", "push", "sdk"};
}  // namespace

std::string_view rawValue(MessageProducer producer) noexcept {
  return detail::rawValueIn(kRawValues, producer);
}

std::optional<MessageProducer> messageProducerFrom(std::string_view raw) noexcept {
  return detail::fromRawValueIn<MessageProducer>(kRawValues, raw);
}

std::optional<MessageProducer> messageProducerFromInt(int raw) noexcept {
  if (raw < 0 || raw >= static_cast<int>(kRawValues.size()))
    return std::nullopt;
  return static_cast<MessageProducer>(raw);
}

}  // namespace vorn
