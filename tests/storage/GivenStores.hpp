// Stores handed to the storage services directly, with an installed Platform whose own stores
// count every call, so a test can tell that nothing went to the Platform instead.
#pragma once

#include <memory>

#include "vorn/platform/Platform.hpp"
#include "vorn/storage/keychain/BaseAppIdentifier.hpp"
#include "vorn/storage/keychain/KeychainItems.hpp"
#include "vorn/storage/keystore/VORNKeyStoreManager.hpp"
#include "vorn/testing/FaultyDefaultsStore.hpp"
#include "vorn/testing/FaultyKeychainStore.hpp"
#include "vorn/testing/PlatformInstall.hpp"

namespace vorn::test {

/// One installation's stores: what survives from one launch to the next.
struct GivenStores {
  std::shared_ptr<KeychainStore> keychain = KeychainStore::inMemory();
  std::shared_ptr<DefaultsStore> defaults = DefaultsStore::inMemory();
};

/// One launch on the stores: fresh caches, as a new process would have.
struct Launch {
  explicit Launch(const GivenStores& stores)
      : items(std::make_shared<KeychainItems>(stores.keychain)),
        baseAppIdentifier(std::make_shared<BaseAppIdentifier>(stores.defaults, items)),
        keyStore(std::make_shared<VORNKeyStoreManager>(items, baseAppIdentifier)) {}

  std::shared_ptr<KeychainItems> items;
  std::shared_ptr<BaseAppIdentifier> baseAppIdentifier;
  std::shared_ptr<VORNKeyStoreManager> keyStore;
};

/// The installed Platform's stores, which the services under test must not touch.
struct UntouchedPlatform {
  UntouchedPlatform() { testing::installEphemeralPlatform(keychain, defaults); }
  bool untouched() const { return keychain->totalCalls() == 0 && defaults->reads() == 0; }

  std::shared_ptr<testing::FaultyKeychainStore> keychain =
      std::make_shared<testing::FaultyKeychainStore>();
  std::shared_ptr<testing::FaultyDefaultsStore> defaults =
      std::make_shared<testing::FaultyDefaultsStore>();
};

}  // namespace vorn::test
