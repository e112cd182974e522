// CDP: the customer-data module's facade, the app's and the core's one way to it.
//
// Accepts module versions "2.0.2" to "2.9.9". Each operation forwards to the attached
// module's CdpInterface while it is operational. Otherwise it logs, in category
// `interface`, "Module cdp is not initialized. Current status: <status>" and the
// operation's own line, and answers its default; the call is lost, not queued. getStatus()
// always answers; getIdentity() answers absent without a line of its own.
//
// The status is a single atomic value read without a lock: start-up is its only writer.
//
// Ownership: shared() is created on first use and never destroyed. Thread safety: every
// member may be called from any thread; forwarded calls run on the caller's thread with no
// facade lock held, so a module may call back into the facade.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>

#include "vorn/base/Export.hpp"
#include "vorn/facades/CdpInterface.hpp"
#include "vorn/facades/ModuleFacade.hpp"

namespace vorn {

class VORN_API CDP final : public ModuleFacade, public CdpInterface {
 public:
  static std::shared_ptr<CDP> shared();

  ModuleStatus getStatus() const override;
  void setStatus(ModuleStatus status) override;

  /// Tears the attached module down, if any, and detaches it. The status is left as it is.
  void tearDown();

  /// Absent when not ready.
  std::optional<ModuleIdentity> getIdentity() override;
  /// `none` when not ready, after "The `Consent` not fetched."
  Consent getConsent() override;
  /// Dropped when not ready, after "The `Consent` not set."
  void setConsent(Consent consent) override;
  /// Dropped when not ready, after "The `Location` not set."
  void setLocation(const std::optional<Coordinates>& coordinates, std::int64_t expiresIn) override;

 private:
  CDP();
  std::shared_ptr<CdpInterface> ready() const;

  std::atomic<ModuleStatus> status_{ModuleStatus::inactive};
};

}  // namespace vorn
