// The persistent queue: what one run leaves the next one uploads; damage in the file costs
// only the damaged records.
#include <gmock/gmock.h>

#include <sys/stat.h>

#include <fstream>
#include <iterator>

#include "CdpTestSupport.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace cdp::test {
namespace {

using ::testing::UnorderedElementsAre;
using ::testing::UnorderedElementsAreArray;

using Bytes = std::vector<std::uint8_t>;

Bytes readFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void writeFile(const std::filesystem::path& path, const Bytes& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
}

// The file's records, each with its 4-byte big-endian length in front.
std::vector<Bytes> records(const Bytes& file) {
  std::vector<Bytes> result;
  for (std::size_t offset = 0; offset + 4 <= file.size();) {
    const std::size_t length = (std::size_t{file[offset]} << 24) |
                               (std::size_t{file[offset + 1]} << 16) |
                               (std::size_t{file[offset + 2]} << 8) | file[offset + 3];
    result.emplace_back(file.begin() + offset, file.begin() + offset + 4 + length);
    offset += 4 + length;
  }
  return result;
}

void append(Bytes& out, const Bytes& bytes) {
  out.insert(out.end(), bytes.begin(), bytes.end());
}

TEST_F(CdpModuleTest, WhatOneRunQueuedTheNextUploadsAtStart) {
  std::vector<std::string> ids;
  {
    auto first = start(settings(100, 60));
    ASSERT_TRUE(first);
    for (int i = 0; i < 4; ++i)
      ids.push_back(deliver(*first, "left-" + std::to_string(i)));
    EXPECT_EQ(property(*first, "queuedEvents"), vorn::Value(4));
    first->tearDown();
  }
  EXPECT_EQ(collector.attempts(), 0);

  auto second = start(settings(100, 60));
  ASSERT_TRUE(second);
  ASSERT_TRUE(waitForProperty(*second, "uploadedEvents", 4));
  EXPECT_THAT(collector.acceptedIds(), UnorderedElementsAreArray(ids));
  EXPECT_EQ(property(*second, "queuedEvents"), vorn::Value(0));
  EXPECT_TRUE(readFile(eventsFile()).empty());
  second->tearDown();
}

TEST_F(CdpModuleTest, TheQueueFileIsPrivateAndHoldsNoPlainText) {
  auto module = start(settings(100, 60));
  ASSERT_TRUE(module);
  deliver(*module, "private-event-name");
  struct stat file {};
  struct stat folder {};
  ASSERT_EQ(::stat(eventsFile().c_str(), &file), 0);
  ASSERT_EQ(::stat(eventsFile().parent_path().c_str(), &folder), 0);
  EXPECT_EQ(file.st_mode & 0777, 0600u);
  EXPECT_EQ(folder.st_mode & 0777, 0700u);
  const Bytes contents = readFile(eventsFile());
  EXPECT_EQ(std::string(contents.begin(), contents.end()).find("private"), std::string::npos);
  module->tearDown();
}

TEST_F(CdpModuleTest, ACorruptRecordAndATornTailAreSkippedAndTheRestUploaded) {
  std::vector<std::string> ids;
  {
    auto first = start(settings(100, 60));
    ASSERT_TRUE(first);
    for (int i = 0; i < 3; ++i)
      ids.push_back(deliver(*first, "survivor-" + std::to_string(i)));
    first->tearDown();
  }
  const auto kept = records(readFile(eventsFile()));
  ASSERT_EQ(kept.size(), 3u);
  // survivor-0, a record that does not decrypt, survivor-1, survivor-2, and a write that
  // stopped after 10 of the 1000 bytes its length announces.
  Bytes damaged;
  append(damaged, kept[0]);
  const std::size_t corruptOffset = damaged.size();
  append(damaged, Bytes{0, 0, 0, 32});
  append(damaged, Bytes(32, 0xAB));
  append(damaged, kept[1]);
  append(damaged, kept[2]);
  const std::size_t tornOffset = damaged.size();
  append(damaged, Bytes{0, 0, 0x03, 0xE8});
  append(damaged, Bytes(10, 0x5A));
  writeFile(eventsFile(), damaged);

  const auto sink = vorn::testing::CaptureLogSink::install();
  auto second = start(settings(100, 60));
  ASSERT_TRUE(second);
  EXPECT_TRUE(sink->contains("Skipped an unreadable event record at offset " +
                             std::to_string(corruptOffset) + "."));
  EXPECT_TRUE(sink->contains("Skipped a truncated event record at offset " +
                             std::to_string(tornOffset) + " (14 bytes)."));
  ASSERT_TRUE(waitForProperty(*second, "uploadedEvents", 3));
  EXPECT_THAT(collector.acceptedIds(), UnorderedElementsAreArray(ids));
  EXPECT_EQ(property(*second, "droppedEvents"), vorn::Value(2));

  // The damage is gone from the file, so a record appended now is read back by the next run.
  const std::string later = deliver(*second, "after-repair");
  second->tearDown();
  second.reset();
  auto third = start(settings(100, 60));
  ASSERT_TRUE(third);
  ASSERT_TRUE(collector.waitForAccepted(4));
  EXPECT_EQ(collector.acceptedIds().back(), later);
  EXPECT_EQ(property(*third, "droppedEvents"), vorn::Value(0));
  third->tearDown();
}

}  // namespace
}  // namespace cdp::test
