// Shared by the network tests: secure preferences over an in-memory defaults store, a
// scripted authenticator, and a manager wired to a scripted transport and a manual clock.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <deque>
#include <memory>
#include <mutex>
#include <numeric>
#include <optional>
#include <string>

#include "vorn/network/NetworkManager.hpp"
#include "vorn/platform/DefaultsStore.hpp"
#include "vorn/storage/prefs/SecurePrefs.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/ManualClock.hpp"
#include "vorn/testing/ScriptedHttpTransport.hpp"

namespace vorn::test {

inline constexpr std::string_view kNetworkSuite = "com.quorvantis.tessarine_APP1_R_network";

/// Secure preferences on `store` under a fixed key, so a second instance reads the first's.
inline std::shared_ptr<SecurePrefs> networkPrefs(const std::shared_ptr<DefaultsStore>& store) {
  Bytes key(32);
  Bytes iv(16);
  std::iota(key.begin(), key.end(), std::uint8_t{7});
  std::iota(iv.begin(), iv.end(), std::uint8_t{7});
  auto manager = std::make_shared<EncryptionManager>(std::make_shared<VORNEncryptionKey>(key, iv));
  return std::make_shared<SecurePrefs>(store->suite(std::string(kNetworkSuite)), manager);
}

/// A GET of "https://api.example.com/v1/<name>" named `name`.
inline WrappedRequest namedRequest(const std::string& name, double rateLimit = 0,
                                   const std::string& base = "https://api.example.com/v1") {
  auto built = WrappedRequest::Builder()
                   .method("GET")
                   .urlWithBase(base, name)
                   .name(name)
                   .rateLimit(rateLimit)
                   .build();
  EXPECT_TRUE(built.has_value());
  return std::move(*built);
}

/// Hands out a cached header and scripted refresh results, counting every call.
class ScriptedAuthenticator final : public Authenticator {
 public:
  explicit ScriptedAuthenticator(std::optional<AuthHeader> cached) : cached_(std::move(cached)) {}

  /// The result of the next refresh; without one a refresh fails.
  void queueRefresh(std::optional<AuthHeader> header) {
    std::lock_guard lock(mutex_);
    refreshes_.push_back(std::move(header));
  }

  std::optional<AuthHeader> getCachedTokenHeader() override {
    std::lock_guard lock(mutex_);
    return cached_;
  }
  std::optional<AuthHeader> refreshAuthTokenHeader() override {
    ++refreshCount;
    std::lock_guard lock(mutex_);
    if (refreshes_.empty())
      return std::nullopt;
    cached_ = refreshes_.front();
    refreshes_.pop_front();
    return cached_;
  }
  void deleteCachedToken() override {
    ++deleteCount;
    std::lock_guard lock(mutex_);
    cached_.reset();
  }

  std::atomic<int> refreshCount{0};
  std::atomic<int> deleteCount{0};

 private:
  std::mutex mutex_;
  std::optional<AuthHeader> cached_;                 // guarded by mutex_
  std::deque<std::optional<AuthHeader>> refreshes_;  // guarded by mutex_
};

class NetworkManagerTest : public ::testing::Test {
 protected:
  std::shared_ptr<NetworkManager> makeManager(std::shared_ptr<Authenticator> authenticator = {}) {
    return NetworkManager::create(prefs, std::move(authenticator), transport, clock);
  }

  std::shared_ptr<testing::CaptureLogSink> sink = testing::CaptureLogSink::install();
  std::shared_ptr<DefaultsStore> store = DefaultsStore::inMemory();
  std::shared_ptr<SecurePrefs> prefs = networkPrefs(store);
  std::shared_ptr<testing::ScriptedHttpTransport> transport =
      std::make_shared<testing::ScriptedHttpTransport>();
  std::shared_ptr<testing::ManualClock> clock = std::make_shared<testing::ManualClock>();
};

}  // namespace vorn::test
