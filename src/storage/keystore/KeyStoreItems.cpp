#include "storage/keystore/KeyStoreItems.hpp"

#include "vorn/storage/keychain/VORNKeychainItemWrapper.hpp"

namespace vorn {

std::optional<Bytes> readItemValue(std::string_view service) {
  return VORNKeychainItemWrapper::itemWithIdentifier(service)->valueData();
}

OSStatus writeItemValue(std::string_view service, const Bytes& value) {
  return VORNKeychainItemWrapper::itemWithIdentifier(service)->setValueData(value);
}

bool deleteItem(std::string_view service) {
  return VORNKeychainItemWrapper::itemWithIdentifier(service)->resetKeychainItem();
}

}  // namespace vorn
