// ConfigBuilder: collects the module configurations and outcome callbacks of a Config.
//
// setCdp() and setPush() replace whatever was set before for their module, configuration and
// callbacks alike, and register the core's own outcome callback first, so that the event bus
// learns a module's outcome (and delivers or drops the messages it buffered for it) before
// the app does. The app's callback, when given, comes second. A null configuration is
// ignored with a warning line, leaving the builder as it was.
//
// Ownership: a plain mutable value. Thread safety: none; use one builder from one thread.
#pragma once

#include <map>
#include <memory>

#include "vorn/base/Export.hpp"
#include "vorn/base/ModuleName.hpp"
#include "vorn/core/Config.hpp"
#include "vorn/core/ModuleConfig.hpp"

namespace vorn {

class VORN_API ConfigBuilder {
 public:
  ConfigBuilder() = default;

  /// Sets the `cdp` module's configuration and, optionally, the app's outcome callback.
  ConfigBuilder& setCdp(std::shared_ptr<const ModuleConfig> config,
                        CompletionCallback onCompletion = nullptr);
  /// Sets the `push` module's configuration and, optionally, the app's outcome callback.
  ConfigBuilder& setPush(std::shared_ptr<const ModuleConfig> config,
                         CompletionCallback onCompletion = nullptr);

  /// A new Config of what is set so far; the builder stays usable.
  Config build() const;

 private:
  ConfigBuilder& set(ModuleName name, std::shared_ptr<const ModuleConfig> config,
                     CompletionCallback onCompletion);

  std::map<ModuleName, std::shared_ptr<const ModuleConfig>> moduleConfigs_;
  CompletionCallbacks onCompletion_;
};

}  // namespace vorn
