#include "platform/curl/CurlHandlePool.hpp"

#include <mutex>

namespace vorn::platform {
namespace {

// curl_global_init is not safe to run twice at once, and cleaning up would pull libcurl out
// from under any other user in the process, so it runs once and is never undone.
void initialiseLibcurlOnce() {
  static std::once_flag once;
  std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

}  // namespace

CurlHandlePool::CurlHandlePool() {
  initialiseLibcurlOnce();
  share_ = curl_share_init();
  if (share_ == nullptr)
    return;
  curl_share_setopt(share_, CURLSHOPT_LOCKFUNC, &CurlHandlePool::lockShared);
  curl_share_setopt(share_, CURLSHOPT_UNLOCKFUNC, &CurlHandlePool::unlockShared);
  curl_share_setopt(share_, CURLSHOPT_USERDATA, this);
  curl_share_setopt(share_, CURLSHOPT_SHARE, CURL_LOCK_DATA_DNS);
  curl_share_setopt(share_, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
}

CurlHandlePool::~CurlHandlePool() {
  for (CURL* handle : idle_)
    curl_easy_cleanup(handle);
  if (share_ != nullptr)
    curl_share_cleanup(share_);
}

CURL* CurlHandlePool::acquire() {
  {
    std::lock_guard lock(mutex_);
    if (!idle_.empty()) {
      CURL* handle = idle_.back();
      idle_.pop_back();
      return handle;
    }
  }
  CURL* handle = curl_easy_init();
  if (handle != nullptr && share_ != nullptr)
    curl_easy_setopt(handle, CURLOPT_SHARE, share_);
  return handle;
}

void CurlHandlePool::release(CURL* handle) {
  curl_easy_reset(handle);
  {
    std::lock_guard lock(mutex_);
    if (idle_.size() < kMaxIdleHandles) {
      idle_.push_back(handle);
      return;
    }
  }
  curl_easy_cleanup(handle);
}

void CurlHandlePool::lockShared(CURL*, curl_lock_data data, curl_lock_access, void* pool) {
  static_cast<CurlHandlePool*>(pool)->shareLocks_[data].lock();
}

void CurlHandlePool::unlockShared(CURL*, curl_lock_data data, void* pool) {
  static_cast<CurlHandlePool*>(pool)->shareLocks_[data].unlock();
}

}  // namespace vorn::platform
