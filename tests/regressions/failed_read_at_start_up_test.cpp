// One failed read while the modules' key store starts must cost nothing stored before it: a
// key store or defaults read that fails (any status, any of the reads that decide whether key
// material or the base application identifier exist) leaves everything in place, and the next
// normal launch reads back every secure preference and registration id.
//
// Each launch is a child process on the same data directory: one that writes, one with the
// fault, one that checks.
#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <sstream>

#include "vorn/platform/Platform.hpp"
#include "vorn/storage/crypto/VORNSDKCryptoUtils.hpp"
#include "vorn/storage/keychain/VORNCrypto.hpp"
#include "vorn/storage/keystore/VORNGeneratedKeyStore.hpp"
#include "vorn/storage/prefs/StorageManager.hpp"
#include "vorn/testing/ChildProcess.hpp"
#include "vorn/testing/FaultyDefaultsStore.hpp"
#include "vorn/testing/FaultyKeychainStore.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace vorn {
namespace {

using testing::KeychainOperation;

constexpr const char* kDirVariable = "VORN_FAILED_READ_DIR";
constexpr const char* kModeVariable = "VORN_FAILED_READ_MODE";
constexpr const char* kFaultVariable = "VORN_FAILED_READ_FAULT";
constexpr const char* kSeedVariable = "VORN_FAILED_READ_SEED";
constexpr int kTrials = 100;
constexpr ModuleName kModules[] = {ModuleName::cdp, ModuleName::push};
constexpr OSStatus kStatuses[] = {errSecNotAvailable,
                                  errSecInteractionNotAllowed,
                                  errSecAuthFailed,
                                  errSecDecode,
                                  errSecParam,
                                  errSecAllocate,
                                  -12345};

// A fault: its kind, which read it hits, the status and how many matching reads pass first.
struct Fault {
  std::string kind;  // item, key, defaults or unreadable
  int target = 0;
  OSStatus status = errSecNotAvailable;
  int skip = 0;
};

std::string text(const Fault& fault) {
  std::ostringstream out;
  out << fault.kind << ' ' << fault.target << ' ' << fault.status << ' ' << fault.skip;
  return out.str();
}

Fault parse(const std::string& text) {
  Fault fault;
  std::istringstream in(text);
  in >> fault.kind >> fault.target >> fault.status >> fault.skip;
  return fault;
}

Fault randomFault(std::mt19937& random) {
  static const char* const kinds[] = {"item", "key", "defaults"};
  Fault fault;
  fault.kind = kinds[random() % 3];
  fault.target = static_cast<int>(random() % 4);
  fault.status = kStatuses[random() % std::size(kStatuses)];
  fault.skip = static_cast<int>(random() % 6);
  return fault;
}

struct Launch {
  std::shared_ptr<testing::FaultyKeychainStore> keychain;
  std::shared_ptr<testing::FaultyDefaultsStore> defaults;
};

Launch installLaunch(const std::string& dir) {
  Platform platform = Platform::defaultPlatform(dir);
  Launch launch{std::make_shared<testing::FaultyKeychainStore>(platform.keychain),
                std::make_shared<testing::FaultyDefaultsStore>(platform.defaults)};
  platform.keychain = launch.keychain;
  platform.defaults = launch.defaults;
  Platform::install(platform);
  return launch;
}

void apply(const Fault& fault, Launch& launch) {
  const std::string base =
      launch.defaults->inner()->stringFor("", kSimulatorBaseAppIdentifierKey).value_or("");
  const std::optional<std::string> services[] = {
      std::string(kGeneratedKeystoreEncryptionKeyId) + "_" + base,
      std::string(kGeneratedKeystoreKeychainId) + "_" + base,
      std::string(kBaseAppIdentifierKeychainService), std::nullopt};
  const std::optional<std::string> tags[] = {std::string(kECPrivateKeyTagPrefix) + ".default",
                                             std::string(kECPublicKeyTagPrefix) + ".default",
                                             std::nullopt, std::nullopt};
  if (fault.kind == "item")
    launch.keychain->failNext(KeychainOperation::copyMatching, fault.status, 1,
                              services[fault.target]);
  else if (fault.kind == "key")
    launch.keychain->failNext(KeychainOperation::loadKey, fault.status, 1, tags[fault.target]);
  else if (fault.kind == "defaults")
    launch.defaults->failNextReads(1,
                                   fault.target == 0
                                       ? std::optional<std::string>(kSimulatorBaseAppIdentifierKey)
                                       : std::nullopt,
                                   fault.skip);
  else if (fault.kind == "unreadable")
    launch.defaults->setFailReads(true);
}

std::string valueFor(ModuleName module) {
  return "the secret of " + std::string(rawValue(module));
}

std::filesystem::path idFile(const std::string& dir, ModuleName module) {
  return std::filesystem::path(dir) / ("registration-" + std::string(rawValue(module)));
}

// One launch of both modules: write, start with a fault, or check.
TEST(FailedReadAtStartUpChild, Launch) {
  const auto dir = testing::childOrder(kDirVariable);
  const auto mode = testing::childOrder(kModeVariable);
  if (!dir || !mode)
    GTEST_SKIP() << "runs only as a child of FailedReadAtStartUp";
  Launch launch = installLaunch(*dir);
  if (const auto fault = testing::childOrder(kFaultVariable))
    apply(parse(*fault), launch);
  for (const ModuleName module : kModules) {
    StorageManager storage(std::make_shared<EncryptionManager>(module), "APP1");
    const auto prefs = storage.getOrCreateSecurePrefs("values");
    if (*mode == "write") {
      ASSERT_TRUE(prefs->setString(valueFor(module), "value"));
      std::ofstream(idFile(*dir, module)) << storage.getRegistrationId();
    } else if (*mode == "check") {
      std::string id;
      std::ifstream(idFile(*dir, module)) >> id;
      EXPECT_EQ(storage.getRegistrationId(), id) << rawValue(module);
      EXPECT_EQ(prefs->stringFor("value"), valueFor(module)) << rawValue(module);
    } else {
      prefs->stringFor("value");
    }
  }
}

int launch(const std::string& dir, const char* mode, const std::string& fault = "") {
  std::map<std::string, std::string> env{{kDirVariable, dir}, {kModeVariable, mode}};
  if (!fault.empty())
    env.emplace(kFaultVariable, fault);
  return testing::waitForExit(testing::spawnSelf("FailedReadAtStartUpChild.Launch", env));
}

void expectSurvives(const Fault& fault) {
  testing::TemporaryDirectory dir;
  const std::string path = dir.path().string();
  ASSERT_EQ(launch(path, "write"), 0);
  ASSERT_EQ(launch(path, "fault", text(fault)), 0);
  EXPECT_EQ(launch(path, "check"), 0) << "lost values after the fault " << text(fault);
}

std::uint32_t seed() {
  if (const auto given = testing::childOrder(kSeedVariable))
    return static_cast<std::uint32_t>(std::stoul(*given));
  return std::random_device()();
}

TEST(FailedReadAtStartUp, EveryValueSurvivesOneFailedRead) {
  const std::uint32_t chosen = seed();
  SCOPED_TRACE("seed " + std::to_string(chosen) + " (set " + kSeedVariable + " to repeat)");
  std::mt19937 random(chosen);
  for (int trial = 0; trial < kTrials && !HasFailure(); ++trial)
    expectSurvives(randomFault(random));
}

TEST(FailedReadAtStartUp, EveryValueSurvivesALaunchWithUnreadableDefaults) {
  expectSurvives(Fault{"unreadable", 0, 0, 0});
}

}  // namespace
}  // namespace vorn
