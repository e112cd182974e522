// The key store's exclusive sections: nesting, multi-row changes inside them, and a second
// connection to the same file (standing in for a second process) kept out until one ends.
#include <gtest/gtest.h>

#include <thread>

#include "vorn/platform/KeychainStore.hpp"
#include "vorn/testing/FaultyKeychainStore.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

KeychainItem itemOf(std::string service, std::string_view value) {
  KeychainItem item;
  item.service = std::move(service);
  item.data = KeychainData(value.begin(), value.end());
  return item;
}

std::optional<KeychainData> valueOf(KeychainStore& store, std::string service) {
  KeychainQuery query;
  query.service = std::move(service);
  query.returnData = true;
  std::vector<KeychainItem> found;
  if (store.copyMatching(query, found) != errSecSuccess)
    return std::nullopt;
  return found.front().data;
}

TEST(KeychainExclusiveSection, NestsAndRunsUpdatesInsideOnTheFileStore) {
  testing::TemporaryDirectory dir;
  auto store = KeychainStore::openFile(dir.path());
  ASSERT_TRUE(store);
  ASSERT_EQ(store->add(itemOf("svc", "one")), errSecSuccess);
  OSStatus inner = errSecParam;
  OSStatus updated = errSecParam;
  const OSStatus outer = store->exclusively([&] {
    inner = store->exclusively([&] {
      KeychainQuery query;
      query.service = "svc";
      updated = store->update(query, itemOf("svc", "two"));
    });
    EXPECT_EQ(valueOf(*store, "svc"), KeychainData({'t', 'w', 'o'}));
  });
  EXPECT_EQ(outer, errSecSuccess);
  EXPECT_EQ(inner, errSecSuccess);
  EXPECT_EQ(updated, errSecSuccess);
  auto reopened = KeychainStore::openFile(dir.path());
  EXPECT_EQ(valueOf(*reopened, "svc"), KeychainData({'t', 'w', 'o'}));
}

TEST(KeychainExclusiveSection, AnotherConnectionWaitsAndSeesTheSectionsWrite) {
  testing::TemporaryDirectory dir;
  auto first = KeychainStore::openFile(dir.path());
  auto second = KeychainStore::openFile(dir.path());
  ASSERT_TRUE(first && second);
  testing::Latch entered;
  testing::Latch secondStarting;
  std::optional<KeychainData> seenBySecond;
  std::thread other([&] {
    ASSERT_TRUE(entered.wait());
    secondStarting.countDown();
    EXPECT_EQ(second->exclusively([&] { seenBySecond = valueOf(*second, "shared"); }),
              errSecSuccess);
  });
  EXPECT_EQ(first->exclusively([&] {
    entered.countDown();
    ASSERT_TRUE(secondStarting.wait());
    // Give the other connection every chance to get in first if the section let it.
    std::this_thread::yield();
    ASSERT_EQ(first->add(itemOf("shared", "written")), errSecSuccess);
  }),
            errSecSuccess);
  other.join();
  EXPECT_EQ(seenBySecond, KeychainData({'w', 'r', 'i', 't', 't', 'e', 'n'}));
}

TEST(KeychainExclusiveSection, AFaultedSectionDoesNotRunItsBody) {
  testing::FaultyKeychainStore store;
  store.failNext(testing::KeychainOperation::exclusively, errSecNotAvailable);
  bool ran = false;
  EXPECT_EQ(store.exclusively([&] { ran = true; }), errSecNotAvailable);
  EXPECT_FALSE(ran);
  EXPECT_EQ(store.exclusively([&] { ran = true; }), errSecSuccess);
  EXPECT_TRUE(ran);
}

}  // namespace
}  // namespace vorn
