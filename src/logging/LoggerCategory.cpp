#include "vorn/logging/LoggerCategory.hpp"

#include <array>
#include <string>

#include "base/RawValues.hpp"
#include "base/Text.hpp"
#include "vorn/logging/Log.hpp"

namespace vorn {
namespace {
constexpr std::array<std::string_view, kLoggerCategoryCount> kRawValues{
    "auth",     "behavior",  "encryption", "eventBus", "network",  "module",
    "vornsdk",  "storage",   "consent",    "coredata", "database", "event",
    "identity", "interface", "location",   "session",  "util"};

// The names text is compared with, in the order they are tried. They are compared after the
// input is lower-cased, so "eventBus" can never match: that is how the parser has always
// behaved, and hosts rely on "eventBus" falling back to `sdk`.
struct Candidate {
  std::string_view name;
  LoggerCategory category;
};
constexpr std::array<Candidate, kLoggerCategoryCount> kCandidates{{
    {"auth", LoggerCategory::auth},
    {"behavior", LoggerCategory::behavior},
    {"encryption", LoggerCategory::encryption},
    {"eventBus", LoggerCategory::eventBus},
    {"identity", LoggerCategory::identity},
    {"network", LoggerCategory::network},
    {"module", LoggerCategory::module},
    {"sdk", LoggerCategory::sdk},
    {"storage", LoggerCategory::storage},
    {"consent", LoggerCategory::consent},
    {"coredata", LoggerCategory::coredata},
    {"database", LoggerCategory::database},
    {"event", LoggerCategory::event},
    {"interface", LoggerCategory::interface},
    {"location", LoggerCategory::location},
    {"session", LoggerCategory::session},
    {"util", LoggerCategory::util},
}};
}  // namespace

std::string_view rawValue(LoggerCategory category) noexcept {
  return detail::rawValueIn(kRawValues, category);
}

LoggerCategory loggerCategoryFrom(std::string_view text) {
  const std::string lower = detail::lowercased(text);
  for (const Candidate& candidate : kCandidates) {
    if (lower == candidate.name)
      return candidate.category;
  }
  VORN_LOG_ERROR(LoggerCategory::sdk, "Invalid Logger Category. Defaulting to .sdk");
  return LoggerCategory::sdk;
}

}  // namespace vorn
