#include "vorn/core/ModuleSettingsParsers.hpp"

#include <exception>
#include <map>
#include <mutex>
#include <utility>

#include <nlohmann/json.hpp>

#include "vorn/logging/Log.hpp"

namespace vorn {
namespace {

struct Parsers {
  std::mutex mutex;
  std::map<ModuleName, ModuleSettingsParser> byModule;  // guarded by mutex
};

// Never destroyed: a library's load-time registrar may run while the process exits.
Parsers& parsers() {
  static Parsers* const instance = new Parsers();
  return *instance;
}

ModuleSettingsParser parserOf(ModuleName name) {
  Parsers& all = parsers();
  std::lock_guard guard(all.mutex);
  const auto found = all.byModule.find(name);
  return found == all.byModule.end() ? ModuleSettingsParser() : found->second;
}

ModuleSettingsParseResult refused(std::string error) {
  VORN_LOG_ERROR(LoggerCategory::module, error);
  return {nullptr, std::move(error)};
}

}  // namespace

void ModuleSettingsParsers::registerParser(ModuleName name, ModuleSettingsParser parser) {
  if (!parser) {
    VORN_LOG_ERROR(LoggerCategory::module, "The settings parser of module " +
                                               std::string(rawValue(name)) +
                                               " is empty. It was not registered.");
    return;
  }
  Parsers& all = parsers();
  std::lock_guard guard(all.mutex);
  all.byModule.insert_or_assign(name, std::move(parser));
}

void ModuleSettingsParsers::unregisterParser(ModuleName name) {
  Parsers& all = parsers();
  std::lock_guard guard(all.mutex);
  all.byModule.erase(name);
}

bool ModuleSettingsParsers::hasParser(ModuleName name) {
  return static_cast<bool>(parserOf(name));
}

ModuleSettingsParseResult ModuleSettingsParsers::parse(ModuleName name,
                                                       const nlohmann::json& settings) {
  const std::string module(rawValue(name));
  const ModuleSettingsParser parser = parserOf(name);
  if (!parser)
    return refused("No settings parser is registered for module " + module +
                   ". Load its library first.");
  ModuleSettingsParseResult result;
  try {
    result = parser(settings);
  } catch (const std::exception& error) {
    return refused("Invalid settings for module " + module + ": " + error.what());
  } catch (...) {
    return refused("Invalid settings for module " + module + ".");
  }
  if (!result.config) {
    if (result.error.empty())
      return refused("Invalid settings for module " + module + ".");
    return refused("Invalid settings for module " + module + ": " + result.error);
  }
  if (result.config->name() != name)
    return refused("The settings parser of module " + module +
                   " made the configuration of module " +
                   std::string(rawValue(result.config->name())) + ".");
  return result;
}

ModuleSettingsParserRegistrar::ModuleSettingsParserRegistrar(ModuleName name,
                                                             ModuleSettingsParser parser) {
  ModuleSettingsParsers::registerParser(name, std::move(parser));
}

}  // namespace vorn
