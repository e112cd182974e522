// The data directory rule, file modes whatever the umask, and the process-wide Platform.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <fstream>
#include <thread>
#include <vector>

#include "vorn/platform/Platform.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace vorn {
namespace {

mode_t modeOf(const std::filesystem::path& path) {
  struct stat info {};
  EXPECT_EQ(::stat(path.c_str(), &info), 0) << path;
  return info.st_mode & 0777;
}

// Sets the process umask for the scope of one test.
class ScopedUmask {
 public:
  explicit ScopedUmask(mode_t mask) : previous_(::umask(mask)) {}
  ~ScopedUmask() { ::umask(previous_); }

 private:
  mode_t previous_;
};

TEST(PlatformDataDirectoryTest, EnvironmentChoosesTheDirectory) {
  ::setenv("HOME", "/home/someone", 1);
  ::unsetenv("VORNSDK_DATA_DIR");
  ::unsetenv("XDG_DATA_HOME");
  EXPECT_EQ(Platform::defaultDataDirectory(), "/home/someone/.local/share/vornsdk");
  ::setenv("XDG_DATA_HOME", "", 1);
  EXPECT_EQ(Platform::defaultDataDirectory(), "/home/someone/.local/share/vornsdk");
  ::setenv("XDG_DATA_HOME", "/xdg", 1);
  EXPECT_EQ(Platform::defaultDataDirectory(), "/xdg/vornsdk");
  ::setenv("VORNSDK_DATA_DIR", "/explicit/dir", 1);
  EXPECT_EQ(Platform::defaultDataDirectory(), "/explicit/dir");
}

TEST(PlatformFileModesTest, DirectoriesArePrivateAndDatabaseFilesOwnerOnly) {
  ScopedUmask permissive(0);
  testing::TemporaryDirectory root;
  const auto dataDir = root.path() / "nested" / "vornsdk";
  Platform platform = Platform::defaultPlatform(dataDir);
  ASSERT_EQ(
      platform.keychain->add(KeychainItem{"svc", std::nullopt, std::nullopt, KeychainData{1}, {}}),
      errSecSuccess);
  ASSERT_TRUE(platform.defaults->setBool(DefaultsStore::kStandardSuite, true, "k"));

  EXPECT_EQ(modeOf(root.path() / "nested"), 0700u);
  EXPECT_EQ(modeOf(dataDir), 0700u);
  for (const char* name : {"keychain.db", "keychain.db-wal", "keychain.db-shm", "defaults.db",
                           "defaults.db-wal", "defaults.db-shm"}) {
    EXPECT_EQ(modeOf(dataDir / name), 0600u) << name;
  }
}

TEST(PlatformFileModesTest, ExistingLooseModesAreTightened) {
  ScopedUmask permissive(0);
  testing::TemporaryDirectory root;
  const auto dataDir = root.path() / "data";
  ASSERT_EQ(::mkdir(dataDir.c_str(), 0755), 0);
  { std::ofstream(dataDir / "defaults.db"); }
  ASSERT_EQ(::chmod((dataDir / "defaults.db").c_str(), 0644), 0);

  ASSERT_NE(DefaultsStore::openFile(dataDir), nullptr);
  EXPECT_EQ(modeOf(dataDir), 0700u);
  EXPECT_EQ(modeOf(dataDir / "defaults.db"), 0600u);
}

TEST(PlatformFileModesTest, UnusableDirectoryFallsBackToMemory) {
  testing::TemporaryDirectory root;
  const auto blocker = root.path() / "blocker";
  { std::ofstream(blocker) << "x"; }
  Platform platform = Platform::defaultPlatform(blocker / "data");
  ASSERT_NE(platform.keychain, nullptr);
  ASSERT_NE(platform.defaults, nullptr);
  EXPECT_EQ(platform.keychain->add(KeychainItem{"svc", std::nullopt, std::nullopt, {}, {}}),
            errSecSuccess);
  EXPECT_TRUE(platform.defaults->setBool(DefaultsStore::kStandardSuite, true, "k"));
}

TEST(PlatformCurrentTest, FirstUseOpensTheDefaultDirectory) {
  testing::TemporaryDirectory root;
  ::setenv("VORNSDK_DATA_DIR", (root.path() / "lazy").c_str(), 1);
  const auto platform = Platform::current();
  ASSERT_NE(platform->keychain, nullptr);
  EXPECT_TRUE(std::filesystem::exists(root.path() / "lazy" / "keychain.db"));
  EXPECT_TRUE(std::filesystem::exists(root.path() / "lazy" / "defaults.db"));
  EXPECT_EQ(Platform::current(), platform);
}

TEST(PlatformCurrentTest, InstallReplacesAndFillsMissingServices) {
  auto keychain = KeychainStore::inMemory();
  Platform partial;
  partial.keychain = keychain;
  Platform::install(partial);
  const auto current = Platform::current();
  EXPECT_EQ(current->keychain, keychain);
  EXPECT_NE(current->defaults, nullptr);
  EXPECT_NE(current->mainQueue, nullptr);
  EXPECT_NE(current->clock, nullptr);
  ASSERT_TRUE(current->protectedDataAvailable);
  EXPECT_TRUE(current->protectedDataAvailable());
  // A platform without a transport still answers requests: every one with a transport error.
  ASSERT_NE(current->http, nullptr);
  const auto answer = current->http->perform(HttpRequest{});
  ASSERT_TRUE(answer.error);
  EXPECT_EQ(answer.error->code, HttpErrorCode::noTransport);
}

TEST(PlatformCurrentTest, ConcurrentInstallAndCurrentSeeWholePlatforms) {
  Platform::install(Platform::ephemeral());
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t] {
      for (int i = 0; i < 200; ++i) {
        if (t == 0) {
          Platform::install(Platform::ephemeral());
        } else {
          const auto platform = Platform::current();
          ASSERT_NE(platform->keychain, nullptr);
          ASSERT_NE(platform->defaults, nullptr);
        }
      }
    });
  }
  for (auto& thread : threads)
    thread.join();
}

TEST(PlatformClockTest, SystemClockIsWallClockMillis) {
  const auto before = std::chrono::duration_cast<std::chrono::milliseconds>(
                          std::chrono::system_clock::now().time_since_epoch())
                          .count();
  const auto now = Clock::system()->nowMillis();
  EXPECT_GE(now, before);
  EXPECT_LT(now - before, 5000);
}

}  // namespace
}  // namespace vorn
