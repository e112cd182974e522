// A bare SQLite connection for tests that play another program working on the stores' files:
// one that holds a lock, or one that writes bytes the library never would.
//
// The test executables do not link SQLite themselves. The library's copy is loaded with it,
// so its functions are looked up in the process at run time; a missing one ends the test.
#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

namespace vorn::testing {

class RawSqlite {
 public:
  explicit RawSqlite(const std::filesystem::path& file) {
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    if (api<decltype(&sqlite3_open_v2)>("sqlite3_open_v2")(file.c_str(), &db_, flags, nullptr) !=
        SQLITE_OK)
      ADD_FAILURE() << "cannot open " << file;
  }
  ~RawSqlite() { api<decltype(&sqlite3_close)>("sqlite3_close")(db_); }
  RawSqlite(const RawSqlite&) = delete;
  RawSqlite& operator=(const RawSqlite&) = delete;

  /// Runs SQL without results; false (with the reason in the test's output) on failure.
  bool execute(const std::string& sql) {
    const int rc =
        api<decltype(&sqlite3_exec)>("sqlite3_exec")(db_, sql.c_str(), nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK)
      ADD_FAILURE() << "SQLite " << rc << " running " << sql.substr(0, 80);
    return rc == SQLITE_OK;
  }

  /// The first column of the first row as text; nothing when there is no row or it fails.
  std::optional<std::string> text(const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    if (api<decltype(&sqlite3_prepare_v2)>("sqlite3_prepare_v2")(db_, sql.c_str(), -1, &statement,
                                                                 nullptr) != SQLITE_OK)
      return std::nullopt;
    std::optional<std::string> result;
    if (api<decltype(&sqlite3_step)>("sqlite3_step")(statement) == SQLITE_ROW) {
      const auto* value = api<decltype(&sqlite3_column_text)>("sqlite3_column_text")(statement, 0);
      result = value != nullptr ? reinterpret_cast<const char*>(value) : "";
    }
    api<decltype(&sqlite3_finalize)>("sqlite3_finalize")(statement);
    return result;
  }

 private:
  template <class Function>
  static Function api(const char* name) {
    auto* function = reinterpret_cast<Function>(::dlsym(RTLD_DEFAULT, name));
    if (function == nullptr) {
      ADD_FAILURE() << name << " is not loaded in this process";
      std::abort();
    }
    return function;
  }

  sqlite3* db_ = nullptr;
};

}  // namespace vorn::testing
