// The two operating-system services the layers below the platform need: running handlers in
// a forked child, and writing a line to standard error. Those layers must not reach the
// operating system themselves, so they go through these hooks, and the platform layer makes
// the system calls behind them when the library is loaded (src/platform/SystemHooks.cpp).
// Before then, handlers are kept and standard-error lines are dropped.
#pragma once

#include <string_view>

namespace vorn::detail {

using ForkChildHandler = void (*)();

/// Adds `handler` to those run in a child process right after fork(), in the order added.
/// Meant for a handful of process-wide resets; a seventeenth handler is ignored.
/// Thread-safe.
void addForkChildHandler(ForkChildHandler handler) noexcept;

/// Runs every handler added so far. Called by the platform layer in the forked child.
void runForkChildHandlers() noexcept;

using StandardErrorWriter = void (*)(std::string_view line) noexcept;

/// Sets the function that writeStandardError() forwards to. Thread-safe.
void installStandardErrorWriter(StandardErrorWriter writer) noexcept;

/// Writes `line` as it is, through the installed writer; nothing happens without one.
void writeStandardError(std::string_view line) noexcept;

}  // namespace vorn::detail
