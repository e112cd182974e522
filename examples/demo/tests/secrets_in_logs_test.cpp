// The demo's two app runs at the most verbose logging, with every line of every sink read:
// no access token, header, device token or key may show in any of them in any encoding, nor
// in anything the process writes to standard error; neither may the profile values, which the
// app lists as redacted values as an app that wants them hidden does. The registration id
// shows in the one core line that reports it, as that line is defined, and in no other.
//
// The first run is in this process; the second, as a relaunched app, is a child process
// started on the same data directory, which checks its own lines the same way.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "../Collector.hpp"
#include "../DemoApp.hpp"
#include "vorn/logging/VORNSdkLogger.hpp"
#include "vorn/storage/crypto/Base64.hpp"
#include "vorn/storage/crypto/Hex.hpp"
#include "vorn/storage/keystore/VORNKeyStoreManager.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/ChildProcess.hpp"
#include "vorn/testing/StandardErrorToFile.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace {

using vorn::testing::CaptureLogSink;
using vorn::testing::containsIgnoringCase;
using vorn::testing::contentsOf;
using vorn::testing::StandardErrorToFile;

constexpr const char* kDataOrder = "VORN_SECRETS_DEMO_DATA";
constexpr const char* kCollectorOrder = "VORN_SECRETS_DEMO_COLLECTOR";
constexpr const char* kSecondRunTest = "DemoSecrets.SecondRunLogsNoSecret";

// What the demo plants: the device token it registers, the bearer tokens the collector issues
// (one at the first start, one after the 401) and the profile values it sets.
const std::vector<std::string> kModuleSecrets = {"deadbeef01020304", "tok-1", "tok-2",
                                                 "Bearer tok-1", "Bearer tok-2"};
const std::vector<std::string> kProfileValues = {"demo-user-42", "cdp-visitor-7", "gold"};
constexpr std::string_view kRegistrationIdLine = "StorageManager was initialized with ";

void addKeyMaterial(std::vector<std::string>& secrets, const vorn::Bytes& bytes) {
  secrets.push_back(vorn::newHexStringFromBytes(bytes));
  secrets.push_back(vorn::base64Encode(bytes));
  secrets.emplace_back(bytes.begin(), bytes.end());
}

std::string registrationIdOf(const std::filesystem::path& data) {
  std::string registrationId;
  std::ifstream(data / "first-run-registration-id.txt") >> registrationId;
  EXPECT_FALSE(registrationId.empty());
  return registrationId;
}

// Everything planted, plus the modules' keys the run made or read.
std::vector<std::string> secretsOf() {
  std::vector<std::string> secrets = kModuleSecrets;
  secrets.insert(secrets.end(), kProfileValues.begin(), kProfileValues.end());
  for (const char* label : {"cdp", "push"}) {
    const auto key = vorn::VORNKeyStoreManager::shared()->retrieveKeyWithLabel(label, false);
    EXPECT_NE(key, nullptr) << label;
    if (!key)
      continue;
    addKeyMaterial(secrets, key->key());
    addKeyMaterial(secrets, key->initializationVector());
  }
  return secrets;
}

struct RunOutput {
  int failedChecks = -1;
  std::vector<vorn::testing::LogLine> lines;
  std::string standardError;
};

RunOutput runApp(const std::string& run, const std::filesystem::path& data,
                 const std::string& collector) {
  auto tap = std::make_shared<CaptureLogSink>();
  vorn::VORNSdkLogger::shared().setRedactedValues(kProfileValues);
  StandardErrorToFile standardError(data / (run + "-stderr.txt"));
  RunOutput output;
  output.failedChecks =
      demo::runApp({.run = run, .dataDirectory = data, .collectorUrl = collector, .logTap = tap});
  output.standardError = standardError.restore();
  output.lines = tap->lines();
  return output;
}

void expectNoSecret(const RunOutput& output, const std::vector<std::string>& secrets) {
  for (const std::string& secret : secrets) {
    for (const auto& line : output.lines)
      EXPECT_FALSE(containsIgnoringCase(line.message, secret))
          << "secret " << vorn::newHexStringFromBytes(vorn::Bytes(secret.begin(), secret.end()))
          << " in " << line.subsystem << "/" << vorn::rawValue(line.category) << ": "
          << line.message;
    EXPECT_FALSE(containsIgnoringCase(output.standardError, secret))
        << "secret in standard error: " << secret;
  }
}

// Each module's storage manager reports its id once it has it; nothing else may show it.
void expectTheRegistrationIdOnlyWhereItIsReported(const RunOutput& output,
                                                  const std::string& registrationId) {
  for (const auto& line : output.lines) {
    const bool reports =
        line.subsystem == "VORNSdk" && line.message.starts_with(kRegistrationIdLine);
    EXPECT_TRUE(reports || !containsIgnoringCase(line.message, registrationId))
        << line.subsystem << "/" << vorn::rawValue(line.category) << ": " << line.message;
  }
  EXPECT_FALSE(containsIgnoringCase(output.standardError, registrationId));
}

// The demo's own logger setting is the most verbose one: debug, every category.
void expectEveryLineWasWritten() {
  EXPECT_EQ(vorn::VORNSdkLogger::shared().getLogLevel(), vorn::LogLevel::debug);
  EXPECT_TRUE(vorn::VORNSdkLogger::shared().filters().empty());
}

bool logged(const RunOutput& output, std::string_view text) {
  return std::any_of(output.lines.begin(), output.lines.end(), [&](const auto& line) {
    return line.message.find(text) != std::string::npos;
  });
}

// The lines that would carry the secrets were written, with the secrets replaced: otherwise
// a run could pass for logging nothing.
void expectTheSecretsWereLoggedRedacted(const RunOutput& output,
                                        const std::vector<std::string>& texts) {
  for (const std::string& text : texts)
    EXPECT_TRUE(logged(output, text)) << text;
}

TEST(DemoSecrets, FirstRunLogsNoSecretAndNeitherDoesTheRelaunch) {
  vorn::testing::TemporaryDirectory data;
  demo::Collector collector(data.path() / "collector.db");
  ASSERT_FALSE(collector.url().empty());

  const RunOutput first = runApp("first", data.path(), collector.url());
  ASSERT_EQ(first.failedChecks, 0);
  expectEveryLineWasWritten();
  expectTheSecretsWereLoggedRedacted(
      first, {"StorageManager was initialized with new registration id (" +
                  registrationIdOf(data.path()) + ").",
              "Setting `[REDACTED]` as profileId for all subscribed modules triggered.",
              "Setting `[REDACTED]` as profileId for cdp triggered.",
              "Setting `[\"tier\": \"[REDACTED]\"]` as attributes for all modules triggered.",
              "\"attributes\":{\"tier\":\"[REDACTED]\"},\"contactKey\":\"[REDACTED]\","
              "\"deviceToken\":\"[REDACTED]\"",
              "Access token refreshed."});
  expectNoSecret(first, secretsOf());
  expectTheRegistrationIdOnlyWhereItIsReported(first, registrationIdOf(data.path()));

  // The child's own report goes to a file, as its standard output is not kept.
  const std::filesystem::path report = data.path() / "second-run.json";
  const pid_t second =
      vorn::testing::spawnSelf(kSecondRunTest, {{kDataOrder, data.path().string()},
                                                {kCollectorOrder, collector.url()},
                                                {"GTEST_OUTPUT", "json:" + report.string()}});
  ASSERT_GT(second, 0);
  EXPECT_EQ(vorn::testing::waitForExit(second), 0) << contentsOf(report);
}

// The relaunch, run by the test above in a process of its own.
TEST(DemoSecrets, SecondRunLogsNoSecret) {
  const auto data = vorn::testing::childOrder(kDataOrder);
  const auto collector = vorn::testing::childOrder(kCollectorOrder);
  if (!data || !collector)
    GTEST_SKIP() << "started by FirstRunLogsNoSecretAndNeitherDoesTheRelaunch";
  const RunOutput second = runApp("second", *data, *collector);
  ASSERT_EQ(second.failedChecks, 0);
  expectEveryLineWasWritten();
  expectTheSecretsWereLoggedRedacted(
      second, {"StorageManager was initialized with existing registration id (" +
                   registrationIdOf(*data) + ").",
               "\"contactKey\":\"[REDACTED]\",\"deviceToken\":\"[REDACTED]\""});
  expectNoSecret(second, secretsOf());
  expectTheRegistrationIdOnlyWhereItIsReported(second, registrationIdOf(*data));
}

}  // namespace
