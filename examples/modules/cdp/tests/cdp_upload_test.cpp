// Uploads against a real loopback collector: batching, the flush timer, the rate limit,
// Retry-After, the background trigger, the location, and a teardown during an upload.
#include <gmock/gmock.h>

#include <algorithm>
#include <future>
#include <set>

#include "CdpTestSupport.hpp"
#include "vorn/behavior/Behavior.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace cdp::test {
namespace {

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAreArray;
using namespace std::chrono_literals;

TEST_F(CdpModuleTest, TheClassIsRegisteredWithItsVersionAndSettings) {
  const auto moduleClass = vorn::ModuleRegistry::lookup("Cdp.CdpModule");
  ASSERT_TRUE(moduleClass);
  EXPECT_EQ(moduleClass->moduleVersion, "2.4.0");

  const CdpModuleConfig configured("app", settings(5, 2, 1));
  EXPECT_EQ(configured.name(), vorn::ModuleName::cdp);
  EXPECT_EQ(configured.appId(), "app");
  std::vector<std::string> labels;
  for (const auto& [label, value] : configured.storedProperties())
    labels.push_back(label);
  EXPECT_THAT(labels, ElementsAre("appId", "endpoint", "batchSize", "flushIntervalSeconds",
                                  "rateLimitSeconds", "dataDirectory", "syncWrites"));
  EXPECT_EQ(configured.dataDirectory(), directory.path());
  EXPECT_EQ(CdpModuleConfig("app", {}).dataDirectory(), vorn::Platform::defaultDataDirectory());
}

TEST_F(CdpModuleTest, EventsAreUploadedOnceInBatchesOfAtMostBatchSize) {
  auto module = start(settings(3, 0.2));
  ASSERT_TRUE(module);
  std::vector<std::string> ids;
  for (int i = 0; i < 7; ++i)
    ids.push_back(deliver(*module, "event-" + std::to_string(i)));

  // A full batch starts an upload, which goes on while events remain.
  ASSERT_TRUE(waitForProperty(*module, "uploadedEvents", 7));
  EXPECT_THAT(collector.acceptedIds(), UnorderedElementsAreArray(ids));
  for (const auto& batch : collector.batches()) {
    EXPECT_LE(batch["events"].size(), 3u);
    EXPECT_FALSE(batch.contains("location"));
  }
  const auto first = collector.batches().front()["events"].front();
  EXPECT_EQ(first["name"], "event-0");
  EXPECT_EQ(first["category"], "engagement");
  EXPECT_EQ(first["producer"], "sdk");
  EXPECT_EQ(first["attributes"], (nlohmann::json{{"step", 1}}));
  EXPECT_TRUE(first.contains("timestamp"));
  EXPECT_EQ(property(*module, "queuedEvents"), vorn::Value(0));
  module->tearDown();
}

TEST_F(CdpModuleTest, LessThanABatchWaitsForTheFlushTimer) {
  auto module = start(settings(3, 0.2));
  ASSERT_TRUE(module);
  const auto queuedAt = std::chrono::steady_clock::now();
  const std::string id = deliver(*module, "alone");
  ASSERT_TRUE(waitForProperty(*module, "uploadedEvents", 1));
  EXPECT_EQ(collector.acceptedIds(), std::vector<std::string>{id});
  EXPECT_GE(collector.arrivals().front() - queuedAt, 200ms);
  module->tearDown();
}

TEST_F(CdpModuleTest, TheRateLimitSpacesConsecutiveBatches) {
  auto module = start(settings(2, 30, 1));
  ASSERT_TRUE(module);
  for (int i = 0; i < 4; ++i)
    deliver(*module, "spaced-" + std::to_string(i));

  ASSERT_TRUE(collector.waitForAccepted(4));
  const auto arrivals = collector.arrivals();
  ASSERT_EQ(arrivals.size(), 2u);
  EXPECT_GE(arrivals[1] - arrivals[0], 1s);
  EXPECT_EQ(collector.attempts(), 2);  // the second batch waited instead of being refused
  module->tearDown();
}

TEST_F(CdpModuleTest, ARetryAfterKeepsTheEventsUntilTheBlockEnds) {
  const auto sink = vorn::testing::CaptureLogSink::install();
  collector.failNext(503, "1");
  auto module = start(settings(2, 30));
  ASSERT_TRUE(module);
  const std::vector<std::string> ids{deliver(*module, "kept-0"), deliver(*module, "kept-1")};

  ASSERT_TRUE(sink->waitFor("Upload of 2 events failed (HTTP 503). Retrying in 1050 ms."));
  EXPECT_EQ(property(*module, "queuedEvents"), vorn::Value(2));
  const auto refusedAt = std::chrono::steady_clock::now();
  ASSERT_TRUE(collector.waitForAccepted(2));
  EXPECT_GE(collector.arrivals().front() - refusedAt, 900ms);
  EXPECT_THAT(collector.acceptedIds(), UnorderedElementsAreArray(ids));
  EXPECT_EQ(collector.attempts(), 2);
  EXPECT_TRUE(waitForProperty(*module, "queuedEvents", 0));
  module->tearDown();
}

TEST_F(CdpModuleTest, GoingToTheBackgroundUploadsWithTheLocationWhileItIsValid) {
  auto module = start(settings(100, 60));
  ASSERT_TRUE(module);
  cdpOf(module)->setLocation(vorn::Coordinates{48.85, 2.35}, 60);
  deliver(*module, "located");
  components->behaviorManager()->deliver(std::make_shared<vorn::AppBackgrounded>());
  ASSERT_TRUE(collector.waitForAccepted(1));
  EXPECT_EQ(collector.batches()[0]["location"],
            (nlohmann::json{{"latitude", 48.85}, {"longitude", 2.35}}));

  cdpOf(module)->setLocation(std::nullopt, 60);
  deliver(*module, "unlocated");
  components->behaviorManager()->deliver(std::make_shared<vorn::AppBackgrounded>());
  ASSERT_TRUE(collector.waitForAccepted(2));
  EXPECT_FALSE(collector.batches()[1].contains("location"));
  module->tearDown();
}

TEST_F(CdpModuleTest, TearDownDuringAnUploadLetsItEndAndKeepsItsOutcome) {
  collector.hold();
  auto module = start(settings(1, 60));
  ASSERT_TRUE(module);
  deliver(*module, "in-flight");
  ASSERT_TRUE(collector.waitForHeldRequest());

  auto tornDown = std::async(std::launch::async, [&] { module->tearDown(); });
  EXPECT_EQ(tornDown.wait_for(50ms), std::future_status::timeout);  // it waits for the upload
  collector.release();
  ASSERT_EQ(tornDown.wait_for(vorn::testing::kDeadline), std::future_status::ready);
  EXPECT_EQ(property(*module, "uploadedEvents"), vorn::Value(1));
  deliver(*module, "after-teardown");
  EXPECT_EQ(property(*module, "queuedEvents"), vorn::Value(0));
  module.reset();

  // The accepted event left the file before the teardown returned.
  auto restarted = start(settings(1, 60));
  ASSERT_TRUE(restarted);
  EXPECT_EQ(property(*restarted, "queuedEvents"), vorn::Value(0));
  EXPECT_EQ(collector.attempts(), 1);
  restarted->tearDown();
}

}  // namespace
}  // namespace cdp::test
