#include "storage/keystore/KeyStoreItems.hpp"

#include "vorn/storage/keychain/VORNKeychainItemWrapper.hpp"

namespace vorn {

ReadResult<Bytes> readItemValue(KeychainItems& items, std::string_view service) {
  auto item = items.readItem(service);
  if (item.isError())
    return ReadResult<Bytes>::error(item.status());
  return item.value()->readValueData();
}

OSStatus writeItemValue(KeychainItems& items, std::string_view service, const Bytes& value) {
  return items.item(service)->setValueData(value);
}

bool deleteItem(KeychainItems& items, std::string_view service) {
  return items.item(service)->resetKeychainItem();
}

}  // namespace vorn
