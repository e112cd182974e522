// The pass-throughs of VORNSdk to the logger, the data merge policy and the storage settings.
#include "vorn/identity/DataPolicy.hpp"
#include "vorn/logging/VORNSdkLogger.hpp"
#include "vorn/platform/KeychainItem.hpp"
#include "vorn/sdk/VORNSdk.hpp"
#include "vorn/storage/prefs/StorageManager.hpp"

namespace vorn {

void VORNSdk::setLogger(LogLevel logLevel, std::shared_ptr<LogOutputter> logOutputter) {
  VORNSdkLogger::shared().setLogger(logLevel, std::move(logOutputter));
}

void VORNSdk::setLogger(LogLevel logLevel, std::shared_ptr<LogOutputter> logOutputter,
                        const std::vector<LoggerCategory>& filters) {
  VORNSdkLogger::shared().setLogger(logLevel, std::move(logOutputter), filters);
}

void VORNSdk::clearLoggerFilters() {
  VORNSdkLogger::shared().clearLoggerFilters();
}

LogLevel VORNSdk::getLogLevel() {
  return VORNSdkLogger::shared().getLogLevel();
}

void VORNSdk::setAutoMergePolicy(AutoMergePolicyCallback onCompletion) {
  DataPolicy::setAutoMergePolicy(std::move(onCompletion));
}

void VORNSdk::setManualMergePolicy(ManualMergePolicyCallback handler) {
  DataPolicy::setManualMergePolicy(std::move(handler));
}

DataMergePolicy VORNSdk::getDataMergePolicy() {
  return DataPolicy::getDataMergePolicy();
}

AutoMergePolicyCallback VORNSdk::getAutoDataPolicyCallBack() {
  return DataPolicy::getAutoDataPolicyCallBack();
}

ManualMergePolicyCallback VORNSdk::getManualDataPolicyCallBack() {
  return DataPolicy::getManualDataPolicyCallBack();
}

bool VORNSdk::resetDataPolicy(std::string_view appId) {
  return DataPolicy::resetDataPolicy(appId);
}

void VORNSdk::setFileProtectionType(std::optional<FileProtectionType> fileProtectionType) {
  StorageManager::setFileSystemProtectionType(
      fileProtectionType.value_or(FileProtectionType::completeUntilFirstUserAuthentication));
}

std::optional<FileProtectionType> VORNSdk::fileProtectionType() {
  return StorageManager::fileSystemProtectionType();
}

void VORNSdk::setKeychainAccessibleAttribute(std::optional<std::string_view> /*accessible*/) {}

std::string_view VORNSdk::keychainAccessibleAttribute() {
  return kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly;
}

void VORNSdk::setKeychainAccessErrorsAreFatal(bool /*errorsAreFatal*/) {}

bool VORNSdk::keychainAccessErrorsAreFatal() {
  return false;
}

}  // namespace vorn
