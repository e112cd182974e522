// A defaults row whose type tag no longer names a known type (a damaged defaults.db) used
// to read as an absent key, without a line, so callers wrote a new value over it.
#include <gtest/gtest.h>

#include "platform/RawSqlite.hpp"
#include "vorn/platform/DefaultsStore.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace vorn {
namespace {

TEST(DefaultsUnreadableValue, AnUnknownTypeTagIsAnErrorWithALine) {
  testing::TemporaryDirectory dir;
  auto store = DefaultsStore::openFile(dir.path());
  ASSERT_TRUE(store && store->setString("suite", "value", "key"));
  {
    testing::RawSqlite raw(dir.path() / "defaults.db");
    ASSERT_TRUE(raw.execute("UPDATE entries SET type = 9"));
  }
  auto sink = testing::CaptureLogSink::install();
  const auto read = store->read("suite", "key");
  EXPECT_TRUE(read.isError());
  EXPECT_FALSE(store->object("suite", "key"));
  const auto line = sink->find("Unreadable default key in suite suite: unknown stored type 9");
  ASSERT_TRUE(line);
  EXPECT_EQ(line->level, LogLevel::error);
  EXPECT_TRUE(store->setString("suite", "again", "key"));
  EXPECT_EQ(store->stringFor("suite", "key"), "again");
}

}  // namespace
}  // namespace vorn
