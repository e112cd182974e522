#include "vorn/identity/DataMerge.hpp"

#include <utility>

namespace vorn {

DataMerge& DataMerge::shared() {
  static DataMerge* const instance = new DataMerge;
  return *instance;
}

AutoMergePolicyCallback DataMerge::autoMergePolicyCallback() const {
  std::lock_guard lock(mutex_);
  return autoMergePolicyCallback_;
}

void DataMerge::setAutoMergePolicyCallback(AutoMergePolicyCallback callback) {
  // The replaced callback is destroyed after the lock: it is app code.
  std::lock_guard lock(mutex_);
  autoMergePolicyCallback_.swap(callback);
}

ManualMergePolicyCallback DataMerge::manualMergePolicyCallback() const {
  std::lock_guard lock(mutex_);
  return manualMergePolicyCallback_;
}

void DataMerge::setManualMergePolicyCallback(ManualMergePolicyCallback callback) {
  std::lock_guard lock(mutex_);
  manualMergePolicyCallback_.swap(callback);
}

}  // namespace vorn
