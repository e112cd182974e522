#include <condition_variable>
#include <mutex>

#include "vorn/platform/Platform.hpp"
#include "vorn/runtime/DispatchQueue.hpp"
#include "vorn/storage/keychain/VORNKeychainItemWrapper.hpp"

namespace vorn {
namespace {

struct Answer {
  std::mutex mutex;
  std::condition_variable ready;
  std::optional<bool> available;  // guarded by mutex
};

}  // namespace

bool VORNKeychainItemWrapper::checkForProtectedData() {
  const auto platform = Platform::current();
  auto* mainQueue = dynamic_cast<DispatchQueue*>(platform->mainQueue.get());
  if (mainQueue != nullptr && DispatchQueue::current() == mainQueue)
    return platform->protectedDataAvailable();
  // Asked behind everything already queued on the main queue, as the host's own question
  // would be; the caller waits for the answer.
  auto answer = std::make_shared<Answer>();
  platform->mainQueue->async([answer, ask = platform->protectedDataAvailable] {
    const bool available = ask();
    std::lock_guard lock(answer->mutex);
    answer->available = available;
    answer->ready.notify_all();
  });
  std::unique_lock lock(answer->mutex);
  answer->ready.wait(lock, [&] { return answer->available.has_value(); });
  return *answer->available;
}

}  // namespace vorn
