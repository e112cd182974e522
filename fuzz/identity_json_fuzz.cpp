// The identity JSON when the platform name, the registration id and each operational
// module's own identity are anything: a module's text as it reports it, or its identity
// serialised from arbitrary fields. Whatever they hold, the document is JSON that reads back.
#include <cstdint>
#include <cstdlib>
#include <map>

#include <nlohmann/json.hpp>

#include "FuzzInput.hpp"
#include "vorn/identity/CoreIdentity.hpp"
#include "vorn/identity/IdentityModuleAccess.hpp"
#include "vorn/identity/ModuleIdentity.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace {

// Every module operational, reporting the text of the current input (none when absent).
class ScriptedAccess : public vorn::IdentityModuleAccess {
 public:
  vorn::ModuleStatus status(vorn::ModuleName) const override {
    return vorn::ModuleStatus::operational;
  }
  std::optional<std::string> identity(vorn::ModuleName module) const override {
    const auto found = texts.find(module);
    return found == texts.end() ? std::nullopt : std::optional(found->second);
  }

  std::map<vorn::ModuleName, std::string> texts;
};

std::optional<std::string> optionalText(vorn::fuzz::FuzzInput& input) {
  if (input.byte() & 1)
    return input.text();
  return std::nullopt;
}

std::optional<std::string> moduleText(vorn::fuzz::FuzzInput& input) {
  switch (input.byte() % 3) {
    case 0:
      return std::nullopt;
    case 1:
      return input.text();
    default: {
      vorn::ModuleIdentity identity{.applicationId = input.text()};
      identity.profileId = optionalText(input);
      identity.installationId = optionalText(input);
      if (input.byte() & 1)
        identity.customProperties = input.value();
      return vorn::toJsonText(identity);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto sink = vorn::testing::CaptureLogSink::install();
  static const auto access = [] {
    auto made = std::make_shared<ScriptedAccess>();
    vorn::IdentityModuleAccess::install(made);
    return made;
  }();
  vorn::fuzz::FuzzInput input(data, size);
  vorn::CoreIdentity identity(input.text());
  identity.setRegistrationId(optionalText(input));
  access->texts.clear();
  for (const vorn::ModuleName module : vorn::kAllModuleNames) {
    if (auto text = moduleText(input))
      access->texts.emplace(module, std::move(*text));
  }
  const std::string json = identity.toJson();
  sink->clear();
  const auto parsed = nlohmann::json::parse(json, nullptr, /*allow_exceptions=*/false);
  if (parsed.is_discarded() || !parsed.is_object())
    std::abort();
  return 0;
}
