// The resident memory the SDK adds to its host when it is started with both reference modules
// (loaded from their libraries) and then left idle. The floor is the same process just before:
// the host with the library linked in but not started. The figures are counters, in KiB:
//   rss_added_KiB            VmRSS after minus before (what `top` shows as RES)
//   private_dirty_added_KiB  pages only this process wrote (smaps_rollup Private_Dirty)
//   pss_added_KiB            the proportional share of every mapped page (smaps_rollup Pss)
// and the host's own figures beside them (*_host_KiB). The goal is at most 5 MiB added.
// One iteration: the SDK starts once per process.

#include <benchmark/benchmark.h>

#include <nlohmann/json.hpp>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "vorn/core/ConfigBuilder.hpp"
#include "vorn/core/ModuleRegistry.hpp"
#include "vorn/core/ModuleSettingsParsers.hpp"
#include "vorn/platform/Platform.hpp"
#include "vorn/sdk/VORNSdk.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"
#include "vorn/testing/Wait.hpp"

namespace {

using vorn::ModuleName;
using vorn::VORNSdk;

// Nothing listens there; neither module sends anything before it has work.
constexpr const char* kUnreachableEndpoint = "http://127.0.0.1:9";

struct Resident {
  std::int64_t rssKiB = 0;
  std::int64_t privateDirtyKiB = 0;
  std::int64_t pssKiB = 0;
};

// The value in KiB of the "<key>:  <n> kB" line of a /proc file, or 0.
std::int64_t kibFor(const char* file, const std::string& key) {
  std::ifstream in(file);
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with(key + ":"))
      return std::stoll(line.substr(key.size() + 1));
  }
  return 0;
}

Resident resident() {
  return {kibFor("/proc/self/status", "VmRSS"), kibFor("/proc/self/smaps_rollup", "Private_Dirty"),
          kibFor("/proc/self/smaps_rollup", "Pss")};
}

std::shared_ptr<const vorn::ModuleConfig> config(ModuleName name, nlohmann::json settings) {
  settings["appId"] = "idle-app";
  settings["endpoint"] = kUnreachableEndpoint;
  return vorn::ModuleSettingsParsers::parse(name, settings).config;
}

// Loads both modules, starts them and waits until start-up is over and both answered.
bool startBothModules(const std::filesystem::path& directory) {
  if (!vorn::ModuleRegistry::loadLibrary(VORN_CDP_LIBRARY) ||
      !vorn::ModuleRegistry::loadLibrary(VORN_PUSH_LIBRARY))
    return false;
  const auto succeeded = std::make_shared<std::atomic<int>>(0);
  const auto record = [succeeded](vorn::OperationResult result) {
    *succeeded += result == vorn::OperationResult::success ? 1 : 0;
  };
  const nlohmann::json cdp{{"batchSize", 10u}, {"dataDirectory", directory.string()}};
  VORNSdk::initializeSdk(vorn::ConfigBuilder()
                             .setCdp(config(ModuleName::cdp, cdp), record)
                             .setPush(config(ModuleName::push, nlohmann::json::object()), record)
                             .build());
  return vorn::testing::waitUntil([&] {
    return *succeeded == 2 && VORNSdk::initializationState() == vorn::InitializationState::READY;
  });
}

void BM_IdleResidentMemory_BothModules(benchmark::State& state) {
  vorn::testing::TemporaryDirectory directory;
  vorn::Platform::install(vorn::Platform::defaultPlatform(directory.path() / "sdk"));
  const Resident host = resident();
  Resident started;
  for (auto _ : state) {
    if (!startBothModules(directory.path() / "sdk")) {
      state.SkipWithError("the SDK did not start both modules");
      return;
    }
    started = resident();
  }
  const auto kib = [](std::int64_t value) {
    return benchmark::Counter(static_cast<double>(value));
  };
  state.counters["rss_added_KiB"] = kib(started.rssKiB - host.rssKiB);
  state.counters["private_dirty_added_KiB"] = kib(started.privateDirtyKiB - host.privateDirtyKiB);
  state.counters["pss_added_KiB"] = kib(started.pssKiB - host.pssKiB);
  state.counters["rss_host_KiB"] = kib(host.rssKiB);
  state.counters["private_dirty_host_KiB"] = kib(host.privateDirtyKiB);
  state.counters["pss_host_KiB"] = kib(host.pssKiB);
  VORNSdk::tearDownModule(ModuleName::cdp);
  VORNSdk::tearDownModule(ModuleName::push);
}
BENCHMARK(BM_IdleResidentMemory_BothModules)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
