// The JSON record of one bus message as the module queues and uploads it: "id", "name",
// "category", "producer", "timestamp", "attributes" when the event has them, and the payload
// of a commerce event ("lineItems", "order" or "catalogObject"). Decimals are JSON numbers
// (vorn::toJson). Pure; thread-safe.
#pragma once

#include <nlohmann/json.hpp>

#include "vorn/messaging/Message.hpp"

namespace cdp {

nlohmann::json eventJson(const vorn::Message& message);

}  // namespace cdp
