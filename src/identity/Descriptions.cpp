#include "identity/Descriptions.hpp"

namespace vorn::detail {
namespace {

void appendEscaped(std::string& out, char c) {
  switch (c) {
    case '\0':
      out += "\\0";
      return;
    case '\t':
      out += "\\t";
      return;
    case '\n':
      out += "\\n";
      return;
    case '\r':
      out += "\\r";
      return;
    case '"':
    case '\'':
    case '\\':
      out += '\\';
      break;
    default:
      break;
  }
  out += c;
}

void appendQuoted(std::string& out, const std::string& text) {
  out += '"';
  for (const char c : text)
    appendEscaped(out, c);
  out += '"';
}

}  // namespace

std::string describe(const std::vector<std::string>& list) {
  std::string out = "[";
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (i > 0)
      out += ", ";
    appendQuoted(out, list[i]);
  }
  return out + "]";
}

std::string describe(const StringDictionary& dictionary) {
  if (dictionary.empty())
    return "[:]";
  std::string out = "[";
  for (const auto& [key, value] : dictionary) {
    if (out.size() > 1)
      out += ", ";
    appendQuoted(out, key);
    out += ": ";
    appendQuoted(out, value);
  }
  return out + "]";
}

}  // namespace vorn::detail
