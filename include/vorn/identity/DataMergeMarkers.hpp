// DataMergeMarkers: the per-application "merge completed" markers that feature modules write
// into the standard user defaults, and the data policy reset that clears them.
//
// The markers are Boolean entries named after the application id. The reset refuses to run
// once the mandated automatic opt-in merge has happened, and never removes that marker.
// Lines are logged at debug level in category storage.
//
// Thread safety: each call may be made from any thread; the defaults store serialises the
// reads and writes, but a reset racing a module that writes a marker sees either order.
#pragma once

#include <string>
#include <string_view>

#include "vorn/base/Export.hpp"
#include "vorn/platform/DefaultsStore.hpp"

namespace vorn {

class VORN_API DataMergeMarkers {
 public:
  DataMergeMarkers() = delete;

  /// "VORN_MERGE_COMPLETED-" + appId
  static std::string mergeCompletedKey(std::string_view appId);
  /// "VORN_DEFAULT_MERGE_COMPLETED-" + appId
  static std::string defaultMergeCompletedKey(std::string_view appId);
  /// "VORN_MANDATE_AUTO_OPT_IN_MERGE_COMPLETED-" + appId
  static std::string mandateAutoOptInMergeCompletedKey(std::string_view appId);

  /// Removes the merge-completed and default-merge-completed markers of `appId` from the
  /// standard domain of the current Platform's defaults store, unless the mandated marker is
  /// set. True when both markers are gone afterwards.
  static bool resetDataPolicy(std::string_view appId);
  /// The same on a given store.
  static bool resetDataPolicy(DefaultsStore& defaults, std::string_view appId);
};

}  // namespace vorn
