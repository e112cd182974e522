// Atomic<T>: a value cell whose every access is serialised by its own private serial queue.
//
// read() returns a copy; mutate(f) calls f(T&) with the cell held exclusively. There is no
// other way in, so no reference to the stored value ever escapes a mutation.
//
// A mutation (or a copy made by read()) must not touch the same Atomic: the inner call would
// run inline inside the outer one and see the value half-changed.
//
// Ownership: plain object, neither copyable nor movable. Thread safety: read() and mutate()
// may be called from any thread.
#pragma once

#include <utility>

#include "vorn/runtime/DispatchQueue.hpp"

namespace vorn {

template <class T>
class Atomic {
 public:
  explicit Atomic(T initial = T{}) : value_(std::move(initial)) {}

  Atomic(const Atomic&) = delete;
  Atomic& operator=(const Atomic&) = delete;

  T read() const {
    return queue_.sync([this]() -> T { return value_; });
  }

  template <class F>
  void mutate(F&& f) {
    queue_.sync([&] { f(value_); });
  }

 private:
  mutable DispatchQueue queue_{"com.quorvantis.tessarine_AtomicValue"};
  T value_;  // touched only on queue_
};

}  // namespace vorn
