// Opening a store's database for reading only, beside an app that may have it open for
// writing, without creating or changing a single byte in its directory.
//
// A WAL database needs its -wal and -shm files to be read consistently with a writer. SQLite's
// plain read-only open creates them when they are missing, and writes read marks into the
// -shm; so the connection is chosen by what is on disk:
//   - -wal and -shm both present (an app has the file open, or one ended without cleaning
//     up): "mode=ro&readonly_shm=1", which takes the usual shared locks, reads the log and its
//     index and never writes the index (a stale index is rebuilt in private memory);
//   - no -wal: every committed change is in the database file itself, so it is opened
//     "mode=ro&immutable=1", without locks and without looking for a log. A writer that
//     starts after this connection is not seen by it; an inspection is a snapshot.
//   - a -wal without its -shm (an index deleted by hand): SQLite cannot read that log
//     without writing a new index, so the database file alone is read, as above.
// Every write on such a connection fails with SQLITE_READONLY.
//
// openReadOnlyConnection carries VORN_API only so that the store inspector (tools/inspect),
// which lists the tables the stores do not enumerate, connects by the same rule; it is not
// part of the public API. It may be called from any thread.
#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <string>

#include "vorn/base/Export.hpp"

namespace vorn::platform {

/// The URI opening `file` for reading only, by the rule above.
VORN_API std::string readOnlyUri(const std::filesystem::path& file);

/// Opens `file` for reading only (sqlite3_open_v2 with readOnlyUri(file)); SQLITE_OK or the
/// failure's code. Like sqlite3_open_v2, `*db` is set even on failure and must be closed.
/// Without the file, SQLITE_CANTOPEN (nothing is created).
VORN_API int openReadOnlyConnection(const std::filesystem::path& file, sqlite3** db);

}  // namespace vorn::platform
