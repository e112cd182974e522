// The rows of a data directory's two store files, read for listing only.
//
// The stores answer questions about one item, key or suite; an inspector has to enumerate
// them, so it reads their tables directly, on a connection opened by the same read-only rule
// as the stores' own (platform/sqlite/ReadOnlyOpen.hpp): nothing in the directory is created,
// changed or checkpointed, and an app may keep the files open meanwhile. The column layout is
// the one SqliteKeychainStore and SqliteDefaultsStore create.
//
// Each read gives the rows or an error text; nothing is thrown. Not thread-safe; the tool
// runs on one thread.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorn::inspect {

using Blob = std::vector<std::uint8_t>;

struct ItemRow {
  std::string service;
  std::string account;  // "" for an item stored without one
  std::string accessible;
  std::optional<Blob> data;
  std::size_t attributeBytes = 0;  // size of the further attributes' CBOR map, 0 for none
};

struct KeyRow {
  std::string tag;
  int keyClass = 0;  // KeychainKeyClass
  int keyType = 0;   // KeychainKeyType
  int sizeBits = 0;
  std::string accessible;
  Blob data;
};

// The stored type tags of defaults.db: the index of the DefaultsValue alternative.
enum class EntryType : int { boolean = 0, integer = 1, text = 2, data = 3 };

struct EntryRow {
  std::string suite;
  std::string key;
  int type = 0;  // EntryType, or an unknown tag from a damaged file
  std::int64_t integer = 0;
  Blob bytes;  // the text's or the data's bytes
};

template <class Row>
struct Rows {
  std::vector<Row> rows;
  std::string error;  // empty when the rows were read
};

/// One read-only connection to a store file.
class StoreFile {
 public:
  /// Opens `file` (which must exist) read-only; on failure `error` says why.
  static std::unique_ptr<StoreFile> open(const std::filesystem::path& file, std::string& error);
  ~StoreFile();
  StoreFile(const StoreFile&) = delete;
  StoreFile& operator=(const StoreFile&) = delete;

  /// keychain.db's items, in the order they were added, and its keys.
  Rows<ItemRow> items();
  Rows<KeyRow> keys();
  /// defaults.db's entries, by suite and key.
  Rows<EntryRow> entries();

 private:
  explicit StoreFile(sqlite3* db) : db_(db) {}
  template <class Row, class Read>
  Rows<Row> select(const char* sql, Read read);

  sqlite3* db_;
};

}  // namespace vorn::inspect
