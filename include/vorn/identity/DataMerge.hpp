// DataMerge: holds the app's merge callbacks for the feature modules to call - one told the
// outcome of an automatic merge, one handed the two data sets a manual merge reconciles.
//
// Both start absent (an empty std::function) and live for the process only. Setting one
// leaves the other as it is.
//
// Ownership: shared() is created on first use and never destroyed; getters hand out
// copies. Thread safety: every member may be called from any thread; a callback is never
// called here, so it runs on whichever thread the module that fetched it chooses.
#pragma once

#include <functional>
#include <mutex>

#include "vorn/base/Export.hpp"
#include "vorn/base/Value.hpp"

namespace vorn {

using AutoMergePolicyCallback = std::function<void(bool merged)>;
using ManualMergePolicyCallback = std::function<void(const Dictionary&, const Dictionary&)>;

class VORN_API DataMerge {
 public:
  DataMerge() = default;
  DataMerge(const DataMerge&) = delete;
  DataMerge& operator=(const DataMerge&) = delete;

  static DataMerge& shared();

  AutoMergePolicyCallback autoMergePolicyCallback() const;
  void setAutoMergePolicyCallback(AutoMergePolicyCallback callback);

  ManualMergePolicyCallback manualMergePolicyCallback() const;
  void setManualMergePolicyCallback(ManualMergePolicyCallback callback);

 private:
  mutable std::mutex mutex_;
  AutoMergePolicyCallback autoMergePolicyCallback_;      // guarded by mutex_
  ManualMergePolicyCallback manualMergePolicyCallback_;  // guarded by mutex_
};

}  // namespace vorn
