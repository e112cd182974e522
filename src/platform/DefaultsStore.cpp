#include "vorn/platform/DefaultsStore.hpp"

#include <charconv>
#include <cstdlib>

namespace vorn {
namespace {

// Numeric text reads as its leading integer, the way the host's defaults read "42abc".
std::int64_t leadingInteger(const std::string& text) {
  std::size_t start = text.find_first_not_of(" \t\n");
  if (start == std::string::npos)
    return 0;
  if (text[start] == '+')
    ++start;
  std::int64_t value = 0;
  std::from_chars(text.data() + start, text.data() + text.size(), value);
  return value;
}

bool textAsBool(const std::string& text) {
  if (text == "YES" || text == "yes" || text == "true" || text == "TRUE" || text == "Y" ||
      text == "y")
    return true;
  return leadingInteger(text) != 0;
}

struct AsBool {
  bool operator()(bool v) const { return v; }
  bool operator()(std::int64_t v) const { return v != 0; }
  bool operator()(const std::string& v) const { return textAsBool(v); }
  bool operator()(const DefaultsData&) const { return false; }
};

struct AsInteger {
  std::int64_t operator()(bool v) const { return v ? 1 : 0; }
  std::int64_t operator()(std::int64_t v) const { return v; }
  std::int64_t operator()(const std::string& v) const { return leadingInteger(v); }
  std::int64_t operator()(const DefaultsData&) const { return 0; }
};

struct AsString {
  std::optional<std::string> operator()(bool v) const { return v ? "1" : "0"; }
  std::optional<std::string> operator()(std::int64_t v) const { return std::to_string(v); }
  std::optional<std::string> operator()(const std::string& v) const { return v; }
  std::optional<std::string> operator()(const DefaultsData&) const { return std::nullopt; }
};

}  // namespace

DefaultsStore::~DefaultsStore() = default;

ReadResult<DefaultsValue> DefaultsStore::read(std::string_view suite, std::string_view key) {
  auto value = object(suite, key);
  return value ? ReadResult<DefaultsValue>::found(std::move(*value))
               : ReadResult<DefaultsValue>::absent();
}

std::vector<ReadResult<DefaultsValue>> DefaultsStore::readSnapshot(
    std::string_view suite, std::span<const std::string> keys) {
  std::vector<ReadResult<DefaultsValue>> results;
  results.reserve(keys.size());
  for (const std::string& key : keys)
    results.push_back(read(suite, key));
  return results;
}

bool DefaultsStore::boolFor(std::string_view suite, std::string_view key) {
  const auto value = object(suite, key);
  return value ? std::visit(AsBool(), *value) : false;
}

std::int64_t DefaultsStore::integerFor(std::string_view suite, std::string_view key) {
  const auto value = object(suite, key);
  return value ? std::visit(AsInteger(), *value) : 0;
}

std::optional<std::string> DefaultsStore::stringFor(std::string_view suite, std::string_view key) {
  const auto value = object(suite, key);
  return value ? std::visit(AsString(), *value) : std::nullopt;
}

std::optional<DefaultsData> DefaultsStore::dataFor(std::string_view suite, std::string_view key) {
  auto value = object(suite, key);
  if (!value || !std::holds_alternative<DefaultsData>(*value))
    return std::nullopt;
  return std::get<DefaultsData>(std::move(*value));
}

bool DefaultsStore::setBool(std::string_view suite, bool value, std::string_view key) {
  return set(suite, key, DefaultsValue(value));
}

bool DefaultsStore::setInteger(std::string_view suite, std::int64_t value, std::string_view key) {
  return set(suite, key, DefaultsValue(value));
}

bool DefaultsStore::setString(std::string_view suite, std::string_view value,
                              std::string_view key) {
  return set(suite, key, DefaultsValue(std::string(value)));
}

bool DefaultsStore::setData(std::string_view suite, const DefaultsData& value,
                            std::string_view key) {
  return set(suite, key, DefaultsValue(value));
}

DefaultsSuite DefaultsStore::standard() {
  return DefaultsSuite(shared_from_this(), std::string(kStandardSuite));
}

DefaultsSuite DefaultsStore::suite(std::string name) {
  return DefaultsSuite(shared_from_this(), std::move(name));
}

}  // namespace vorn
