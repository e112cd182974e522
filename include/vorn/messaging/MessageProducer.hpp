// Who put a message on the event bus: `cdp` (0), `push` (1) or `sdk` (2). The tags of the
// two modules equal their ModuleName tags.
#pragma once

#include <optional>
#include <string_view>

#include "vorn/base/Export.hpp"

namespace vorn {

enum class MessageProducer : int { cdp = 0, push = 1, sdk = 2 };

/// "cdp", "push" or "sdk".
VORN_API std::string_view rawValue(MessageProducer producer) noexcept;

/// The exact raw value; anything else gives no value.
VORN_API std::optional<MessageProducer> messageProducerFrom(std::string_view raw) noexcept;

/// 0, 1 or 2; anything else gives no value.
VORN_API std::optional<MessageProducer> messageProducerFromInt(int raw) noexcept;

}  // namespace vorn
