#include "capi/JsonArguments.hpp"

#include <cstdint>
#include <limits>
#include <string_view>

namespace vorn::capi {
namespace {

// Whether no array or object opens more than kMaxJsonDepth levels deep, counted without
// recursion. Brackets inside strings do not count; the rest of the syntax is the parser's.
bool isShallowJson(std::string_view text) {
  std::size_t depth = 0;
  bool inString = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (inString) {
      if (c == '\\')
        ++i;
      else if (c == '"')
        inString = false;
    } else if (c == '"') {
      inString = true;
    } else if (c == '[' || c == '{') {
      if (++depth > kMaxJsonDepth)
        return false;
    } else if ((c == ']' || c == '}') && depth > 0) {
      --depth;
    }
  }
  return true;
}

}  // namespace

std::optional<nlohmann::json> parseJson(const char* text) {
  if (text == nullptr || !isShallowJson(text))
    return std::nullopt;
  nlohmann::json json = nlohmann::json::parse(text, nullptr, /*allow_exceptions=*/false);
  if (json.is_discarded())
    return std::nullopt;
  return json;
}

Value valueFrom(const nlohmann::json& json) {
  switch (json.type()) {
    case nlohmann::json::value_t::boolean:
      return Value(json.get<bool>());
    case nlohmann::json::value_t::number_integer:
      return Value(json.get<std::int64_t>());
    case nlohmann::json::value_t::number_unsigned: {
      const auto number = json.get<std::uint64_t>();
      if (number <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
        return Value(static_cast<std::int64_t>(number));
      return Value(static_cast<double>(number));
    }
    case nlohmann::json::value_t::number_float:
      return Value(json.get<double>());
    case nlohmann::json::value_t::string:
      return Value(json.get<std::string>());
    case nlohmann::json::value_t::array: {
      Array array;
      for (const auto& element : json)
        array.push_back(valueFrom(element));
      return Value(std::move(array));
    }
    case nlohmann::json::value_t::object: {
      Dictionary dictionary;
      for (const auto& [key, element] : json.items())
        dictionary.emplace(key, valueFrom(element));
      return Value(std::move(dictionary));
    }
    default:
      return Value();
  }
}

std::optional<Dictionary> dictionaryFrom(const char* text) {
  const auto json = parseJson(text);
  if (!json || !json->is_object())
    return std::nullopt;
  return *valueFrom(*json).get<Dictionary>();
}

std::optional<StringDictionary> stringDictionaryFrom(const char* text) {
  const auto json = parseJson(text);
  if (!json || !json->is_object())
    return std::nullopt;
  StringDictionary dictionary;
  for (const auto& [key, element] : json->items()) {
    if (!element.is_string())
      return std::nullopt;
    dictionary.emplace(key, element.get<std::string>());
  }
  return dictionary;
}

std::optional<std::vector<std::string>> stringsFrom(const char* text) {
  const auto json = parseJson(text);
  if (!json || !json->is_array())
    return std::nullopt;
  std::vector<std::string> strings;
  for (const auto& element : *json) {
    if (!element.is_string())
      return std::nullopt;
    strings.push_back(element.get<std::string>());
  }
  return strings;
}

}  // namespace vorn::capi
