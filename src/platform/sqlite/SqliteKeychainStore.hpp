// The file-backed key store: keychain.db, one connection guarded by a mutex.
//
// Items live in `items` (unique by service and account, ordered by insertion), keys in
// `keys` (unique by tag and class). Further item attributes are kept as one CBOR map.
// No failure reads as errSecItemNotFound: a lock held too long by another connection answers
// errSecInteractionNotAllowed, any other SQLite failure (a damaged file, one that is not a
// database, a full disk) errSecNotAvailable, and an item whose stored attributes cannot be
// decoded errSecDecode, each after a log line. Such an item can still be removed. A file that
// cannot be opened at all is reported once and tried again on every call (SqliteDatabase.hpp).
//
// An exclusive section is one BEGIN IMMEDIATE transaction on the connection, which SQLite
// locks against every other connection to the file; the mutex is held for the whole section,
// so the section's own thread re-enters it and other threads wait. A store opened read-only
// has no sections: exclusively() answers errSecNotAvailable without running the body.
#pragma once

#include <memory>
#include <mutex>

#include "platform/sqlite/SqliteDatabase.hpp"
#include "vorn/platform/KeychainStore.hpp"

namespace vorn::platform {

class SqliteKeychainStore final : public KeychainStore {
 public:
  explicit SqliteKeychainStore(std::unique_ptr<SqliteDatabase> db) : db_(std::move(db)) {}

  OSStatus copyMatching(const KeychainQuery& query, std::vector<KeychainItem>& result) override;
  OSStatus add(const KeychainItem& item) override;
  OSStatus update(const KeychainQuery& query, const KeychainItem& changes) override;
  OSStatus remove(const KeychainQuery& query) override;

  OSStatus storeKey(const KeychainKey& key) override;
  OSStatus loadKey(std::string_view applicationTag, std::optional<KeychainKeyClass> keyClass,
                   KeychainKey& key) override;
  OSStatus deleteKey(std::string_view applicationTag) override;
  OSStatus exclusively(const std::function<void()>& body) override;

 private:
  struct Row {
    std::int64_t id = 0;
    KeychainItem item;  // every field filled
  };

  OSStatus selectMatching(const KeychainQuery& query, bool onlyFirst, std::vector<Row>& rows);
  OSStatus writeRow(const Row& row);
  OSStatus failure();
  OSStatus unreadableItem(sqlite3_stmt* statement);
  // A change of several rows: its own transaction, or a savepoint inside a section.
  bool beginChange();
  bool endChange(bool keep);

  std::recursive_mutex mutex_;
  std::unique_ptr<SqliteDatabase> db_;  // guarded by mutex_
  int sectionDepth_ = 0;                // guarded by mutex_
};

}  // namespace vorn::platform
