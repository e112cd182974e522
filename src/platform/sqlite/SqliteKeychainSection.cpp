// The exclusive sections of the file-backed key store, and the transactions of multi-row
// changes that must nest inside them.
#include "platform/sqlite/SqliteKeychainStore.hpp"

namespace vorn::platform {
namespace {

// Keeps the depth right however the body ends.
class SectionDepth {
 public:
  explicit SectionDepth(int& depth) : depth_(depth) { ++depth_; }
  ~SectionDepth() { --depth_; }
  SectionDepth(const SectionDepth&) = delete;
  SectionDepth& operator=(const SectionDepth&) = delete;

 private:
  int& depth_;
};

}  // namespace

OSStatus SqliteKeychainStore::exclusively(const std::function<void()>& body) {
  const LogWhenUnlocked logs(mutex_, db_->log());
  std::lock_guard lock(mutex_);
  if (sectionDepth_ > 0) {
    SectionDepth nested(sectionDepth_);
    body();
    return errSecSuccess;
  }
  // A read-only connection may begin a transaction but excludes no writer, so a section there
  // would promise what it cannot keep; and its body could not store a decision anyway.
  if (db_->readOnly()) {
    db_->log().add(LogLevel::error, [] {
      return std::string("Keychain store failure: no exclusive section on a read-only store");
    });
    return errSecNotAvailable;
  }
  // BEGIN IMMEDIATE takes the file's write lock now, waiting out another process's section
  // for up to the connection's busy time-out, so the body reads what that section wrote.
  if (!db_->execute("BEGIN IMMEDIATE"))
    return failure();
  {
    SectionDepth outermost(sectionDepth_);
    body();
  }
  if (db_->execute("COMMIT"))
    return errSecSuccess;
  const OSStatus status = failure();
  db_->execute("ROLLBACK");
  return status;
}

bool SqliteKeychainStore::beginChange() {
  return db_->execute(sectionDepth_ > 0 ? "SAVEPOINT item_change" : "BEGIN IMMEDIATE");
}

bool SqliteKeychainStore::endChange(bool keep) {
  if (sectionDepth_ == 0)
    return db_->execute(keep ? "COMMIT" : "ROLLBACK");
  if (!keep)
    db_->execute("ROLLBACK TO item_change");
  return db_->execute("RELEASE item_change");
}

}  // namespace vorn::platform
