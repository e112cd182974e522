// Two processes that start different modules on one fresh data directory at the same moment
// (an app and its extension) must not lose each other's keys: after both exit, a third
// launch reads back every value both wrote.
//
// 20 runs by default; VORN_TWO_PROCESS_RUNS sets another number (the CI runs 100).
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "vorn/platform/Platform.hpp"
#include "vorn/storage/prefs/StorageManager.hpp"
#include "vorn/testing/ChildProcess.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace vorn {
namespace {

constexpr const char* kDirVariable = "VORN_TWO_PROCESS_DIR";
constexpr const char* kModuleVariable = "VORN_TWO_PROCESS_MODULE";
constexpr const char* kStartFdVariable = "VORN_TWO_PROCESS_START_FD";
constexpr const char* kRunsVariable = "VORN_TWO_PROCESS_RUNS";
constexpr int kDefaultRuns = 20;

std::string valueFor(ModuleName module) {
  return "written by the " + std::string(rawValue(module)) + " process";
}

std::shared_ptr<SecurePrefs> startModule(ModuleName module,
                                         std::unique_ptr<StorageManager>& storage) {
  storage = std::make_unique<StorageManager>(std::make_shared<EncryptionManager>(module), "APP1");
  return storage->getOrCreateSecurePrefs("values");
}

// One process: opens the directory, waits for the parent's start signal, starts its module and
// writes its value.
TEST(TwoProcessesChild, StartModuleAndWrite) {
  const auto dir = testing::childOrder(kDirVariable);
  const auto module = testing::childOrder(kModuleVariable);
  const auto startFd = testing::childOrder(kStartFdVariable);
  if (!dir || !module || !startFd)
    GTEST_SKIP() << "runs only as a child of TwoProcessesOneDirectory";
  Platform::install(Platform::defaultPlatform(*dir));
  char go = 0;
  ASSERT_EQ(::read(std::atoi(startFd->c_str()), &go, 1), 1);
  const ModuleName name = moduleNameFrom(*module).value_or(ModuleName::cdp);
  std::unique_ptr<StorageManager> storage;
  ASSERT_TRUE(startModule(name, storage)->setString(valueFor(name), "value"));
}

// The third launch: both modules' values must be there.
TEST(TwoProcessesChild, ReadBoth) {
  const auto dir = testing::childOrder(kDirVariable);
  if (!dir || testing::childOrder(kModuleVariable))
    GTEST_SKIP() << "runs only as a child of TwoProcessesOneDirectory";
  Platform::install(Platform::defaultPlatform(*dir));
  for (const ModuleName module : {ModuleName::cdp, ModuleName::push}) {
    std::unique_ptr<StorageManager> storage;
    EXPECT_EQ(startModule(module, storage)->stringFor("value"), valueFor(module))
        << rawValue(module);
  }
}

int runs() {
  const auto given = testing::childOrder(kRunsVariable);
  return given ? std::atoi(given->c_str()) : kDefaultRuns;
}

// Starts both writers blocked on one pipe and releases them together; true when both wrote.
bool writeConcurrently(const std::string& dir) {
  int start[2];
  if (::pipe(start) != 0)
    return false;
  pid_t writers[2];
  const ModuleName modules[] = {ModuleName::cdp, ModuleName::push};
  for (int i = 0; i < 2; ++i) {
    writers[i] = testing::spawnSelf("TwoProcessesChild.StartModuleAndWrite",
                                    {{kDirVariable, dir},
                                     {kModuleVariable, std::string(rawValue(modules[i]))},
                                     {kStartFdVariable, std::to_string(start[0])}});
  }
  const bool released = ::write(start[1], "GO", 2) == 2;
  ::close(start[0]);
  ::close(start[1]);
  const bool first = testing::waitForExit(writers[0]) == 0;
  const bool second = testing::waitForExit(writers[1]) == 0;
  return released && first && second;
}

TEST(TwoProcessesOneDirectory, NeitherLosesTheOthersKeys) {
  const int total = runs();
  int lost = 0;
  for (int run = 0; run < total; ++run) {
    testing::TemporaryDirectory dir;
    const std::string path = dir.path().string();
    ASSERT_TRUE(writeConcurrently(path)) << "run " << run;
    const int read = testing::waitForExit(
        testing::spawnSelf("TwoProcessesChild.ReadBoth", {{kDirVariable, path}}));
    if (read != 0) {
      ++lost;
      ADD_FAILURE() << "run " << run << ": a value was lost";
    }
  }
  EXPECT_EQ(lost, 0) << "of " << total << " runs";
}

}  // namespace
}  // namespace vorn
