#include "base/SystemHooks.hpp"

#include <array>
#include <atomic>
#include <cstddef>

namespace vorn::detail {
namespace {

constexpr std::size_t kMaxForkChildHandlers = 16;

// Slots are claimed with one atomic increment and then filled, so adding never blocks and a
// child (which may have been forked halfway through an add) reads only filled slots.
std::array<std::atomic<ForkChildHandler>, kMaxForkChildHandlers> forkChildHandlers{};
std::atomic<std::size_t> forkChildHandlerCount{0};

std::atomic<StandardErrorWriter> standardErrorWriter{nullptr};

}  // namespace

void addForkChildHandler(ForkChildHandler handler) noexcept {
  const std::size_t slot = forkChildHandlerCount.fetch_add(1, std::memory_order_relaxed);
  if (slot < kMaxForkChildHandlers)
    forkChildHandlers[slot].store(handler, std::memory_order_release);
}

void runForkChildHandlers() noexcept {
  for (auto& slot : forkChildHandlers) {
    if (const ForkChildHandler handler = slot.load(std::memory_order_acquire))
      handler();
  }
}

void installStandardErrorWriter(StandardErrorWriter writer) noexcept {
  standardErrorWriter.store(writer, std::memory_order_release);
}

void writeStandardError(std::string_view line) noexcept {
  if (const StandardErrorWriter writer = standardErrorWriter.load(std::memory_order_acquire))
    writer(line);
}

}  // namespace vorn::detail
