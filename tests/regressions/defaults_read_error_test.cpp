// A defaults read that fails is reported as an error, apart from an absent key.
#include <gtest/gtest.h>

#include "vorn/platform/DefaultsStore.hpp"
#include "vorn/testing/FaultyDefaultsStore.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace vorn {
namespace {

TEST(DefaultsReadError, FileStoreTellsFoundFromAbsent) {
  testing::TemporaryDirectory dir;
  auto store = DefaultsStore::openFile(dir.path());
  ASSERT_TRUE(store);
  ASSERT_TRUE(store->setString("s", "value", "k"));
  const auto found = store->suite("s").read("k");
  ASSERT_TRUE(found.isFound());
  EXPECT_EQ(std::get<std::string>(found.value()), "value");
  EXPECT_TRUE(store->read("s", "other").isAbsent());
  EXPECT_TRUE(store->standard().read("k").isAbsent());
}

TEST(DefaultsReadError, FaultyStoreFailsTheChosenReads) {
  testing::FaultyDefaultsStore store;
  ASSERT_TRUE(store.setString("", "value", "k"));
  store.failNextReads(1, std::string("k"));
  EXPECT_TRUE(store.read("", "other").isAbsent()) << "another key is not faulted";
  const auto failed = store.read("", "k");
  EXPECT_TRUE(failed.isError());
  EXPECT_EQ(failed.status(), testing::FaultyDefaultsStore::kReadFailure);
  EXPECT_TRUE(store.read("", "k").isFound()) << "only the next read fails";

  store.setFailReads(true);
  EXPECT_TRUE(store.read("", "k").isError());
  EXPECT_FALSE(store.stringFor("", "k").has_value());
  store.setFailReads(false);
  EXPECT_EQ(store.stringFor("", "k"), "value");
  EXPECT_EQ(store.reads(), 6);
}

}  // namespace
}  // namespace vorn
