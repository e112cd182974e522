// CdpInterface: what the customer-data module offers the app through the CDP facade.
//
// A customer-data module implements it besides VORNModule; the CDP facade finds it by
// std::dynamic_pointer_cast from the attached module, so a module that does not derive from
// it is never called.
//
// Ownership: implementations are held by std::shared_ptr. Thread safety: every member may be
// called from any thread, possibly at once, and must not throw.
#pragma once

#include <cstdint>
#include <optional>

#include "vorn/base/Export.hpp"
#include "vorn/facades/Coordinates.hpp"
#include "vorn/identity/Consent.hpp"
#include "vorn/identity/ModuleIdentity.hpp"

namespace vorn {

class VORN_API CdpInterface {
 public:
  virtual ~CdpInterface();

  /// Who the module knows the user to be; absent when it has nothing to report.
  virtual std::optional<ModuleIdentity> getIdentity() = 0;
  virtual Consent getConsent() = 0;
  virtual void setConsent(Consent consent) = 0;
  /// The device's location, valid for `expiresIn` seconds; absent coordinates clear it.
  virtual void setLocation(const std::optional<Coordinates>& coordinates,
                           std::int64_t expiresIn) = 0;
};

}  // namespace vorn
