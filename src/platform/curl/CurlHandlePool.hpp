// CurlHandlePool: idle libcurl easy handles kept warm between exchanges.
//
// An easy handle owns its connection cache, so handing the same handle back to the next
// exchange is what keeps a connection alive. The pool is a stack (last in, first out): a
// caller making requests one after another gets back the handle it just used, with its live
// connection, and a handle is not tied to a thread, so a connection opened on one thread is
// reused on another. Several threads at once simply take several handles.
//
// The handles also share one CURLSH for the DNS cache and TLS sessions, so a handle new to a
// host skips the lookup and resumes the session. The connection cache itself is NOT put in
// the share: libcurl documents sharing connections between concurrently running threads as
// unsafe, and the stack gives the reuse without it.
//
// The pool's mutex is held only to push or pop a pointer, never during a transfer. A handle
// is reset (curl_easy_reset keeps its connections, caches and share) before it goes back, so
// no option of one exchange, nor a pointer into its memory, leaks into the next.
#pragma once

#include <curl/curl.h>

#include <array>
#include <cstddef>
#include <mutex>
#include <vector>

namespace vorn::platform {

class CurlHandlePool {
 public:
  /// Idle handles kept beyond this are closed: more threads than this rarely run exchanges
  /// at once, and each idle handle holds sockets open.
  static constexpr std::size_t kMaxIdleHandles = 8;

  CurlHandlePool();
  ~CurlHandlePool();
  CurlHandlePool(const CurlHandlePool&) = delete;
  CurlHandlePool& operator=(const CurlHandlePool&) = delete;

  /// The most recently returned idle handle, or a new one; nullptr when libcurl cannot make
  /// one.
  CURL* acquire();
  /// Resets `handle` and keeps it for the next acquire().
  void release(CURL* handle);

 private:
  static void lockShared(CURL*, curl_lock_data data, curl_lock_access, void* pool);
  static void unlockShared(CURL*, curl_lock_data data, void* pool);

  CURLSH* share_ = nullptr;
  std::array<std::mutex, CURL_LOCK_DATA_LAST> shareLocks_;
  std::mutex mutex_;
  std::vector<CURL*> idle_;  // guarded by mutex_; the top is the warmest handle
};

/// Holds one pooled handle for the length of an exchange and gives it back at the end.
class CurlLease {
 public:
  explicit CurlLease(CurlHandlePool& pool) : pool_(pool), handle_(pool.acquire()) {}
  ~CurlLease() {
    if (handle_ != nullptr)
      pool_.release(handle_);
  }
  CurlLease(const CurlLease&) = delete;
  CurlLease& operator=(const CurlLease&) = delete;

  CURL* get() const { return handle_; }

 private:
  CurlHandlePool& pool_;
  CURL* handle_;
};

}  // namespace vorn::platform
