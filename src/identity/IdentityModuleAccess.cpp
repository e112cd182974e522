#include "vorn/identity/IdentityModuleAccess.hpp"

#include <mutex>
#include <utility>

namespace vorn {
namespace {

// What the identity sees before start-up wires the facades in: no module attached.
class NothingAttached final : public IdentityModuleAccess {
 public:
  ModuleStatus status(ModuleName) const override { return ModuleStatus::inactive; }
  std::optional<std::string> identity(ModuleName) const override { return std::nullopt; }
};

struct AccessState {
  std::mutex mutex;
  std::shared_ptr<const IdentityModuleAccess> access;  // guarded by mutex; null: none
};

// Never destroyed, so a call finishing during exit still finds it.
AccessState& state() {
  static AccessState* const value = new AccessState;
  return *value;
}

const std::shared_ptr<const IdentityModuleAccess>& nothingAttached() {
  static const auto* const value =
      new std::shared_ptr<const IdentityModuleAccess>(std::make_shared<NothingAttached>());
  return *value;
}

}  // namespace

IdentityModuleAccess::~IdentityModuleAccess() = default;

void IdentityModuleAccess::install(std::shared_ptr<const IdentityModuleAccess> access) {
  // The old access is released after the lock, in case its destructor is slow.
  std::lock_guard lock(state().mutex);
  state().access.swap(access);
}

std::shared_ptr<const IdentityModuleAccess> IdentityModuleAccess::installed() {
  {
    std::lock_guard lock(state().mutex);
    if (state().access)
      return state().access;
  }
  return nothingAttached();
}

}  // namespace vorn
