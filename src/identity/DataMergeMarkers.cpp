#include "vorn/identity/DataMergeMarkers.hpp"

#include "vorn/logging/Log.hpp"
#include "vorn/platform/Platform.hpp"

namespace vorn {
namespace {

constexpr std::string_view kStandard = DefaultsStore::kStandardSuite;

// Whether the marker is set (read as the defaults read booleans); nothing when it cannot be
// read.
std::optional<bool> markerSet(DefaultsStore& defaults, const std::string& key) {
  const auto read = defaults.read(kStandard, key);
  if (read.isError())
    return std::nullopt;
  return read.isFound() && defaults.boolFor(kStandard, key);
}

}  // namespace

DataMergeMarkers::DataMergeMarkers(std::shared_ptr<DefaultsStore> defaults)
    : defaults_(std::move(defaults)) {}

DataMergeMarkers DataMergeMarkers::shared() {
  return DataMergeMarkers(Platform::current()->defaults);
}

std::string DataMergeMarkers::mergeCompletedKey(std::string_view appId) {
  return "VORN_MERGE_COMPLETED-" + std::string(appId);
}

std::string DataMergeMarkers::defaultMergeCompletedKey(std::string_view appId) {
  return "VORN_DEFAULT_MERGE_COMPLETED-" + std::string(appId);
}

std::string DataMergeMarkers::mandateAutoOptInMergeCompletedKey(std::string_view appId) {
  return "VORN_MANDATE_AUTO_OPT_IN_MERGE_COMPLETED-" + std::string(appId);
}

bool DataMergeMarkers::reset(std::string_view appId) const {
  return resetDataPolicy(*defaults_, appId);
}

bool DataMergeMarkers::resetDataPolicy(std::string_view appId) {
  return shared().reset(appId);
}

bool DataMergeMarkers::resetDataPolicy(DefaultsStore& defaults, std::string_view appId) {
  const std::string merged = mergeCompletedKey(appId);
  const std::string defaultMerged = defaultMergeCompletedKey(appId);
  // Once a mandated automatic merge has happened, the modules must not merge again; while
  // the marker cannot be read, that may be the case.
  if (markerSet(defaults, mandateAutoOptInMergeCompletedKey(appId)).value_or(true)) {
    VORN_LOG_DEBUG(LoggerCategory::storage,
                   "Data policy reset not allowed as the data merge is already done!");
    return false;
  }
  VORN_LOG_DEBUG(LoggerCategory::storage, "Data policy reset Started!");
  defaults.remove(kStandard, merged);
  defaults.remove(kStandard, defaultMerged);
  if (defaults.read(kStandard, merged).isAbsent() &&
      defaults.read(kStandard, defaultMerged).isAbsent()) {
    VORN_LOG_DEBUG(LoggerCategory::storage,
                   "Data policy reset success!. You can now try Auto or Manual merge again!");
    return true;
  }
  VORN_LOG_DEBUG(LoggerCategory::storage, "Data policy reset failed!");
  return false;
}

}  // namespace vorn
