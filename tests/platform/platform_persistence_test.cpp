// What one process writes through the file-backed Platform, a second process reads back,
// even when the writer is killed right after its calls return.
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "vorn/platform/Platform.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

extern char** environ;

namespace vorn {
namespace {

constexpr const char* kWriterDirVariable = "VORN_TEST_PERSISTENCE_WRITER_DIR";

KeychainData bytes(std::string_view text) {
  return KeychainData(text.begin(), text.end());
}

// Runs this test binary again with only the writer test selected; returns its wait status.
int runWriter(const std::filesystem::path& dir) {
  std::vector<std::string> env;
  for (char** entry = environ; *entry != nullptr; ++entry)
    env.emplace_back(*entry);
  env.push_back(std::string(kWriterDirVariable) + "=" + dir.string());
  std::vector<char*> envp;
  for (auto& entry : env)
    envp.push_back(entry.data());
  envp.push_back(nullptr);
  std::string exe = "/proc/self/exe";
  std::string filter = "--gtest_filter=PlatformPersistenceWriter.WritesThenDies";
  char* argv[] = {exe.data(), filter.data(), nullptr};
  pid_t pid = 0;
  if (::posix_spawn(&pid, exe.c_str(), nullptr, nullptr, argv, envp.data()) != 0)
    return -1;
  int status = 0;
  ::waitpid(pid, &status, 0);
  return status;
}

// Only does its work when started by the test below.
TEST(PlatformPersistenceWriter, WritesThenDies) {
  const char* dir = std::getenv(kWriterDirVariable);
  if (dir == nullptr)
    GTEST_SKIP() << "runs only as the writer process of PlatformPersistenceTest";
  Platform platform = Platform::defaultPlatform(dir);
  KeychainItem item{
      "com.example.service", "acct", std::string(kSecAttrAccessibleAlways), bytes("secret"), {}};
  if (platform.keychain->add(item) != errSecSuccess ||
      platform.keychain->storeKey(KeychainKey{"com.example.tag", KeychainKeyType::ec,
                                              KeychainKeyClass::privateKey, 256, std::nullopt,
                                              bytes("der")}) != errSecSuccess ||
      !platform.defaults->suite("com.example.suite").setString("value", "key") ||
      !platform.defaults->standard().setInteger(42, "answer"))
    std::_Exit(3);
  // No orderly shutdown: what was acknowledged must already be durable.
  ::kill(::getpid(), SIGKILL);
}

TEST(PlatformPersistenceTest, SecondProcessReadsWhatAKilledWriterWrote) {
  testing::TemporaryDirectory dir;
  const int status = runWriter(dir.path());
  ASSERT_TRUE(WIFSIGNALED(status)) << "writer status " << status;
  ASSERT_EQ(WTERMSIG(status), SIGKILL);

  Platform platform = Platform::defaultPlatform(dir.path());
  KeychainQuery query;
  query.service = "com.example.service";
  query.returnAttributes = true;
  query.returnData = true;
  std::vector<KeychainItem> found;
  ASSERT_EQ(platform.keychain->copyMatching(query, found), errSecSuccess);
  EXPECT_EQ(found[0].account, "acct");
  EXPECT_EQ(found[0].accessible, std::string(kSecAttrAccessibleAlways));
  EXPECT_EQ(found[0].data, bytes("secret"));
  KeychainKey key;
  ASSERT_EQ(platform.keychain->loadKey("com.example.tag", KeychainKeyClass::privateKey, key),
            errSecSuccess);
  EXPECT_EQ(key.keyData, bytes("der"));
  EXPECT_EQ(platform.defaults->suite("com.example.suite").stringFor("key"), "value");
  EXPECT_EQ(platform.defaults->standard().integerFor("answer"), 42);
}

}  // namespace
}  // namespace vorn
