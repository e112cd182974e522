// DataMergeMarkers: the per-application "merge completed" markers that feature modules write
// into the standard user defaults, and the data policy reset that clears them.
//
// The markers are Boolean entries named after the application id. The reset refuses to run
// once the mandated automatic opt-in merge has happened, and never removes that marker; a
// mandate marker that cannot be read refuses it too, as does a result that cannot be read
// back. Lines are logged at debug level in category storage.
//
// Ownership: an instance holds the defaults store it works on; shared() is the one on the
// current Platform's store, which the class operations use.
//
// Thread safety: each call may be made from any thread; the defaults store serialises the
// reads and writes, but a reset racing a module that writes a marker sees either order.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "vorn/base/Export.hpp"
#include "vorn/platform/DefaultsStore.hpp"

namespace vorn {

class VORN_API DataMergeMarkers {
 public:
  explicit DataMergeMarkers(std::shared_ptr<DefaultsStore> defaults);
  /// The markers of the current Platform's defaults store.
  static DataMergeMarkers shared();

  /// "VORN_MERGE_COMPLETED-" + appId
  static std::string mergeCompletedKey(std::string_view appId);
  /// "VORN_DEFAULT_MERGE_COMPLETED-" + appId
  static std::string defaultMergeCompletedKey(std::string_view appId);
  /// "VORN_MANDATE_AUTO_OPT_IN_MERGE_COMPLETED-" + appId
  static std::string mandateAutoOptInMergeCompletedKey(std::string_view appId);

  /// Removes the merge-completed and default-merge-completed markers of `appId` from the
  /// standard domain, unless the mandated marker is set (or cannot be read). True when both
  /// markers are known to be gone afterwards.
  bool reset(std::string_view appId) const;

  /// shared().reset(appId).
  static bool resetDataPolicy(std::string_view appId);
  /// The same on a given store.
  static bool resetDataPolicy(DefaultsStore& defaults, std::string_view appId);

 private:
  std::shared_ptr<DefaultsStore> defaults_;
};

}  // namespace vorn
