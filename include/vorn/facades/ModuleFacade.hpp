// ModuleFacade: what the two module facades (PUSH and CDP) share, and what start-up drives
// on either of them: the module name, the range of module versions accepted, the module
// status, the attached module and the lock start-up holds while it starts the module.
//
// A facade forwards an app call to its module only when a module is attached, implements
// the facade's interface (found by std::dynamic_pointer_cast) and the status is
// `operational`; otherwise it logs and answers a default. Start-up moves the status along
// (setStatus) and attaches or clears the module; the facade never changes either itself.
//
// Ownership: facades are process-wide shared() instances, never destroyed. The attached
// module is shared with whoever started it. Thread safety: every member may be called from
// any thread. The module sits in an Atomic cell, so attaching or clearing it while calls
// are forwarded is safe; initializationLock() is not taken by the facade itself.
#pragma once

#include <memory>
#include <mutex>

#include "vorn/base/Export.hpp"
#include "vorn/base/ModuleName.hpp"
#include "vorn/base/ModuleStatus.hpp"
#include "vorn/core/Compatibility.hpp"
#include "vorn/core/VORNModule.hpp"
#include "vorn/runtime/Atomic.hpp"

namespace vorn {

class VORN_API ModuleFacade {
 public:
  virtual ~ModuleFacade();

  ModuleFacade(const ModuleFacade&) = delete;
  ModuleFacade& operator=(const ModuleFacade&) = delete;

  ModuleName name() const noexcept { return name_; }
  /// The module versions this core accepts; never null.
  const std::shared_ptr<const Compatibility>& compatibility() const noexcept {
    return compatibility_;
  }
  /// Held by start-up for the whole start of this facade's module.
  std::mutex& initializationLock() const noexcept { return initializationLock_; }

  /// Always answers, whatever is attached.
  virtual ModuleStatus getStatus() const = 0;
  /// For start-up and the module-ready handling only.
  virtual void setStatus(ModuleStatus status) = 0;

  /// The attached module; null when none is.
  std::shared_ptr<VORNModule> module() const;
  /// Attaches `module`, replacing any earlier one (which is not torn down here).
  void attachModule(std::shared_ptr<VORNModule> module);
  /// Detaches the module without tearing it down.
  void clearModule();

 protected:
  /// `compatibility` must not be null.
  ModuleFacade(ModuleName name, std::shared_ptr<const Compatibility> compatibility);

 private:
  const ModuleName name_;
  const std::shared_ptr<const Compatibility> compatibility_;
  Atomic<std::shared_ptr<VORNModule>> module_;
  mutable std::mutex initializationLock_;
};

}  // namespace vorn
