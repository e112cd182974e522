// ModuleConfig: what the core knows of one feature module's configuration (the app-facing
// VORNSdkModuleConfig contract).
//
// A configuration reports which module it configures, the application identifier its storage
// is named after, and its stored properties as (label, value) pairs in declaration order.
// Everything else belongs to the module. The property list stands in for run-time
// reflection: it is all the core compares when it decides whether a start-up repeats the
// previous one, so a module must list every stored property that should make two of its
// configurations differ.
//
// Ownership: held by std::shared_ptr<const ModuleConfig>; the core never changes one.
// Thread safety: implementations must be safe to read from any thread (the core reads them
// on its start-up queue and on module queues).
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/base/ModuleName.hpp"
#include "vorn/base/Value.hpp"

namespace vorn {

class VORN_API ModuleConfig {
 public:
  /// One stored property: its label and its value.
  using Property = std::pair<std::string, Value>;

  virtual ~ModuleConfig();

  virtual ModuleName name() const = 0;
  /// The application identifier of the module's storage.
  virtual std::string appId() const = 0;
  /// Every stored property, in declaration order.
  virtual std::vector<Property> storedProperties() const = 0;
};

/// Equal names, then the same labels in the same order with equal values. Values compare as
/// the platform's objects would: numbers (booleans, integers, doubles) by numeric value, so 1,
/// 1.0 and true are equal; arrays and dictionaries element by element under the same rule.
VORN_API bool moduleConfigsEqual(const ModuleConfig& a, const ModuleConfig& b);

}  // namespace vorn
