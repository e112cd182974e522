// Config: which feature modules to start, with their configurations and the callbacks that
// hear each module's outcome. Built by ConfigBuilder and consumed by the SDK's start-up,
// which compares it with the configuration of the previous start-up.
//
// Equality (operator==): the module-configuration lists have the same length and the
// callback maps the same number of entries; then every configuration of the left side, in
// order, finds the first configuration of the right side with the same module name and is
// equal to it (moduleConfigsEqual). Callbacks are never compared. Two empty configurations
// are equal.
//
// Ownership: a value type; copies share the (immutable) module configurations and copy the
// callbacks. Thread safety: immutable once built; read it from any thread.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/base/ModuleName.hpp"
#include "vorn/base/OperationResult.hpp"
#include "vorn/core/ModuleConfig.hpp"

namespace vorn {

/// Hears one module start-up's outcome.
using CompletionCallback = std::function<void(OperationResult)>;
/// The callbacks of each module, in the order they are called.
using CompletionCallbacks = std::map<ModuleName, std::vector<CompletionCallback>>;

class VORN_API Config {
 public:
  /// No modules, no callbacks.
  Config() = default;
  /// Null configurations are left out.
  Config(std::vector<std::shared_ptr<const ModuleConfig>> moduleConfigs,
         CompletionCallbacks onCompletion);

  const std::vector<std::shared_ptr<const ModuleConfig>>& moduleConfigs() const noexcept {
    return moduleConfigs_;
  }
  const CompletionCallbacks& onCompletion() const noexcept { return onCompletion_; }
  /// The callbacks registered for `name`; empty when there are none.
  std::vector<CompletionCallback> completions(ModuleName name) const;

  bool operator==(const Config& other) const;

 private:
  std::vector<std::shared_ptr<const ModuleConfig>> moduleConfigs_;
  CompletionCallbacks onCompletion_;
};

}  // namespace vorn
