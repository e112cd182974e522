#include "Orchestrator.hpp"

#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <memory>

#include "Checks.hpp"
#include "Collector.hpp"
#include "Process.hpp"

namespace demo {
namespace {

using nlohmann::json;

std::string selfPath() {
  char path[4096];
  const ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
  return length > 0 ? std::string(path, static_cast<std::size_t>(length)) : "";
}

std::vector<std::string> appArguments(const std::string& run, const std::filesystem::path& data,
                                      const std::string& url, int events = 0) {
  return {"--app",       run, "--data",   data.string(),
          "--collector", url, "--events", std::to_string(events)};
}

int countOf(const json& summary, const std::string& path, const std::string& status) {
  const json& requests = summary["requests"];
  return requests.contains(path) && requests[path].contains(status)
             ? requests[path][status].get<int>()
             : 0;
}

int eventsNamed(const json& summary, const std::string& name) {
  return summary["events"].contains(name) ? summary["events"][name].get<int>() : 0;
}

void printSummary(const json& summary) {
  std::printf("\n== What the collector received\n");
  for (const auto& [path, statuses] : summary["requests"].items())
    for (const auto& [status, count] : statuses.items())
      std::printf("  %-22s %s  x%d\n", path.c_str(), status.c_str(), count.get<int>());
  std::printf("  events by name:\n");
  for (const auto& [name, count] : summary["events"].items())
    std::printf("    %-20s %d\n", name.c_str(), count.get<int>());
  std::printf("  duplicate event ids: %d\n", summary["duplicateEventIds"].get<int>());
  std::printf("  last registration: %s\n", summary["lastRegistration"].dump().c_str());
}

void checkSummary(Checks& checks, const json& summary) {
  checks.expect(
      eventsNamed(summary, "Viewed Product") == 5 && eventsNamed(summary, "Add To Cart") == 1 &&
          eventsNamed(summary, "Purchase") == 1 && eventsNamed(summary, "Second Run Visit") == 2,
      "every tracked event arrived");
  checks.expect(eventsNamed(summary, "Opted Out Click") == 0, "nothing tracked while opted out");
  checks.expect(summary["duplicateEventIds"] == 0, "no event arrived twice");
  checks.expect(
      countOf(summary, "/v1/registration", "401") == 1 && countOf(summary, "/v1/token", "200") == 2,
      "one 401, answered by exactly one token refresh");
  checks.expect(countOf(summary, "/v1/registration", "200") >= 3,
                "registrations accepted in both runs");
  checks.expect(countOf(summary, "/v1/inbox", "200") >= 1 &&
                    countOf(summary, "/v1/inbox/m1/read", "200") == 1,
                "inbox fetched and a message marked read");
  checks.expect(countOf(summary, "/v1/inbox", "503") == 1,
                "one Retry-After answer, and no inbox call while blocked");
  const json& tags = summary["lastRegistration"]["tags"];
  checks.expect(tags.is_array() && std::find(tags.begin(), tags.end(), "vip") != tags.end(),
                "the last registration carries the tags");
}

// Empties the data directory and starts the collector storing into it; null when it did not.
std::unique_ptr<Collector> startInEmptyDirectory(const std::filesystem::path& dataDirectory,
                                                 Checks& checks) {
  std::filesystem::remove_all(dataDirectory);
  std::filesystem::create_directories(dataDirectory);
  auto collector = std::make_unique<Collector>(dataDirectory / "collector.db");
  if (!checks.expect(!collector->url().empty(), "collector started"))
    return nullptr;
  return collector;
}

}  // namespace

int runDemo(const std::filesystem::path& dataDirectory) {
  Checks checks;
  const auto collector = startInEmptyDirectory(dataDirectory, checks);
  if (!collector)
    return 1;
  for (const char* run : {"first", "second"}) {
    std::printf("\n== App run: %s\n", run);
    Process app(selfPath(), appArguments(run, dataDirectory, collector->url()));
    checks.expect(app.wait() == 0, std::string("the ") + run + " run passed its checks");
  }
  const json summary = collector->summary();
  if (!checks.expect(summary.is_object(), "collector summary read"))
    return 1;
  printSummary(summary);
  checkSummary(checks, summary);
  std::printf("\n%s\n", checks.failures() == 0 ? "demo: all steps passed" : "demo: FAILED");
  return checks.failures() == 0 ? 0 : 1;
}

int runKillTest(const std::filesystem::path& dataDirectory, int events) {
  Checks checks;
  const auto collector = startInEmptyDirectory(dataDirectory, checks);
  if (!collector)
    return 1;
  {
    Process app(selfPath(), appArguments("track", dataDirectory, collector->url(), events));
    const bool persisted =
        app.waitForLine("persisted " + std::to_string(events), std::chrono::seconds(60))
            .has_value();
    checks.expect(persisted, "the app has its events on disk");
    app.kill(SIGKILL);
  }
  checks.expect(eventsNamed(collector->summary(), "Killed Run Event") == 0,
                "nothing was uploaded before the kill");
  Process app(selfPath(), appArguments("upload", dataDirectory, collector->url(), events));
  checks.expect(app.wait() == 0, "the next start passed its checks");
  const json summary = collector->summary();
  checks.expect(
      eventsNamed(summary, "Killed Run Event") == events && summary["duplicateEventIds"] == 0,
      "every event of the killed run arrived exactly once");
  return checks.failures() == 0 ? 0 : 1;
}

}  // namespace demo
