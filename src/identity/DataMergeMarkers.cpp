#include "vorn/identity/DataMergeMarkers.hpp"

#include "vorn/logging/Log.hpp"
#include "vorn/platform/Platform.hpp"

namespace vorn {

std::string DataMergeMarkers::mergeCompletedKey(std::string_view appId) {
  return "VORN_MERGE_COMPLETED-" + std::string(appId);
}

std::string DataMergeMarkers::defaultMergeCompletedKey(std::string_view appId) {
  return "VORN_DEFAULT_MERGE_COMPLETED-" + std::string(appId);
}

std::string DataMergeMarkers::mandateAutoOptInMergeCompletedKey(std::string_view appId) {
  return "VORN_MANDATE_AUTO_OPT_IN_MERGE_COMPLETED-" + std::string(appId);
}

bool DataMergeMarkers::resetDataPolicy(std::string_view appId) {
  const auto defaults = Platform::current()->defaults;
  return resetDataPolicy(*defaults, appId);
}

bool DataMergeMarkers::resetDataPolicy(DefaultsStore& defaults, std::string_view appId) {
  constexpr std::string_view standard = DefaultsStore::kStandardSuite;
  const std::string merged = mergeCompletedKey(appId);
  const std::string defaultMerged = defaultMergeCompletedKey(appId);
  // Once a mandated automatic merge has happened, the modules must not merge again.
  if (defaults.boolFor(standard, mandateAutoOptInMergeCompletedKey(appId))) {
    VORN_LOG_DEBUG(LoggerCategory::storage,
                   "Data policy reset not allowed as the data merge is already done!");
    return false;
  }
  VORN_LOG_DEBUG(LoggerCategory::storage, "Data policy reset Started!");
  defaults.remove(standard, merged);
  defaults.remove(standard, defaultMerged);
  if (!defaults.object(standard, merged) && !defaults.object(standard, defaultMerged)) {
    VORN_LOG_DEBUG(LoggerCategory::storage,
                   "Data policy reset success!. You can now try Auto or Manual merge again!");
    return true;
  }
  VORN_LOG_DEBUG(LoggerCategory::storage, "Data policy reset failed!");
  return false;
}

}  // namespace vorn
