// Random damage to the stores' files between two launches, as a failing disk, a full one or a
// backup restored halfway leaves them. The second launch must not crash: it logs what it
// cannot read and keeps working, each write either stored or reported as failed.
//
// The first launch runs once; every trial copies its files into a fresh directory, flips
// bytes in or truncates one of keychain.db, defaults.db and their -wal files, and starts a
// second launch on the copy, then a third that looks for what the second stored.
// VORN_CORRUPTION_TRIALS sets the number of trials (20 unless set), VORN_CORRUPTION_SEED repeats a
// run; the seed is printed.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "platform/CorruptionLaunch.hpp"
#include "vorn/testing/ChildProcess.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;

constexpr int kDefaultTrials = 20;
constexpr const char* kStoreFiles[] = {"keychain.db", "keychain.db-wal", "defaults.db",
                                       "defaults.db-wal"};

unsigned long environmentNumber(const char* name, unsigned long fallback) {
  const char* text = std::getenv(name);
  return text != nullptr && *text != '\0' ? std::strtoul(text, nullptr, 10) : fallback;
}

void copyStoreFiles(const fs::path& from, const fs::path& to) {
  fs::create_directories(to);
  for (const auto& entry : fs::directory_iterator(from))
    fs::copy_file(entry.path(), to / entry.path().filename());
}

// Damages one store file that has content; returns what was done, for the failure message.
std::string corruptOneFile(const fs::path& dir, std::mt19937_64& random) {
  std::vector<fs::path> candidates;
  for (const char* name : kStoreFiles) {
    std::error_code error;
    if (fs::file_size(dir / name, error) > 0 && !error)
      candidates.push_back(dir / name);
  }
  if (candidates.empty())
    return "nothing to damage";
  const fs::path file = candidates[random() % candidates.size()];
  const auto size = fs::file_size(file);
  std::ostringstream done;
  done << file.filename().string() << " (" << size << " bytes): ";
  if (random() % 2 == 0) {
    const auto length = random() % size;
    fs::resize_file(file, length);
    done << "truncated to " << length;
    return done.str();
  }
  std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
  for (auto flips = 1 + random() % 16; flips > 0; --flips) {
    const auto offset = static_cast<std::streamoff>(random() % size);
    char byte = 0;
    stream.seekg(offset);
    stream.get(byte);
    byte = static_cast<char>(byte ^ static_cast<char>(1 + random() % 255));
    stream.seekp(offset);
    stream.put(byte);
    done << "flipped @" << offset << " ";
  }
  return done.str();
}

std::vector<std::string> linesOf(const fs::path& file) {
  std::ifstream stream(file);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);)
    lines.push_back(line);
  return lines;
}

bool startsWith(const std::string& text, std::string_view prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

// A launch that met a failure must have logged at least one error or fault line.
void expectFailuresLogged(const std::vector<std::string>& report) {
  bool failed = false;
  bool logged = false;
  for (const auto& line : report) {
    failed = failed || startsWith(line, testing::corruption::kFailedPrefix);
    logged = logged || startsWith(line, testing::corruption::kErrorLinePrefix) ||
             startsWith(line, testing::corruption::kFaultLinePrefix);
  }
  if (failed) {
    std::string all;
    for (const auto& line : report)
      all += line + "\n";
    EXPECT_TRUE(logged) << "a failure without a log line:\n" << all;
  }
}

int runLaunch(const char* test, const fs::path& dir, const fs::path& report) {
  const pid_t child =
      testing::spawnSelf(test, {{testing::corruption::kDirVariable, dir.string()},
                                {testing::corruption::kReportVariable, report.string()}});
  return child > 0 ? testing::waitForExit(child) : -1;
}

TEST(StoreCorruptionLaunch, First) {
  const auto dir = testing::childOrder(testing::corruption::kDirVariable);
  if (!dir)
    GTEST_SKIP() << "runs only as a child of StoreCorruption";
  testing::corruption::writeEverything(*dir);
}

TEST(StoreCorruptionLaunch, Second) {
  const auto dir = testing::childOrder(testing::corruption::kDirVariable);
  const auto report = testing::childOrder(testing::corruption::kReportVariable);
  if (!dir || !report)
    GTEST_SKIP() << "runs only as a child of StoreCorruption";
  testing::corruption::readAndWriteAgain(*dir, *report);
}

TEST(StoreCorruptionLaunch, Third) {
  const auto dir = testing::childOrder(testing::corruption::kDirVariable);
  const auto report = testing::childOrder(testing::corruption::kReportVariable);
  if (!dir || !report)
    GTEST_SKIP() << "runs only as a child of StoreCorruption";
  testing::corruption::findWhatWasStored(*dir, *report);
}

TEST(StoreCorruption, LaunchesOnDamagedFilesSurviveLogFailuresAndKeepWhatTheyStored) {
  const testing::TemporaryDirectory work;
  const fs::path pristine = work.path() / "pristine";
  ASSERT_EQ(runLaunch("StoreCorruptionLaunch.First", pristine, work.path() / "first.txt"), 0);
  const auto seed = environmentNumber("VORN_CORRUPTION_SEED", std::random_device()());
  const auto trials = environmentNumber("VORN_CORRUPTION_TRIALS", kDefaultTrials);
  std::cout << "corruption seed " << seed << ", " << trials << " trials" << std::endl;
  RecordProperty("seed", std::to_string(seed));
  std::mt19937_64 random(seed);
  for (unsigned long trial = 0; trial < trials && !HasFatalFailure(); ++trial) {
    const fs::path dir = work.path() / ("trial" + std::to_string(trial));
    const fs::path report = work.path() / ("report" + std::to_string(trial) + ".txt");
    copyStoreFiles(pristine, dir);
    const std::string damage = corruptOneFile(dir, random);
    SCOPED_TRACE("seed " + std::to_string(seed) + ", trial " + std::to_string(trial) + ": " +
                 damage);
    ASSERT_EQ(runLaunch("StoreCorruptionLaunch.Second", dir, report), 0);
    expectFailuresLogged(linesOf(report));
    EXPECT_EQ(runLaunch("StoreCorruptionLaunch.Third", dir, report), 0)
        << "a write the second launch was told it stored is missing";
    EXPECT_TRUE(fs::exists(dir / "keychain.db") && fs::exists(dir / "defaults.db"));
  }
}

}  // namespace
}  // namespace vorn
