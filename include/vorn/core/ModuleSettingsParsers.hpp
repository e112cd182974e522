// ModuleSettingsParsers: turns a module's settings, written as JSON, into its configuration.
//
// Hosts that cannot build a module's C++ configuration type (the C bridge, and through it
// Swift, Kotlin, Dart or Python) name the module and hand over its settings as JSON. Each
// module library registers a parser for its module when it is loaded, next to its module
// class (see ModuleSettingsParserRegistrar), so the core never learns a module's settings.
//
// A parser returns the configuration, or no configuration and a message saying what is wrong
// with the settings. An exception thrown by a parser (nlohmann's type errors, say) is caught
// and becomes the message. Registering a module that already has a parser replaces it.
//
// Ownership: the registry lives for the whole process and is never destroyed; a registered
// parser must stay callable for the life of the process (module libraries are never unloaded).
// Thread safety: every function may be called from any thread, including from a library's
// load-time initialisers; no lock is held while a parser runs.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "vorn/base/Export.hpp"
#include "vorn/base/ModuleName.hpp"
#include "vorn/core/ModuleConfig.hpp"

namespace vorn {

/// A configuration, or, when `config` is null, why the settings were refused.
struct ModuleSettingsParseResult {
  std::shared_ptr<const ModuleConfig> config;
  std::string error;
};

using ModuleSettingsParser = std::function<ModuleSettingsParseResult(const nlohmann::json&)>;

class VORN_API ModuleSettingsParsers {
 public:
  ModuleSettingsParsers() = delete;

  /// Registers `parser` for `name`, replacing an earlier one. An empty parser is refused
  /// with an error line.
  static void registerParser(ModuleName name, ModuleSettingsParser parser);
  /// Forgets the parser of `name`; nothing when there is none.
  static void unregisterParser(ModuleName name);
  static bool hasParser(ModuleName name);

  /// The configuration `settings` describe for module `name`. Without a parser the error is
  /// "No settings parser is registered for module <name>. Load its library first."; a parser
  /// that answers neither a configuration nor a message gets "Invalid settings for module
  /// <name>."; a configuration of another module is refused as well. Every refusal is also
  /// logged as an error (category `module`).
  static ModuleSettingsParseResult parse(ModuleName name, const nlohmann::json& settings);
};

/// Registers a parser when the library that defines it is loaded, as ModuleRegistrar does for
/// the module class. Declare one at namespace scope next to the registrar.
class VORN_API ModuleSettingsParserRegistrar {
 public:
  ModuleSettingsParserRegistrar(ModuleName name, ModuleSettingsParser parser);
};

}  // namespace vorn
