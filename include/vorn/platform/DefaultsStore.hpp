// DefaultsStore: the host's user-defaults system, a persistent key-value store split into
// domains: the standard one and any number of named suites.
//
// Values are bool, integer, text or bytes (DefaultsValue). The typed readers convert the way
// the host platform does: boolFor and integerFor read numbers and numeric text, stringFor
// reads text and numbers, dataFor reads bytes only; an absent key reads false, 0 or
// nothing. object() tells an absent key from a stored default-looking value; read() also tells
// both from a read the backend could not answer.
//
// Durability: once a setter returns true, the value survives a crash of the app process.
// Setters answer false (and log) only when the backend cannot write.
//
// Backends: defaults.db in the data directory (openFile), the same file for reading only
// (openFileReadOnly), and an ephemeral in-memory store (inMemory). suite() and standard() give a
// DefaultsSuite, a small handle bound to one domain, for code that works on a single domain.
//
// Thread safety: every member function may be called from any thread; each call is atomic.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/platform/ReadResult.hpp"

namespace vorn {

class DefaultsSuite;

using DefaultsData = std::vector<std::uint8_t>;
using DefaultsValue = std::variant<bool, std::int64_t, std::string, DefaultsData>;

class VORN_API DefaultsStore : public std::enable_shared_from_this<DefaultsStore> {
 public:
  /// The domain name of the standard store. Named suites must not be empty.
  static constexpr std::string_view kStandardSuite = "";
  /// The file name of the default backend inside the data directory.
  static constexpr std::string_view kFileName = "defaults.db";

  /// Opens (creating when needed) `directory`/defaults.db in WAL mode, with the directory
  /// made 0700 and the database files 0600. Null only when the directory or the file cannot
  /// be created; the reason is logged. A file SQLite refuses (damaged, locked) is left
  /// untouched: the store logs it once, fails every call and tries to open it again on the
  /// next, so it recovers when the file becomes readable.
  static std::shared_ptr<DefaultsStore> openFile(const std::filesystem::path& directory);
  /// Opens an existing `directory`/defaults.db for reading only, for tools that look at an
  /// app's store while the app may be running: nothing in the directory is created, changed
  /// or checkpointed. Reads answer as with openFile(); every setter and remover answers false
  /// (with an error line) and changes nothing. Opened while no app has the file open, it
  /// reads the file as it was then, without the changes of an app that opens it later. Null
  /// (and nothing logged) when the file does not exist.
  static std::shared_ptr<DefaultsStore> openFileReadOnly(const std::filesystem::path& directory);
  /// A store that lives as long as the returned object; nothing touches the disk.
  static std::shared_ptr<DefaultsStore> inMemory();

  virtual ~DefaultsStore();

  /// The stored value, or nothing when the key is absent from the suite.
  virtual std::optional<DefaultsValue> object(std::string_view suite, std::string_view key) = 0;
  /// The stored value, absent, or an error when the backend could not answer (object() reads
  /// such a failure as an absent key). Backends that cannot fail keep this default.
  virtual ReadResult<DefaultsValue> read(std::string_view suite, std::string_view key);
  /// read() of each key, in the order given, as one snapshot: no write lands between two of
  /// the reads. The file backend reads them in one transaction, which costs little more than
  /// a single read; this default reads each key on its own, for backends whose reads cannot
  /// interleave with a write anyway.
  virtual std::vector<ReadResult<DefaultsValue>> readSnapshot(std::string_view suite,
                                                              std::span<const std::string> keys);
  /// Stores `value` under `key`, replacing what was there.
  virtual bool set(std::string_view suite, std::string_view key, const DefaultsValue& value) = 0;
  /// Removes the key; removing an absent key succeeds.
  virtual bool remove(std::string_view suite, std::string_view key) = 0;
  /// Removes every key of the suite.
  virtual bool removePersistentDomain(std::string_view suite) = 0;

  bool boolFor(std::string_view suite, std::string_view key);
  std::int64_t integerFor(std::string_view suite, std::string_view key);
  std::optional<std::string> stringFor(std::string_view suite, std::string_view key);
  std::optional<DefaultsData> dataFor(std::string_view suite, std::string_view key);

  bool setBool(std::string_view suite, bool value, std::string_view key);
  bool setInteger(std::string_view suite, std::int64_t value, std::string_view key);
  bool setString(std::string_view suite, std::string_view value, std::string_view key);
  bool setData(std::string_view suite, const DefaultsData& value, std::string_view key);

  /// A handle on the standard domain / on a named suite of this store.
  DefaultsSuite standard();
  DefaultsSuite suite(std::string name);
};

/// One domain of a DefaultsStore; holds the store alive. Cheap to copy. Thread-safe as the
/// store is.
class VORN_API DefaultsSuite {
 public:
  DefaultsSuite(std::shared_ptr<DefaultsStore> store, std::string name);

  const std::string& name() const noexcept { return name_; }
  const std::shared_ptr<DefaultsStore>& store() const noexcept { return store_; }

  std::optional<DefaultsValue> object(std::string_view key) const;
  ReadResult<DefaultsValue> read(std::string_view key) const;
  std::vector<ReadResult<DefaultsValue>> readSnapshot(std::span<const std::string> keys) const;
  bool boolFor(std::string_view key) const;
  std::int64_t integerFor(std::string_view key) const;
  std::optional<std::string> stringFor(std::string_view key) const;
  std::optional<DefaultsData> dataFor(std::string_view key) const;

  bool set(const DefaultsValue& value, std::string_view key) const;
  bool setBool(bool value, std::string_view key) const;
  bool setInteger(std::int64_t value, std::string_view key) const;
  bool setString(std::string_view value, std::string_view key) const;
  bool setData(const DefaultsData& value, std::string_view key) const;
  bool removeObject(std::string_view key) const;
  /// Removes every key of this domain.
  bool removePersistentDomain() const;

 private:
  std::shared_ptr<DefaultsStore> store_;
  std::string name_;
};

}  // namespace vorn
