#include "vorn/identity/CoreIdentity.hpp"

#include <map>
#include <nlohmann/json.hpp>
#include <utility>

#include "vorn/identity/IdentityModuleAccess.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/platform/Platform.hpp"

namespace vorn {
namespace {

using ModuleTexts = std::map<ModuleName, std::string>;

// The device part. Absent when it cannot be written, which only malformed UTF-8 in the
// platform name or registration id causes.
std::optional<std::string> deviceJson(const std::string& platformName,
                                      const std::optional<std::string>& registrationId) {
  nlohmann::json object = nlohmann::json::object();
  object["platform"] = platformName;
  if (registrationId)
    object["registrationId"] = *registrationId;
  try {
    return object.dump();
  } catch (const nlohmann::json::exception&) {
    return std::nullopt;
  }
}

ModuleTexts operationalModuleTexts() {
  const auto access = IdentityModuleAccess::installed();
  ModuleTexts texts;
  for (const ModuleName module : kAllModuleNames) {
    if (access->status(module) != ModuleStatus::operational)
      continue;
    if (auto text = access->identity(module))
      texts.emplace(module, std::move(*text));
  }
  return texts;
}

// A module's text goes into the document unchanged, so it must be a JSON document of its
// own: an object or an array. A bare scalar or malformed UTF-8 is refused, and so is a
// leading UTF-8 byte-order mark: the reader skips it at the start of a text, but inside the
// document it is no JSON.
bool isJsonDocument(const std::string& text) {
  if (text.starts_with("\xEF\xBB\xBF"))
    return false;
  const auto parsed = nlohmann::json::parse(text, nullptr, /*allow_exceptions=*/false);
  return !parsed.is_discarded() && parsed.is_structured();
}

// Spliced by hand rather than re-serialised, so each module's text keeps its own form.
std::string spliceModules(std::string base, const ModuleTexts& texts) {
  base.pop_back();  // the device object's closing brace
  bool first = true;
  for (const auto& [module, text] : texts) {
    const std::string name(rawValue(module));
    if (!isJsonDocument(text)) {
      VORN_LOG_DEBUG(LoggerCategory::identity, "Invalid Json Module " + name + " Identity");
      continue;
    }
    base += first ? ", \"moduleIdentities\": {" : ", ";
    base += "\"" + name + "\": " + text;
    first = false;
  }
  if (!first)
    base += "}";
  return base + "}";
}

}  // namespace

CoreIdentity::CoreIdentity(std::string platformName) : platformName_(std::move(platformName)) {}

CoreIdentity& CoreIdentity::shared() {
  static CoreIdentity* const instance = new CoreIdentity(Platform::current()->app.systemName);
  return *instance;
}

std::optional<std::string> CoreIdentity::registrationId() const {
  return registrationId_.read();
}

void CoreIdentity::setRegistrationId(std::optional<std::string> registrationId) {
  registrationId_.mutate(
      [&](std::optional<std::string>& value) { value = std::move(registrationId); });
}

std::string CoreIdentity::toJson() const {
  auto base = deviceJson(platformName_, registrationId());
  if (!base) {
    VORN_LOG_WARNING(LoggerCategory::sdk, "Failed to parse Identity to Json");
    return "{}";
  }
  return spliceModules(std::move(*base), operationalModuleTexts());
}

}  // namespace vorn
