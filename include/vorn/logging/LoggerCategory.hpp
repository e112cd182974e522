// The category of a log line: what part of the system it speaks about. Categories select
// lines through the logger's filters.
#pragma once

#include <string_view>

#include "vorn/base/Export.hpp"

namespace vorn {

enum class LoggerCategory : int {
  auth = 0,
  behavior = 1,
  encryption = 2,
  eventBus = 3,
  network = 4,
  module = 5,
  sdk = 6,
  storage = 7,
  consent = 8,
  coredata = 9,
  database = 10,
  event = 11,
  identity = 12,
  interface = 13,
  location = 14,
  session = 15,
  util = 16,
};

inline constexpr int kLoggerCategoryCount = 17;

/// The category's text; note that `sdk` reads "vornsdk".
VORN_API std::string_view rawValue(LoggerCategory category) noexcept;

/// Never fails. The text is lower-cased and then compared with the category names, so
/// "AUTH" gives `auth`, while "eventBus" (any case) and "vornsdk" match nothing: they give
/// `sdk` and write the error line "Invalid Logger Category. Defaulting to .sdk".
VORN_API LoggerCategory loggerCategoryFrom(std::string_view text);

}  // namespace vorn
