// DataPolicy: the data merge operations the app reaches through VORNSdk - choosing the
// automatic or manual policy with its callback, reading them back, and resetting the merge
// markers of an application so that a merge may run again.
//
// The policy and callbacks are DataMergePolicyHandler's and DataMerge's shared state; the
// reset is DataMergeMarkers' (refused once a mandated automatic merge has happened).
// Thread safety: every operation may be called from any thread.
#pragma once

#include <string_view>

#include "vorn/base/Export.hpp"
#include "vorn/identity/DataMerge.hpp"
#include "vorn/identity/DataMergePolicy.hpp"

namespace vorn {

class VORN_API DataPolicy {
 public:
  DataPolicy() = delete;

  /// Stores the callback and makes `auto_` the policy; the manual callback is kept.
  static void setAutoMergePolicy(AutoMergePolicyCallback onCompletion);
  /// Stores the handler and makes `manual` the policy; the automatic callback is kept.
  static void setManualMergePolicy(ManualMergePolicyCallback handler);
  /// The policy set last; `notSet` before either setter ran.
  static DataMergePolicy getDataMergePolicy();
  /// The stored callbacks; empty when never set.
  static AutoMergePolicyCallback getAutoDataPolicyCallBack();
  static ManualMergePolicyCallback getManualDataPolicyCallBack();
  /// Clears the application's merge markers in the current Platform's defaults store; true
  /// when they are gone.
  static bool resetDataPolicy(std::string_view appId);
};

}  // namespace vorn
