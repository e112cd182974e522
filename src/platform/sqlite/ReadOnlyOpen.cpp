#include "platform/sqlite/ReadOnlyOpen.hpp"

#include <cstdio>

namespace vorn::platform {
namespace {

bool present(const std::filesystem::path& file) {
  std::error_code error;
  return std::filesystem::exists(file, error);
}

// RFC 3986 path characters stay, everything else ('?', '#', '%', spaces, bytes above ASCII)
// is percent-encoded, as SQLite's URI parser expects.
std::string uriPath(const std::string& path) {
  std::string out;
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
        (byte >= '0' && byte <= '9') || c == '/' || c == '-' || c == '.' || c == '_' || c == '~') {
      out += c;
    } else {
      char escaped[4];
      std::snprintf(escaped, sizeof escaped, "%%%02X", byte);
      out += escaped;
    }
  }
  return out;
}

}  // namespace

std::string readOnlyUri(const std::filesystem::path& file) {
  std::error_code error;
  std::filesystem::path absolute = std::filesystem::absolute(file, error);
  const std::string path = (error ? file : absolute).lexically_normal().string();
  const bool withLog = present(path + "-wal") && present(path + "-shm");
  return "file:" + uriPath(path) + (withLog ? "?mode=ro&readonly_shm=1" : "?mode=ro&immutable=1");
}

int openReadOnlyConnection(const std::filesystem::path& file, sqlite3** db) {
  *db = nullptr;
  if (!present(file))
    return SQLITE_CANTOPEN;
  const int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX;
  return sqlite3_open_v2(readOnlyUri(file).c_str(), db, flags, nullptr);
}

}  // namespace vorn::platform
