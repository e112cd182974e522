// Coordinates: a point on the earth in degrees (WGS 84), as the app hands a location to the
// customer-data module. A plain value type; thread-safe as any const object.
#pragma once

namespace vorn {

struct Coordinates {
  double latitude = 0;
  double longitude = 0;

  bool operator==(const Coordinates&) const = default;
};

}  // namespace vorn
