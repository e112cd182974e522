// ModuleInitializer: the operation that starts one feature module.
//
// When it runs it makes the module's components (VORNSdkComponents::create) and calls the
// module class's factory with the configuration and those components, on the operation's own
// thread. A module it gets is handed to the caller's store function, unless the operation was
// cancelled or timed out meanwhile: then the module is dropped and nothing is stored. The
// time-out is 15 seconds (durations::kModuleInitializerTimeout); when it passes first the
// operation is cancelled and finishes while the factory may still be running.
//
// The store function is how the core reaches the facade that asked for the module without
// knowing it. It is called with the operation's state lock held, so that a time-out cannot
// slip in between "not cancelled" and "stored"; it must not call back into the operation.
//
// addToFreshQueue() is how start-up schedules it: the module's existing queue is removed
// (cancelling what it held) and the initializer is the first operation of a new one.
//
// Ownership: held by std::shared_ptr, like every Operation. Thread safety: every member
// function may be called from any thread.
#pragma once

#include <functional>
#include <memory>

#include "vorn/base/Export.hpp"
#include "vorn/core/ModuleClass.hpp"
#include "vorn/core/ModuleConfig.hpp"
#include "vorn/core/VORNModule.hpp"
#include "vorn/messaging/BaseOperation.hpp"

namespace vorn {

class VORN_API ModuleInitializer : public BaseOperation {
 public:
  /// Receives the started module; see the contract above for when it is called.
  using StoreModule = std::function<void(std::shared_ptr<VORNModule> module)>;

  ModuleInitializer(std::shared_ptr<const ModuleConfig> config, ModuleClass moduleClass,
                    StoreModule storeModule);

  bool isAsynchronous() const override;
  bool isConcurrent() const override;
  void main() override;

  const std::shared_ptr<const ModuleConfig>& config() const noexcept { return config_; }
  /// The module this operation produced and stored; null until then, or for good.
  std::shared_ptr<VORNModule> module() const;

  /// Replaces the queue of the configuration's module with a new one holding `initializer`.
  static void addToFreshQueue(std::shared_ptr<ModuleInitializer> initializer);

 private:
  std::shared_ptr<VORNModule> makeModule() const;
  void keep(std::shared_ptr<VORNModule> module);

  const std::shared_ptr<const ModuleConfig> config_;
  const ModuleClass moduleClass_;
  const StoreModule storeModule_;
  std::shared_ptr<VORNModule> module_;  // guarded by lock()
};

}  // namespace vorn
