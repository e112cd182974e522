#include "vorn/identity/DataPolicy.hpp"

#include <utility>

#include "vorn/identity/DataMergeMarkers.hpp"
#include "vorn/identity/DataMergePolicyHandler.hpp"

namespace vorn {

void DataPolicy::setAutoMergePolicy(AutoMergePolicyCallback onCompletion) {
  DataMerge::shared().setAutoMergePolicyCallback(std::move(onCompletion));
  DataMergePolicyHandler::shared().setMergePolicy(DataMergePolicy::auto_);
}

void DataPolicy::setManualMergePolicy(ManualMergePolicyCallback handler) {
  DataMerge::shared().setManualMergePolicyCallback(std::move(handler));
  DataMergePolicyHandler::shared().setMergePolicy(DataMergePolicy::manual);
}

DataMergePolicy DataPolicy::getDataMergePolicy() {
  return DataMergePolicyHandler::shared().mergePolicy();
}

AutoMergePolicyCallback DataPolicy::getAutoDataPolicyCallBack() {
  return DataMerge::shared().autoMergePolicyCallback();
}

ManualMergePolicyCallback DataPolicy::getManualDataPolicyCallBack() {
  return DataMerge::shared().manualMergePolicyCallback();
}

bool DataPolicy::resetDataPolicy(std::string_view appId) {
  return DataMergeMarkers::resetDataPolicy(appId);
}

}  // namespace vorn
