#include "core/NumericCompare.hpp"

#include <cstddef>

namespace vorn::detail {
namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// The digit run starting at `at`, without its leading zeros; `at` moves past the run.
std::string_view takeDigitRun(std::string_view text, std::size_t& at) {
  const std::size_t start = at;
  while (at < text.size() && isDigit(text[at]))
    ++at;
  std::string_view run = text.substr(start, at - start);
  while (run.size() > 1 && run.front() == '0')
    run.remove_prefix(1);
  return run;
}

// Without leading zeros, a longer run is a larger number; equal lengths compare by digits.
std::strong_ordering compareDigitRuns(std::string_view a, std::string_view b) {
  if (a.size() != b.size())
    return a.size() <=> b.size();
  return a.compare(b) <=> 0;
}

}  // namespace

std::strong_ordering compareNumerically(std::string_view a, std::string_view b) {
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < a.size() && j < b.size()) {
    if (isDigit(a[i]) && isDigit(b[j])) {
      const auto order = compareDigitRuns(takeDigitRun(a, i), takeDigitRun(b, j));
      if (order != 0)
        return order;
      continue;
    }
    if (a[i] != b[j])
      return static_cast<unsigned char>(a[i]) <=> static_cast<unsigned char>(b[j]);
    ++i;
    ++j;
  }
  return (i < a.size()) <=> (j < b.size());
}

}  // namespace vorn::detail
