// EventQueueFile: the module's queue of events on disk, one encrypted record per event.
//
// A record is a 4-byte big-endian length followed by that many bytes: the event's JSON text
// encrypted by the module's EncryptionManager. append() writes one record with a single
// write(2) on a descriptor opened with O_APPEND, so a record is either in the file or (after
// a crash inside the call) a torn tail that load() recognises. rewrite() replaces the whole
// file by writing a temporary file and renaming it over the old one, so a crash leaves either
// the old file or the new one. With syncWrites every write is followed by fsync(2).
//
// load() keeps every readable record: one that does not decrypt or parse is skipped, and a
// length running past the end of the file (a torn write) ends the read; each is logged. When
// anything was skipped the file is rewritten at once, so that later appends never follow a
// damaged tail.
//
// Not thread-safe: the module calls it under its own lock.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "vorn/base/Bytes.hpp"
#include "vorn/logging/ModuleLogger.hpp"
#include "vorn/storage/prefs/EncryptionManager.hpp"

namespace cdp {

/// One queued event: its id, its JSON text and the record's encrypted bytes.
struct QueuedEvent {
  std::string id;
  std::string json;
  vorn::Bytes sealed;
};

class EventQueueFile {
 public:
  struct Loaded {
    std::vector<QueuedEvent> events;
    std::size_t skipped = 0;
  };

  EventQueueFile(std::filesystem::path path,
                 std::shared_ptr<vorn::EncryptionManager> encryptionManager,
                 std::shared_ptr<vorn::ModuleLogger> logger, bool syncWrites);
  ~EventQueueFile();

  EventQueueFile(const EventQueueFile&) = delete;
  EventQueueFile& operator=(const EventQueueFile&) = delete;

  const std::filesystem::path& path() const noexcept { return path_; }

  /// Creates the directory (0700) when needed, reads the records and opens the file for
  /// appending; false when the directory or the file cannot be used.
  bool open(Loaded& loaded);
  /// The event of `json` (whose "id" is `id`) with its record bytes; none when the text
  /// cannot be encrypted.
  std::optional<QueuedEvent> seal(std::string id, std::string json) const;
  /// Appends one record; false when it was not written completely.
  bool append(const QueuedEvent& event);
  /// Replaces the file by exactly these records.
  bool rewrite(const std::vector<const QueuedEvent*>& events);
  /// Closes the descriptor; later calls write nothing.
  void close();

 private:
  std::vector<QueuedEvent> read(std::size_t& skipped) const;
  std::optional<QueuedEvent> unseal(vorn::ByteView record) const;
  bool openForAppend();
  bool writeAll(int fd, const vorn::Bytes& bytes) const;
  // Makes a rename durable (syncWrites only).
  void syncDirectory() const;

  const std::filesystem::path path_;
  const std::shared_ptr<vorn::EncryptionManager> encryptionManager_;
  const std::shared_ptr<vorn::ModuleLogger> logger_;
  const bool syncWrites_;
  int fd_ = -1;
};

}  // namespace cdp
