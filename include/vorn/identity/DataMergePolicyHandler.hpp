// DataMergePolicyHandler: holds the merge policy the app chose last, for the feature modules
// to read. It starts `notSet` and lives for the process only; nothing is persisted.
//
// Ownership: shared() is created on first use and never destroyed. Thread safety: every
// member may be called from any thread.
#pragma once

#include <atomic>

#include "vorn/base/Export.hpp"
#include "vorn/identity/DataMergePolicy.hpp"

namespace vorn {

class VORN_API DataMergePolicyHandler {
 public:
  DataMergePolicyHandler() = default;
  DataMergePolicyHandler(const DataMergePolicyHandler&) = delete;
  DataMergePolicyHandler& operator=(const DataMergePolicyHandler&) = delete;

  static DataMergePolicyHandler& shared();

  DataMergePolicy mergePolicy() const noexcept { return mergePolicy_.load(); }
  void setMergePolicy(DataMergePolicy policy) noexcept { mergePolicy_.store(policy); }

 private:
  std::atomic<DataMergePolicy> mergePolicy_{DataMergePolicy::notSet};
};

}  // namespace vorn
