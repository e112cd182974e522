// The logger's secrets: values the library's parts and the modules register, scrubbed from
// every line of every subsystem whatever the sink; and key material, which no line written by
// the default sink shows at any level.
#include <gtest/gtest.h>

#include <array>

#include "vorn/logging/Log.hpp"
#include "vorn/logging/ModuleLogger.hpp"
#include "vorn/storage/crypto/Base64.hpp"
#include "vorn/storage/crypto/Hex.hpp"
#include "vorn/storage/keystore/VORNKeyStoreManager.hpp"
#include "vorn/storage/keystore/VORNSecureEncryptionKey.hpp"
#include "vorn/storage/prefs/EncryptionManager.hpp"
#include "vorn/storage/prefs/StorageManager.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/PlatformInstall.hpp"
#include "vorn/testing/StandardErrorToFile.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace vorn {
namespace {

using testing::CaptureLogSink;
using testing::containsIgnoringCase;
using testing::StandardErrorToFile;

constexpr std::array kLevels = {LogLevel::debug, LogLevel::warning, LogLevel::error,
                                LogLevel::fault};

TEST(LoggerSecrets, AreScrubbedFromEveryLineLongestFirstUntilTheirOwnerLetsGo) {
  auto sink = CaptureLogSink::install();
  int owner = 0;
  VORNSdkLogger::shared().setSecrets(&owner, {"tok-1", "Bearer tok-1", ""});
  EXPECT_EQ(VORNSdkLogger::shared().secretCount(), 2u);
  VORN_LOG_DEBUG(LoggerCategory::network, "Authorization: Bearer TOK-1");
  ModuleLogger(ModuleName::push, {}).w(LoggerCategory::auth, "token tok-1 cached");
  VORNSdkLogger::shared().setSecrets(&owner, {});
  VORN_LOG_DEBUG(LoggerCategory::network, "tok-1 is no secret now");
  EXPECT_EQ(sink->messages(),
            (std::vector<std::string>{"Authorization: [REDACTED]", "token [REDACTED] cached",
                                      "tok-1 is no secret now"}));
  EXPECT_EQ(sink->lines()[1].subsystem, "push");
  EXPECT_EQ(VORNSdkLogger::shared().secretCount(), 0u);
  // The app's list is the app's alone.
  EXPECT_TRUE(VORNSdkLogger::shared().redactedValues().empty());
}

TEST(LoggerSecrets, OwnersShareAValueAndEachReleasesOnlyItsOwn) {
  auto sink = CaptureLogSink::install();
  int first = 0;
  int second = 0;
  VORNSdkLogger::shared().setSecrets(&first, {"shared-secret", "first-only"});
  VORNSdkLogger::shared().setSecrets(&second, {"shared-secret"});
  EXPECT_EQ(VORNSdkLogger::shared().secretCount(), 2u);
  VORNSdkLogger::shared().setSecrets(&first, {});
  VORN_LOG_DEBUG(LoggerCategory::sdk, "shared-secret first-only");
  VORNSdkLogger::shared().setSecrets(&second, {});
  EXPECT_EQ(sink->messages(), std::vector<std::string>{"[REDACTED] first-only"});
}

TEST(LoggerSecrets, AKeyIsASecretWhileItLivesAndACopyIsOneToo) {
  auto sink = CaptureLogSink::install();
  const Bytes material(32, 0x5a);
  const std::string hex = newHexStringFromBytes(material);
  {
    const VORNEncryptionKey key(material, Bytes(16, 0x11));
    const VORNEncryptionKey copy(key);
    EXPECT_EQ(VORNSdkLogger::shared().secretCount(), 6u);
    VORN_LOG_DEBUG(LoggerCategory::encryption, "key " + hex);
  }
  EXPECT_EQ(VORNSdkLogger::shared().secretCount(), 0u);
  // Material too short for any cipher is no secret: it would scrub common text.
  const VORNEncryptionKey tiny(Bytes{1, 2}, Bytes{3});
  EXPECT_EQ(VORNSdkLogger::shared().secretCount(), 0u);
  EXPECT_EQ(sink->messages(), std::vector<std::string>{"key [REDACTED]"});
}

std::vector<std::string> encodings(const Bytes& material) {
  return {newHexStringFromBytes(material), base64Encode(material),
          std::string(material.begin(), material.end())};
}

// Everything the key store and the encryption managers do at start, at the most verbose
// level, with the default sink; then lines that quote every key (the modules' keys and the
// key store's own private key) in every encoding, from the core and from a module, at every
// level.
TEST(DefaultSinkSecrets, NeverPrintsKeyMaterialAtAnyLevel) {
  testing::installEphemeralPlatform();
  VORNSdkLogger::shared().setLogger(LogLevel::debug, std::make_shared<LogOutputter>());
  testing::TemporaryDirectory directory;
  StandardErrorToFile standardError(directory.path() / "stderr.txt");

  std::vector<std::shared_ptr<const VORNEncryptionKey>> keys;
  for (const ModuleName module : {ModuleName::cdp, ModuleName::push}) {
    auto manager = std::make_shared<EncryptionManager>(module);
    const auto ciphertext = manager->encrypt("stored text");
    ASSERT_TRUE(ciphertext.has_value());
    EXPECT_EQ(manager->decrypt(*ciphertext), "stored text");
    keys.push_back(manager->encryptionKey());
  }
  const auto storage = std::make_shared<StorageManager>(
      std::make_shared<EncryptionManager>(ModuleName::push), "APP1");
  const std::string registrationId = storage->getRegistrationId();
  keys.push_back(VORNKeyStoreManager::shared()->retrieveKeyWithLabel("extra", true));

  std::vector<std::string> secrets;
  for (const auto& key : keys) {
    ASSERT_NE(key, nullptr);
    for (const Bytes* material : {&key->key(), &key->initializationVector()})
      for (std::string& text : encodings(*material))
        secrets.push_back(std::move(text));
  }
  // The key store's own key: an EC pair, whose private half is the point and the scalar.
  const auto keyStoreKey = VORNKeyStoreManager::shared()->generatedKeyStore().keyStoreKey();
  ASSERT_NE(keyStoreKey, nullptr);
  const auto secure =
      std::dynamic_pointer_cast<VORNSecureEncryptionKey>(keyStoreKey->encryptionKey());
  ASSERT_NE(secure, nullptr);
  const Bytes privateKey = secure->privateKey()->externalRepresentation();
  ASSERT_EQ(privateKey.size(), 65u + 32u);
  for (const Bytes& material : {privateKey, Bytes(privateKey.begin() + 65, privateKey.end())})
    for (std::string& text : encodings(material))
      secrets.push_back(std::move(text));
  ModuleLogger moduleLogger(ModuleName::cdp, {});
  for (const LogLevel level : kLevels)
    for (const std::string& secret : secrets) {
      VORN_LOG(level, LoggerCategory::encryption, "core quotes " + secret);
      VORN_LOG_AS(LoggerSubsystem::module(ModuleName::cdp), level, LoggerCategory::module,
                  "module quotes " + secret);
    }
  for (const std::string& secret : secrets)
    moduleLogger.f(LoggerCategory::storage, "module logger quotes " + secret);

  const std::string written = standardError.restore();
  for (const std::string& secret : secrets)
    EXPECT_FALSE(containsIgnoringCase(written, secret))
        << newHexStringFromBytes(Bytes(secret.begin(), secret.end()));
  EXPECT_NE(written.find("VORNSdk/encryption debug: core quotes [REDACTED]\n"), std::string::npos);
  EXPECT_NE(written.find("VORNSdk/encryption fault: core quotes [REDACTED]\n"), std::string::npos);
  EXPECT_NE(written.find("cdp/module error: module quotes [REDACTED]\n"), std::string::npos);
  EXPECT_NE(written.find("cdp/storage fault: module logger quotes [REDACTED]\n"),
            std::string::npos);
  // The registration id is no key material: its line shows it, as the app may redact it.
  EXPECT_NE(written.find("VORNSdk/storage debug: StorageManager was initialized with new "
                         "registration id (" +
                         registrationId + ").\n"),
            std::string::npos);
}

}  // namespace
}  // namespace vorn
