// JSON handed in through the bridge: parsed without exceptions and turned into the library's
// values. Each reader answers no value for text that is not the JSON it expects.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "vorn/base/Value.hpp"
#include "vorn/events/IdentityEvent.hpp"

namespace vorn::capi {

/// How many arrays and objects deep a document may nest. The library's values are built and
/// walked recursively, so deeper text from a host would overflow the stack.
inline constexpr std::size_t kMaxJsonDepth = 64;

/// The parsed document; no value for NULL or malformed text, or for text that nests deeper
/// than kMaxJsonDepth.
std::optional<nlohmann::json> parseJson(const char* text);

/// Null, booleans, numbers (integers that fit in 64 signed bits stay integers, other numbers
/// become doubles), strings, arrays and objects, recursively.
Value valueFrom(const nlohmann::json& json);

/// A JSON object; no value for anything else.
std::optional<Dictionary> dictionaryFrom(const char* text);
/// A JSON object of strings only; no value for anything else.
std::optional<StringDictionary> stringDictionaryFrom(const char* text);
/// A JSON array of strings only; no value for anything else.
std::optional<std::vector<std::string>> stringsFrom(const char* text);

}  // namespace vorn::capi
