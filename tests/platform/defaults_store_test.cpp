// Both defaults store backends keep typed values per suite, tell absent from stored, and
// read across types the way the host's user defaults do.
#include <gtest/gtest.h>

#include <functional>

#include "vorn/platform/DefaultsStore.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace vorn {
namespace {

struct Backend {
  const char* name;
  std::function<std::shared_ptr<DefaultsStore>(const std::filesystem::path&)> open;
};

void PrintTo(const Backend& backend, std::ostream* out) {
  *out << backend.name;
}

class DefaultsStoreTest : public ::testing::TestWithParam<Backend> {
 protected:
  void SetUp() override {
    store_ = GetParam().open(dir_.path());
    ASSERT_NE(store_, nullptr);
  }

  testing::TemporaryDirectory dir_;
  std::shared_ptr<DefaultsStore> store_;
};

TEST_P(DefaultsStoreTest, TypedValuesRoundTrip) {
  auto standard = store_->standard();
  ASSERT_TRUE(standard.setBool(true, "flag"));
  ASSERT_TRUE(standard.setInteger(-9007199254740993, "big"));
  ASSERT_TRUE(standard.setString("héllo", "text"));
  ASSERT_TRUE(standard.setData({0x00, 0xFF, 0x10}, "bytes"));
  ASSERT_TRUE(standard.setData({}, "empty"));

  EXPECT_TRUE(standard.boolFor("flag"));
  EXPECT_EQ(standard.integerFor("big"), -9007199254740993);
  EXPECT_EQ(standard.stringFor("text"), "héllo");
  EXPECT_EQ(standard.dataFor("bytes"), (DefaultsData{0x00, 0xFF, 0x10}));
  EXPECT_EQ(standard.dataFor("empty"), DefaultsData());
  EXPECT_EQ(standard.object("flag"), DefaultsValue(true));
}

TEST_P(DefaultsStoreTest, AbsentReadsAsDefaultsButObjectTellsItApart) {
  auto standard = store_->standard();
  EXPECT_FALSE(standard.object("missing").has_value());
  EXPECT_FALSE(standard.boolFor("missing"));
  EXPECT_EQ(standard.integerFor("missing"), 0);
  EXPECT_FALSE(standard.stringFor("missing").has_value());
  EXPECT_FALSE(standard.dataFor("missing").has_value());
  ASSERT_TRUE(standard.setBool(false, "stored-false"));
  EXPECT_EQ(standard.object("stored-false"), DefaultsValue(false));
  ASSERT_TRUE(standard.setString("", "empty-text"));
  EXPECT_EQ(standard.stringFor("empty-text"), "");
}

TEST_P(DefaultsStoreTest, ReadsAcrossTypes) {
  auto suite = store_->suite("conv");
  ASSERT_TRUE(suite.setString("YES", "yes"));
  ASSERT_TRUE(suite.setString("42abc", "numeric"));
  ASSERT_TRUE(suite.setInteger(7, "seven"));
  ASSERT_TRUE(suite.setBool(true, "flag"));
  EXPECT_TRUE(suite.boolFor("yes"));
  EXPECT_EQ(suite.integerFor("numeric"), 42);
  EXPECT_TRUE(suite.boolFor("seven"));
  EXPECT_EQ(suite.stringFor("seven"), "7");
  EXPECT_EQ(suite.integerFor("flag"), 1);
  EXPECT_FALSE(suite.dataFor("seven").has_value());
}

TEST_P(DefaultsStoreTest, SetReplacesValueAndType) {
  auto standard = store_->standard();
  ASSERT_TRUE(standard.setInteger(1, "k"));
  ASSERT_TRUE(standard.setData({1, 2}, "k"));
  EXPECT_EQ(standard.object("k"), DefaultsValue(DefaultsData{1, 2}));
}

TEST_P(DefaultsStoreTest, SuitesAreSeparateAndRemovable) {
  auto standard = store_->standard();
  auto a = store_->suite("com.example.a");
  auto b = store_->suite("com.example.b");
  ASSERT_TRUE(standard.setString("s", "k"));
  ASSERT_TRUE(a.setString("a", "k"));
  ASSERT_TRUE(a.setString("a2", "k2"));
  ASSERT_TRUE(b.setString("b", "k"));
  EXPECT_EQ(a.stringFor("k"), "a");

  ASSERT_TRUE(a.removeObject("k"));
  EXPECT_FALSE(a.object("k").has_value());
  EXPECT_TRUE(a.removeObject("never-there"));
  EXPECT_EQ(a.stringFor("k2"), "a2");

  ASSERT_TRUE(a.removePersistentDomain());
  EXPECT_FALSE(a.object("k2").has_value());
  EXPECT_EQ(b.stringFor("k"), "b");
  EXPECT_EQ(standard.stringFor("k"), "s");
}

TEST_P(DefaultsStoreTest, SnapshotReadsEachKeyInOrder) {
  store_->setString("s", "one", "a");
  store_->setInteger("s", 2, "b");
  const std::vector<std::string> keys{"b", "missing", "a"};
  const auto values = store_->suite("s").readSnapshot(keys);
  ASSERT_EQ(values.size(), 3u);
  EXPECT_EQ(values[0].value(), DefaultsValue(std::int64_t{2}));
  EXPECT_TRUE(values[1].isAbsent());
  EXPECT_EQ(values[2].value(), DefaultsValue(std::string("one")));
  EXPECT_TRUE(store_->readSnapshot("s", {}).empty());
}

INSTANTIATE_TEST_SUITE_P(Backends, DefaultsStoreTest,
                         ::testing::Values(Backend{"memory",
                                                   [](const std::filesystem::path&) {
                                                     return DefaultsStore::inMemory();
                                                   }},
                                           Backend{"sqlite",
                                                   [](const std::filesystem::path& dir) {
                                                     return DefaultsStore::openFile(dir);
                                                   }}),
                         [](const auto& backend) { return std::string(backend.param.name); });

TEST(SqliteDefaultsStoreTest, ReopenedFileKeepsValues) {
  testing::TemporaryDirectory dir;
  DefaultsStore::openFile(dir.path())->suite("s").setInteger(5, "k");
  EXPECT_EQ(DefaultsStore::openFile(dir.path())->suite("s").integerFor("k"), 5);
}

// The snapshot's transaction must be over when it returns: a write left inside it would
// never reach the file.
TEST(SqliteDefaultsStoreTest, WritesAfterASnapshotReachOtherConnections) {
  testing::TemporaryDirectory dir;
  auto writer = DefaultsStore::openFile(dir.path());
  const std::vector<std::string> keys{"a", "b"};
  (void)writer->readSnapshot("s", keys);
  ASSERT_TRUE(writer->setString("s", "after", "a"));
  EXPECT_EQ(DefaultsStore::openFile(dir.path())->stringFor("s", "a"), "after");
}

}  // namespace
}  // namespace vorn
