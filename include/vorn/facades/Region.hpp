// Region: a circular geographic region the push module watches for location messages,
// described by its identifier, centre (degrees, WGS 84) and radius in metres.
//
// The push facade only passes regions through; the module decides how it builds one from a
// dictionary. A plain value type; thread-safe as any const object.
#pragma once

#include <string>

namespace vorn {

struct Region {
  std::string identifier;
  double latitude = 0;
  double longitude = 0;
  double radius = 0;

  bool operator==(const Region&) const = default;
};

}  // namespace vorn
