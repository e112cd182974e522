// Compatibility: the closed range of dotted module versions a facade accepts.
//
// min and max must have the same number of dot-separated parts (that number becomes
// semanticsCount()), and no part may be longer than two characters: create() gives null
// otherwise, logging only the first case. A version is accepted when it has semanticsCount()
// parts and lies between min and max inclusive, compared as text with digit runs ordered by
// their numeric value ("8.10.0" comes after "8.9.9"). Versions with a different number of
// parts never match, so "1.0" is not "1.0.0".
//
// Parts are what lies between dots, empty ones included ("1..0" has three).
//
// Ownership: immutable; held by std::shared_ptr<const Compatibility> by a facade. Thread
// safety: every call may be made from any thread.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "vorn/base/Export.hpp"

namespace vorn {

class VORN_API Compatibility {
 public:
  /// The range [min, max]; null when the two have different part counts (with a log line)
  /// or when a part of either is longer than two characters.
  static std::shared_ptr<const Compatibility> create(std::string min, std::string max);

  const std::string& min() const noexcept { return min_; }
  const std::string& max() const noexcept { return max_; }
  /// How many dot-separated parts every accepted version has.
  std::size_t semanticsCount() const noexcept { return semanticsCount_; }

  /// True when `version` lies in the range.
  bool isCompatible(std::string_view version) const;

  /// How many dot-separated parts `version` has, counted as the range counts them.
  static std::size_t partCount(std::string_view version);

 private:
  Compatibility(std::string min, std::string max, std::size_t semanticsCount);

  const std::string min_;
  const std::string max_;
  const std::size_t semanticsCount_;
};

}  // namespace vorn
