// KeychainStore: the host's secret store, with the semantics of the platform's generic
// password items plus asymmetric keys by application tag.
//
// Items: copyMatching / add / update / remove behave like SecItemCopyMatching / SecItemAdd
// / SecItemUpdate / SecItemDelete over generic-password items keyed by service and account.
// Keys: storeKey / loadKey / deleteKey keep key pairs' halves by tag for the crypto layer.
// Every call answers an OSStatus: errSecSuccess, errSecItemNotFound when nothing matches,
// errSecDuplicateItem when an add or update would create a second item (or key) with the
// same identity, errSecParam for an unusable request, and whatever a failing backend has to
// report (errSecNotAvailable when its file cannot be used, errSecInteractionNotAllowed when
// the device is locked, ...).
//
// Backends: keychain.db in the data directory (openFile), the same file for reading only
// (openFileReadOnly) and an ephemeral in-memory store (inMemory). Tests wrap either in
// vorn::testing::FaultyKeychainStore to answer any call with any status.
//
// Exclusive sections: exclusively() runs a function while no other section of the same store
// runs, in this process or in another process using the same file, so that code can read,
// decide and write shared items without losing another writer's change. Whoever calls the
// store while holding one of its own locks must make sure no section body waits for that
// lock: with the file backend, other threads' calls wait while a section runs.
//
// Thread safety: every member function of every backend may be called from any thread; each
// call is atomic. Nothing is thrown.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/platform/KeychainItem.hpp"
#include "vorn/platform/KeychainKey.hpp"
#include "vorn/platform/KeychainStatus.hpp"

namespace vorn {

class VORN_API KeychainStore {
 public:
  /// The file name of the default backend inside the data directory.
  static constexpr std::string_view kFileName = "keychain.db";

  /// Opens (creating when needed) `directory`/keychain.db, with the directory made 0700 and
  /// the database files 0600. Null only when the directory or the file cannot be created; the
  /// reason is logged. A file SQLite refuses (damaged, locked) is left untouched: the store
  /// logs it once, fails every call and tries to open it again on the next.
  static std::shared_ptr<KeychainStore> openFile(const std::filesystem::path& directory);
  /// Opens an existing `directory`/keychain.db for reading only, for tools that look at an
  /// app's store while the app may be running: nothing in the directory is created, changed
  /// or checkpointed. Reads answer as with openFile(); add, update, remove, storeKey,
  /// deleteKey and exclusively() fail with errSecNotAvailable and change nothing. Opened
  /// while no app has the file open, it reads the file as it was then, without the changes
  /// of an app that opens it later. Null (and nothing logged) when the file does not exist.
  static std::shared_ptr<KeychainStore> openFileReadOnly(const std::filesystem::path& directory);
  /// A store that lives as long as the returned object; nothing touches the disk.
  static std::shared_ptr<KeychainStore> inMemory();

  virtual ~KeychainStore();

  /// Finds the items matching `query` (in the order they were added) and fills `result`
  /// (cleared first) with one item for MatchLimit::one or all of them for MatchLimit::all.
  /// errSecItemNotFound when none matches.
  virtual OSStatus copyMatching(const KeychainQuery& query, std::vector<KeychainItem>& result) = 0;
  /// Adds a new item; errSecDuplicateItem when one with its service and account exists.
  virtual OSStatus add(const KeychainItem& item) = 0;
  /// Changes every item matching `query` to carry the fields present in `changes`.
  /// errSecItemNotFound when none matches; errSecDuplicateItem when a renamed item would
  /// collide with another (then nothing changes).
  virtual OSStatus update(const KeychainQuery& query, const KeychainItem& changes) = 0;
  /// Deletes every item matching `query`; errSecItemNotFound when none matches.
  virtual OSStatus remove(const KeychainQuery& query) = 0;

  /// Stores a key; errSecDuplicateItem when a key with its tag and class exists.
  virtual OSStatus storeKey(const KeychainKey& key) = 0;
  /// Loads the key with `applicationTag` (and `keyClass`, when given) into `key`.
  virtual OSStatus loadKey(std::string_view applicationTag,
                           std::optional<KeychainKeyClass> keyClass, KeychainKey& key) = 0;
  /// Deletes every key with `applicationTag`; errSecItemNotFound when there is none.
  virtual OSStatus deleteKey(std::string_view applicationTag) = 0;

  /// Runs `body` in an exclusive section (see above). Calls made inside `body` on this thread
  /// work as usual and see every change committed before the section began; sections nest.
  /// errSecSuccess once `body` ran and its changes are stored; an error status when the
  /// section could not be had in time (then `body` did not run) or not be committed. This
  /// default is a process-wide re-entrant mutex, enough for stores that live in one process.
  virtual OSStatus exclusively(const std::function<void()>& body);
};

}  // namespace vorn
