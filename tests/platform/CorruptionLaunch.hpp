// The three launches of the store corruption test, each run in a child process: the first
// writes keys, preferences, defaults and an item through the file-backed Platform; the
// second, on damaged copies of those files, reads everything, writes again and reads that
// back; the third checks that what the second was told it stored is still there. The
// second writes a report: every log line of the library, a "failed: " line for each call
// that answered an error and a "stored: " line for each write that was acknowledged.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <mutex>
#include <string>

#include "vorn/logging/VORNSdkLogger.hpp"
#include "vorn/platform/Platform.hpp"
#include "vorn/storage/prefs/StorageManager.hpp"

namespace vorn::testing::corruption {

inline constexpr const char* kDirVariable = "VORN_TEST_CORRUPTION_DIR";
inline constexpr const char* kReportVariable = "VORN_TEST_CORRUPTION_REPORT";
inline constexpr std::string_view kFailedPrefix = "failed: ";
inline constexpr std::string_view kErrorLinePrefix = "error: ";
inline constexpr std::string_view kFaultLinePrefix = "fault: ";
inline constexpr std::string_view kStoredDefault = "stored: default";
inline constexpr std::string_view kStoredItem = "stored: item";

inline constexpr std::string_view kService = "com.example.corruption";
inline constexpr const char* kAppId = "APP1";

class Report : public LogOutputter {
 public:
  explicit Report(const std::string& path) : file_(path, std::ios::app) {}

  void out(LogLevel level, std::string_view, LoggerCategory, std::string_view message) override {
    static constexpr const char* kLevels[] = {"debug: ", "warning: ", "error: ", "fault: "};
    write(kLevels[rawValue(level) & 3], message);
  }
  void failed(std::string_view what) { write(kFailedPrefix, what); }
  void stored(std::string_view line) { write(line, ""); }

 private:
  void write(std::string_view prefix, std::string_view text) {
    std::lock_guard lock(mutex_);
    file_ << prefix << text << std::endl;
  }

  std::mutex mutex_;
  std::ofstream file_;  // guarded by mutex_
};

inline KeychainItem itemNamed(std::string_view account) {
  KeychainItem item;
  item.service = std::string(kService);
  item.account = std::string(account);
  item.data = KeychainData{0x00, 0xFF, 's', 'e', 'c'};
  item.attributes["labl"] = std::string("kept");
  item.attributes["gena"] = KeychainData{1, 2, 3};
  return item;
}

// A first batch goes through stores that are closed again, which moves it from the -wal
// files into the database files; the rest stays in the -wal files, as the process ends
// without closing anything.
inline void writeEverything(const std::string& dir) {
  {
    const Platform earlier = Platform::defaultPlatform(dir);
    ASSERT_TRUE(earlier.defaults->setInteger("", 7, "plain.int"));
    ASSERT_TRUE(earlier.defaults->setData("some.suite", DefaultsData{1, 2, 3}, "plain.data"));
    ASSERT_EQ(earlier.keychain->add(itemNamed("first")), errSecSuccess);
  }
  Platform::install(Platform::defaultPlatform(dir));
  for (ModuleName module : {ModuleName::push, ModuleName::cdp}) {
    StorageManager storage(std::make_shared<EncryptionManager>(module), kAppId);
    const auto prefs = storage.getOrCreateSecurePrefs("settings");
    ASSERT_TRUE(prefs->setString("text \xE2\x82\xAC", "string"));
    ASSERT_TRUE(prefs->setInt(-42, "int"));
    ASSERT_TRUE(prefs->setDouble(0.1, "double"));
  }
  ASSERT_EQ(Platform::current()->keychain->add(itemNamed("second")), errSecSuccess);
}

inline void readBack(DefaultsStore& defaults, Report& report) {
  for (const auto& [suite, key] : {std::pair{"", "plain.int"}, {"some.suite", "plain.data"}}) {
    if (defaults.read(suite, key).isError())
      report.failed(std::string("defaults read of ") + key);
  }
}

inline void readKeychain(KeychainStore& keychain, Report& report) {
  KeychainQuery all;
  all.matchLimit = MatchLimit::all;
  all.returnAttributes = true;
  all.returnData = true;
  std::vector<KeychainItem> found;
  const OSStatus status = keychain.copyMatching(all, found);
  if (status != errSecSuccess && status != errSecItemNotFound)
    report.failed("keychain search " + std::to_string(status));
}

inline void writeAgain(const Platform& platform, SecurePrefs& prefs, Report& report) {
  if (!prefs.setString("after", "written"))
    report.failed("secure prefs write");
  if (!platform.defaults->setString("", "after", "plain.after")) {
    report.failed("defaults write");
  } else {
    report.stored(kStoredDefault);
    if (!platform.defaults->read("", "plain.after").isFound())
      report.failed("defaults read after a write");
  }
  const OSStatus added = platform.keychain->add(itemNamed("third"));
  if (added != errSecSuccess)
    report.failed("keychain add " + std::to_string(added));
  else
    report.stored(kStoredItem);
}

inline void readAndWriteAgain(const std::string& dir, const std::string& reportPath) {
  const auto report = std::make_shared<Report>(reportPath);
  VORNSdkLogger::shared().setLogger(LogLevel::debug, report);
  Platform::install(Platform::defaultPlatform(dir));
  const auto platform = Platform::current();
  const auto encryption = std::make_shared<EncryptionManager>(ModuleName::push);
  if (!encryption->encryptionKey())
    report->failed("no push key");
  StorageManager storage(encryption, kAppId);
  const auto prefs = storage.getOrCreateSecurePrefs("settings");
  (void)prefs->stringFor("string");
  (void)prefs->intFor("int");
  (void)prefs->doubleFor("double");
  readBack(*platform->defaults, *report);
  readKeychain(*platform->keychain, *report);
  writeAgain(*platform, *prefs, *report);
  readKeychain(*platform->keychain, *report);
}

// An acknowledged write must never read as absent later: at most as an error.
inline void findWhatWasStored(const std::string& dir, const std::string& reportPath) {
  std::ifstream previous(reportPath);
  const Platform platform = Platform::defaultPlatform(dir);
  for (std::string line; std::getline(previous, line);) {
    if (line == kStoredDefault) {
      EXPECT_FALSE(platform.defaults->read("", "plain.after").isAbsent());
    }
    if (line == kStoredItem) {
      KeychainQuery query;
      query.service = std::string(kService);
      query.account = "third";
      std::vector<KeychainItem> found;
      EXPECT_NE(platform.keychain->copyMatching(query, found), errSecItemNotFound);
    }
  }
}

}  // namespace vorn::testing::corruption
