#include "vorn/facades/CDP.hpp"

#include "facades/Forwarding.hpp"

namespace vorn {

CDP::CDP() : ModuleFacade(ModuleName::cdp, Compatibility::create("2.0.2", "2.9.9")) {}

std::shared_ptr<CDP> CDP::shared() {
  // Never destroyed, so that a call still running at exit finds its facade.
  static const auto* const instance = new std::shared_ptr<CDP>(new CDP);
  return *instance;
}

ModuleStatus CDP::getStatus() const {
  return status_.load();
}

void CDP::setStatus(ModuleStatus status) {
  status_.store(status);
}

void CDP::tearDown() {
  if (const auto module = this->module())
    module->tearDown();
  clearModule();
}

std::shared_ptr<CdpInterface> CDP::ready() const {
  return detail::readyModule<CdpInterface>(*this, "");
}

std::optional<ModuleIdentity> CDP::getIdentity() {
  const auto module = ready();
  return module ? module->getIdentity() : std::nullopt;
}

Consent CDP::getConsent() {
  return detail::forwardCall(ready(), &CdpInterface::getConsent, "The `Consent` not fetched.",
                             Consent::none);
}

void CDP::setConsent(Consent consent) {
  detail::forwardCall(ready(), &CdpInterface::setConsent, "The `Consent` not set.", consent);
}

void CDP::setLocation(const std::optional<Coordinates>& coordinates, std::int64_t expiresIn) {
  detail::forwardCall(ready(), &CdpInterface::setLocation, "The `Location` not set.", coordinates,
                      expiresIn);
}

}  // namespace vorn
