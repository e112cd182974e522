#include "vorn/core/Compatibility.hpp"

#include <algorithm>
#include <vector>

#include "core/NumericCompare.hpp"
#include "vorn/logging/Log.hpp"

namespace vorn {
namespace {

// Every stretch between dots, empty ones included.
std::vector<std::string_view> parts(std::string_view text) {
  std::vector<std::string_view> result;
  std::size_t start = 0;
  for (std::size_t dot = text.find('.'); dot != std::string_view::npos;
       dot = text.find('.', start)) {
    result.push_back(text.substr(start, dot - start));
    start = dot + 1;
  }
  result.push_back(text.substr(start));
  return result;
}

// Characters, not bytes: UTF-8 continuation bytes are not counted.
std::size_t characterCount(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

bool hasLongPart(const std::vector<std::string_view>& list) {
  return std::any_of(list.begin(), list.end(),
                     [](std::string_view part) { return characterCount(part) > 2; });
}

}  // namespace

std::shared_ptr<const Compatibility> Compatibility::create(std::string min, std::string max) {
  const auto minParts = parts(min);
  const auto maxParts = parts(max);
  if (minParts.size() != maxParts.size()) {
    VORN_LOG_DEBUG(LoggerCategory::sdk,
                   "Creating compatibility failed. Your min and max have inconsistent semantics.");
    return nullptr;
  }
  // Two characters per part is a deliberate ceiling: "10.100.0" is refused.
  if (hasLongPart(minParts) || hasLongPart(maxParts))
    return nullptr;
  const std::size_t count = minParts.size();
  return std::shared_ptr<const Compatibility>(
      new Compatibility(std::move(min), std::move(max), count));
}

Compatibility::Compatibility(std::string min, std::string max, std::size_t semanticsCount)
    : min_(std::move(min)), max_(std::move(max)), semanticsCount_(semanticsCount) {}

bool Compatibility::isCompatible(std::string_view version) const {
  if (partCount(version) != semanticsCount_)
    return false;
  const auto toMin = detail::compareNumerically(version, min_);
  const auto toMax = detail::compareNumerically(version, max_);
  if (toMin == 0 || toMax == 0)
    return true;
  if (toMax > 0)
    return false;
  return toMin > 0;
}

std::size_t Compatibility::partCount(std::string_view version) {
  return parts(version).size();
}

}  // namespace vorn
