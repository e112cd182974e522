// vornsdk-inspect run as a program on data directories filled through the library: what it
// lists, what it decrypts, what it keeps hidden, and that it leaves every byte in place, also
// beside a live writer and after a writer was killed.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "vorn/platform/Platform.hpp"
#include "vorn/storage/crypto/Base64.hpp"
#include "vorn/storage/keychain/BaseAppIdentifier.hpp"
#include "vorn/storage/keychain/KeychainItems.hpp"
#include "vorn/storage/keystore/VORNKeyStoreManager.hpp"
#include "vorn/storage/prefs/EncryptionManager.hpp"
#include "vorn/storage/prefs/StorageManager.hpp"
#include "vorn/testing/ChildProcess.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

extern char** environ;

namespace vorn {
namespace {

namespace fs = std::filesystem;
using Blob = std::vector<std::uint8_t>;

constexpr const char* kAppId = "com.example.app";
constexpr const char* kFillDirVariable = "VORN_TEST_INSPECT_FILL_DIR";

struct Outcome {
  int exitCode = -1;
  std::string out;
  std::string err;
};

std::string readFile(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// Runs the inspector with `arguments`, its output caught in files outside the data directory.
Outcome inspect(const std::vector<std::string>& arguments) {
#ifdef VORN_INSPECT_PROGRAM
  testing::TemporaryDirectory outputs;
  const fs::path out = outputs.path() / "out";
  const fs::path err = outputs.path() / "err";
  std::vector<std::string> argv{VORN_INSPECT_PROGRAM};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  std::vector<char*> raw;
  for (auto& argument : argv)
    raw.push_back(argument.data());
  raw.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  pid_t pid = 0;
  const int spawned = posix_spawn(&pid, raw[0], &actions, nullptr, raw.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  Outcome run;
  if (spawned != 0)
    return run;
  int status = 0;
  ::waitpid(pid, &status, 0);
  run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  run.out = readFile(out);
  run.err = readFile(err);
  return run;
#else
  (void)arguments;
  return Outcome{};
#endif
}

// Every file of the directory with its bytes.
std::map<std::string, std::string> snapshot(const fs::path& directory) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::directory_iterator(directory))
    files[entry.path().filename().string()] = readFile(entry.path());
  return files;
}

std::string hex(const Blob& bytes, bool upper = false) {
  const char* digits = upper ? "0123456789ABCDEF" : "0123456789abcdef";
  std::string out;
  for (const std::uint8_t byte : bytes) {
    out += digits[byte >> 4];
    out += digits[byte & 0x0F];
  }
  return out;
}

// One module's storage, made through the library the way a module's components make it.
struct ModuleFill {
  std::shared_ptr<EncryptionManager> encryption;
  std::shared_ptr<StorageManager> storage;
};

// The stores of one launch of the library on `directory`, with both modules' preferences
// written; the values are known to the tests below.
struct Launch {
  explicit Launch(const fs::path& directory) : platform(Platform::defaultPlatform(directory)) {
    auto items = std::make_shared<KeychainItems>(platform.keychain);
    auto base = std::make_shared<BaseAppIdentifier>(platform.defaults, items);
    keyStore = std::make_shared<VORNKeyStoreManager>(items, base);
    push = fill(ModuleName::push);
    cdp = fill(ModuleName::cdp);
    auto network = push.storage->getOrCreateSecurePrefs("network");
    network->setString("https://collector.example/v1", "endpoint");
    network->setInt(42, "retries");
    network->setString("line one\nline two", "note");
    push.storage->getOrCreateSecurePrefs("push")->setString("token-1234", "deviceToken");
    cdp.storage->getOrCreateSecurePrefs("cdp")->setBool(true, "consent");
    platform.defaults->standard().setString("visible", "com.example.plain");
  }

  ModuleFill fill(ModuleName module) {
    ModuleFill made;
    made.encryption = std::make_shared<EncryptionManager>(module, keyStore);
    made.storage = std::make_shared<StorageManager>(made.encryption, kAppId, platform.defaults,
                                                    platform.keychain);
    return made;
  }

  Platform platform;
  std::shared_ptr<VORNKeyStoreManager> keyStore;
  ModuleFill push;
  ModuleFill cdp;
};

// What the key store holds as secrets: item values, key bytes, the modules' keys and vectors.
std::vector<Blob> keyMaterial(const Launch& launch, const fs::path& directory) {
  std::vector<Blob> material;
  for (const auto* module : {&launch.push, &launch.cdp}) {
    const auto key = module->encryption->encryptionKey();
    material.push_back(key->key());
    material.push_back(key->initializationVector());
  }
  sqlite3* db = nullptr;
  sqlite3_open_v2((directory / "keychain.db").c_str(), &db, SQLITE_OPEN_READONLY, nullptr);
  for (const char* sql :
       {"SELECT data FROM items WHERE data IS NOT NULL", "SELECT key_data FROM keys"}) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(db, sql, -1, &statement, nullptr);
    while (sqlite3_step(statement) == SQLITE_ROW) {
      const auto* bytes = static_cast<const std::uint8_t*>(sqlite3_column_blob(statement, 0));
      material.emplace_back(bytes, bytes + sqlite3_column_bytes(statement, 0));
    }
    sqlite3_finalize(statement);
  }
  sqlite3_close(db);
  return material;
}

class InspectTest : public ::testing::Test {
 protected:
  void SetUp() override {
#ifndef VORN_INSPECT_PROGRAM
    GTEST_SKIP() << "vornsdk-inspect is built with the tools (VORN_BUILD_EXAMPLES)";
#endif
  }

  // Fills the directory and closes the stores again, as an app that ended.
  void fillAndClose() {
    Launch launch(dir.path());
    registrationId = launch.push.storage->getRegistrationId();
    cdpRegistrationId = launch.cdp.storage->getRegistrationId();
    material = keyMaterial(launch, dir.path());
  }

  testing::TemporaryDirectory dir;
  std::string registrationId;
  std::string cdpRegistrationId;
  std::vector<Blob> material;
};

TEST_F(InspectTest, ListsItemsKeysAndSuites) {
  fillAndClose();
  const Outcome run = inspect({dir.path().string()});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.err, "");
  EXPECT_NE(run.out.find("data directory " + dir.path().string() + "\n"), std::string::npos);
  EXPECT_NE(run.out.find("  item service \"com.quorvantis.keystore.generatedKeystoreKeychainId_"),
            std::string::npos)
      << run.out;
  EXPECT_NE(run.out.find(" private ec 256 bits accessible "), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("  suite \"\" (standard): "), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("    \"com.example.plain\" string, 7 bytes = \"visible\"\n"),
            std::string::npos)
      << run.out;
  EXPECT_NE(run.out.find("  suite \"com.quorvantis.tessarine_unified_sdk_registration\" "
                         "(encrypted, registration ids): 2 keys\n"),
            std::string::npos)
      << run.out;
  EXPECT_NE(run.out.find("  suite \"com.quorvantis.tessarine_com.example.app_" + registrationId +
                         "_network\" (encrypted, module storage): 3 keys\n"),
            std::string::npos)
      << run.out;
  // Encrypted suites are sized, never shown: the only value lines are the standard suite's.
  std::istringstream lines(run.out);
  std::string line;
  std::string suite;
  while (std::getline(lines, line)) {
    if (line.starts_with("  suite ")) {
      suite = line;
    } else if (line.find(" = ") != std::string::npos) {
      EXPECT_TRUE(suite.starts_with("  suite \"\" ")) << line << " under " << suite;
    }
  }
}

TEST_F(InspectTest, DecryptPrintsOneModulesPreferences) {
  fillAndClose();
  const Outcome push = inspect({dir.path().string(), "--decrypt", "push"});
  ASSERT_EQ(push.exitCode, 0) << push.err;
  EXPECT_EQ(push.err, "");
  EXPECT_NE(push.out.find("module push\n"), std::string::npos);
  // Sorted by name, one line each: a line break in a value is escaped.
  EXPECT_NE(push.out.find("  registrationId = " + registrationId + "\n"), std::string::npos);
  EXPECT_NE(push.out.find("  (1 entry of other modules)\n"), std::string::npos) << push.out;
  EXPECT_NE(push.out.find(
                "(app \"com.example.app\", storage \"network\")\n  endpoint = "
                "https://collector.example/v1\n  note = line one\\x0Aline two\n  retries = 42\n"),
            std::string::npos)
      << push.out;
  EXPECT_NE(push.out.find("  deviceToken = token-1234\n"), std::string::npos);
  EXPECT_EQ(push.out.find("consent"), std::string::npos) << "cdp's entry under push's key";

  const Outcome cdp = inspect({dir.path().string(), "--decrypt", "cdp"});
  ASSERT_EQ(cdp.exitCode, 0) << cdp.err;
  EXPECT_NE(cdp.out.find("  registrationId = " + cdpRegistrationId + "\n"), std::string::npos);
  EXPECT_NE(cdp.out.find("(app \"com.example.app\", storage \"cdp\")\n  consent = true\n"),
            std::string::npos)
      << cdp.out;
  EXPECT_EQ(cdp.out.find("token-1234"), std::string::npos);
}

TEST_F(InspectTest, KeyMaterialOnlyWithTheFlag) {
  fillAndClose();
  ASSERT_GE(material.size(), 6u);
  for (const bool decrypting : {false, true}) {
    std::vector<std::string> arguments{dir.path().string()};
    if (decrypting)
      arguments.insert(arguments.end(), {"--decrypt", "push"});
    const Outcome hidden = inspect(arguments);
    ASSERT_EQ(hidden.exitCode, 0) << hidden.err;
    EXPECT_NE(hidden.out.find("<hidden: "), std::string::npos) << hidden.out;
    for (const Blob& secret : material) {
      EXPECT_EQ(hidden.out.find(hex(secret)), std::string::npos) << hex(secret);
      EXPECT_EQ(hidden.out.find(hex(secret, true)), std::string::npos) << hex(secret);
      EXPECT_EQ(hidden.out.find(base64Encode(secret)), std::string::npos) << hex(secret);
    }
    arguments.push_back("--show-key-material");
    const Outcome shown = inspect(arguments);
    ASSERT_EQ(shown.exitCode, 0) << shown.err;
    EXPECT_EQ(shown.out.find("<hidden: "), std::string::npos) << shown.out;
  }
  // The listing shows every stored secret, the decryption the module's key and vector.
  const Outcome listed = inspect({dir.path().string(), "--show-key-material"});
  for (std::size_t i = 4; i < material.size(); ++i)
    EXPECT_NE(listed.out.find(hex(material[i])), std::string::npos) << hex(material[i]);
  const Outcome decrypted =
      inspect({dir.path().string(), "--decrypt", "push", "--show-key-material"});
  EXPECT_NE(decrypted.out.find("AES-256-CBC key " + hex(material[0]) + " iv " + hex(material[1])),
            std::string::npos)
      << decrypted.out;
}

TEST_F(InspectTest, LeavesEveryByteOfTheDirectoryInPlace) {
  fillAndClose();
  const auto before = snapshot(dir.path());
  ASSERT_EQ(before.size(), 2u) << "a closed store leaves only its database file";
  for (const auto& arguments : std::vector<std::vector<std::string>>{
           {dir.path().string()},
           {dir.path().string(), "--show-key-material"},
           {dir.path().string(), "--decrypt", "push"},
           {dir.path().string(), "--decrypt", "cdp", "--show-key-material"}}) {
    EXPECT_EQ(inspect(arguments).exitCode, 0);
    EXPECT_EQ(snapshot(dir.path()), before) << arguments.back();
  }
}

TEST_F(InspectTest, ReadsBesideALiveAppHoldingAWriteTransaction) {
  Launch live(dir.path());
  registrationId = live.push.storage->getRegistrationId();
  // A second writer in the middle of a transaction that it has not committed.
  sqlite3* writer = nullptr;
  ASSERT_EQ(sqlite3_open((dir.path() / "defaults.db").c_str(), &writer), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(writer,
                         "BEGIN IMMEDIATE; INSERT INTO entries(suite, key, type, value) "
                         "VALUES('', 'uncommitted.key', 2, 'uncommitted')",
                         nullptr, nullptr, nullptr),
            SQLITE_OK);
  const auto before = snapshot(dir.path());
  ASSERT_TRUE(before.contains("defaults.db-wal") && before.contains("defaults.db-shm"));

  const Outcome listed = inspect({dir.path().string()});
  const Outcome decrypted = inspect({dir.path().string(), "--decrypt", "push"});

  EXPECT_EQ(snapshot(dir.path()), before);
  EXPECT_EQ(sqlite3_exec(writer, "ROLLBACK", nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(writer);
  ASSERT_EQ(listed.exitCode, 0) << listed.err;
  EXPECT_NE(listed.out.find("\"com.example.plain\" string, 7 bytes = \"visible\""),
            std::string::npos);
  EXPECT_EQ(listed.out.find("uncommitted"), std::string::npos);
  ASSERT_EQ(decrypted.exitCode, 0) << decrypted.err;
  EXPECT_NE(decrypted.out.find("  registrationId = " + registrationId + "\n"), std::string::npos);
  EXPECT_NE(decrypted.out.find("  retries = 42\n"), std::string::npos) << decrypted.out;
  // The live app goes on writing as before.
  EXPECT_TRUE(live.push.storage->getOrCreateSecurePrefs("network")->setInt(43, "retries"));
}

// Only does its work when started by the test below: fills the directory, then dies without
// closing anything, leaving the write-ahead logs and their indexes behind.
TEST(InspectKilledWriter, FillsThenDies) {
  const auto directory = testing::childOrder(kFillDirVariable);
  if (!directory)
    GTEST_SKIP() << "runs only as the writer process of InspectTest";
  Launch launch(*directory);
  std::ofstream(fs::path(*directory).parent_path() / "registration")
      << launch.push.storage->getRegistrationId();
  ::kill(::getpid(), SIGKILL);
}

TEST_F(InspectTest, ReadsWhatAKilledAppLeftWithoutRecoveringIt) {
  const fs::path data = dir.path() / "data";
  const pid_t child =
      testing::spawnSelf("InspectKilledWriter.FillsThenDies", {{kFillDirVariable, data.string()}});
  ASSERT_GT(child, 0);
  ASSERT_EQ(testing::waitForExit(child), 128 + SIGKILL);
  registrationId = readFile(dir.path() / "registration");
  ASSERT_FALSE(registrationId.empty());
  const auto before = snapshot(data);
  ASSERT_TRUE(before.contains("keychain.db-wal") && before.contains("keychain.db-shm"));

  const Outcome decrypted = inspect({data.string(), "--decrypt", "push"});
  ASSERT_EQ(decrypted.exitCode, 0) << decrypted.err;
  EXPECT_NE(decrypted.out.find("  registrationId = " + registrationId + "\n"), std::string::npos);
  EXPECT_NE(decrypted.out.find("  deviceToken = token-1234\n"), std::string::npos);
  EXPECT_EQ(snapshot(data), before);
}

TEST_F(InspectTest, BadInvocationsFailWithAMessage) {
  const Outcome missing = inspect({(dir.path() / "nowhere").string()});
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_EQ(missing.out, "");
  EXPECT_EQ(missing.err,
            "vornsdk-inspect: " + (dir.path() / "nowhere").string() + " does not exist\n");

  const Outcome empty = inspect({dir.path().string()});
  EXPECT_EQ(empty.exitCode, 1);
  EXPECT_EQ(empty.err, "vornsdk-inspect: " + dir.path().string() +
                           " is not a vornsdk data directory (no keychain.db, no defaults.db)\n");

  fillAndClose();
  const Outcome unknown = inspect({dir.path().string(), "--decrypt", "sms"});
  EXPECT_EQ(unknown.exitCode, 1);
  EXPECT_EQ(unknown.out, "");
  EXPECT_EQ(unknown.err, "vornsdk-inspect: unknown module \"sms\" (known: cdp, push)\n");

  const Outcome usage = inspect({});
  EXPECT_NE(usage.exitCode, 0);
  EXPECT_NE(usage.err.find("DATA_DIR is required"), std::string::npos) << usage.err;
}

TEST_F(InspectTest, ADirectoryWithoutKeysDecryptsNothingAndMakesNothing) {
  {
    Platform platform = Platform::defaultPlatform(dir.path());
    platform.defaults->standard().setString("visible", "com.example.plain");
  }
  const auto before = snapshot(dir.path());
  const Outcome run = inspect({dir.path().string(), "--decrypt", "push"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err, "vornsdk-inspect: no base application id in " + dir.path().string() +
                         "; the SDK has stored no keys here\n");
  EXPECT_EQ(snapshot(dir.path()), before);
}

}  // namespace
}  // namespace vorn
