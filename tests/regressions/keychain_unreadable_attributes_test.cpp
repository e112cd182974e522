// An item whose stored attributes no longer decode (a damaged keychain.db, or one written by
// another program) used to end the process with an uncaught exception, or overflow the stack
// when the bytes nested deeply. It must read as an error, never as an absent item: a caller
// that saw it absent would create new key material over it.
#include <gtest/gtest.h>

#include <string>

#include "platform/RawSqlite.hpp"
#include "vorn/platform/KeychainStore.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace vorn {
namespace {

using testing::CaptureLogSink;
using testing::RawSqlite;

constexpr const char* kUnreadableLine =
    "Unreadable keychain item for service svc: its stored attributes cannot be decoded.";

class KeychainUnreadableAttributes : public ::testing::Test {
 protected:
  void SetUp() override {
    store_ = KeychainStore::openFile(dir_.path());
    ASSERT_TRUE(store_);
    KeychainItem item;
    item.service = "svc";
    item.account = "acct";
    item.data = KeychainData{1, 2, 3};
    item.attributes["label"] = std::string("kept");
    ASSERT_EQ(store_->add(item), errSecSuccess);
  }

  // Overwrites the stored attributes with `hexBytes`, as a damaged file would hold them.
  void storeAttributes(const std::string& hexBytes) {
    RawSqlite raw(dir_.path() / "keychain.db");
    ASSERT_TRUE(raw.execute("UPDATE items SET attributes = x'" + hexBytes + "'"));
  }

  OSStatus lookUp() {
    KeychainQuery query;
    query.service = "svc";
    query.returnAttributes = true;
    query.returnData = true;
    std::vector<KeychainItem> found;
    return store_->copyMatching(query, found);
  }

  testing::TemporaryDirectory dir_;
  std::shared_ptr<KeychainStore> store_;
};

TEST_F(KeychainUnreadableAttributes, AnArrayClaimingMoreItemsThanMemoryIsUndecodable) {
  storeAttributes("9b7fffffffffffffff");
  auto sink = CaptureLogSink::install();
  EXPECT_EQ(lookUp(), errSecDecode);
  const auto line = sink->find(kUnreadableLine);
  ASSERT_TRUE(line);
  EXPECT_EQ(line->level, LogLevel::error);
  EXPECT_EQ(line->category, LoggerCategory::database);
}

TEST_F(KeychainUnreadableAttributes, AnUnfinishedArrayIsUndecodableNotEmpty) {
  storeAttributes("9bffffffffffffffff");
  EXPECT_EQ(lookUp(), errSecDecode);
}

TEST_F(KeychainUnreadableAttributes, DeepNestingIsUndecodableWithoutRecursion) {
  std::string nested;
  for (int i = 0; i < 300000; ++i)
    nested += "81";
  storeAttributes(nested + "00");
  auto sink = CaptureLogSink::install();
  EXPECT_EQ(lookUp(), errSecDecode);
  EXPECT_EQ(sink->count(kUnreadableLine), 1u);
}

TEST_F(KeychainUnreadableAttributes, TheItemStaysPresentAndCanBeRemoved) {
  storeAttributes("a1656c6162656cf5");  // {"label": true}: not a text or byte string
  KeychainItem again;
  again.service = "svc";
  again.account = "acct";
  EXPECT_EQ(store_->add(again), errSecDuplicateItem);
  KeychainQuery query;
  query.service = "svc";
  EXPECT_EQ(store_->update(query, again), errSecDecode);
  EXPECT_EQ(lookUp(), errSecDecode);
  EXPECT_EQ(store_->remove(query), errSecSuccess);
  EXPECT_EQ(lookUp(), errSecItemNotFound);
}

}  // namespace
}  // namespace vorn
