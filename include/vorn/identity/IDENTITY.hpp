// IDENTITY: the app's one place to say who the user is - a profile id and profile
// attributes, for every module or for named ones.
//
// It stores nothing. Each call becomes an IdentityEvent published on the EventBus with
// producer `sdk`: to every subscribed module, or to each named module in turn. A named
// module is sent the event only when it is operational (as IdentityModuleAccess reports)
// and subscribed to the bus; otherwise the call logs why and moves on to the next module.
// The forms taking raw integers (0 = cdp, 1 = push) drop unknown integers with a warning
// and give up when none is left. Nothing is reported to the caller but log lines, in
// category `identity`. toJson() is CoreIdentity's document.
//
// Ownership: VORNSdk hands out shared(), which is never destroyed; other instances behave
// the same, as there is no state. Thread safety: every call may come from any thread.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/base/ModuleName.hpp"
#include "vorn/events/IdentityEvent.hpp"

namespace vorn {

class VORN_API IDENTITY {
 public:
  using ProfileIds = std::map<ModuleName, std::string>;
  using RawProfileIds = std::map<int, std::string>;
  using ModuleAttributes = std::map<ModuleName, StringDictionary>;
  using RawModuleAttributes = std::map<int, StringDictionary>;

  static std::shared_ptr<IDENTITY> shared();

  /// The identity JSON of CoreIdentity::shared().
  std::string toJson() const;

  /// To every subscribed module.
  void setProfileId(std::string_view id) const;
  /// To each listed module, in order.
  void setProfileId(std::string_view id, const std::vector<ModuleName>& modules) const;
  /// Each id to its module.
  void setProfileId(const ProfileIds& ids) const;
  /// As the list form, after converting the integers.
  void setProfileId(std::string_view profile, const std::vector<int>& rawModules) const;
  /// As the per-module form, after converting the integer keys.
  void setProfileId(const RawProfileIds& profiles) const;

  /// To every subscribed module.
  void setProfileAttributes(const StringDictionary& attributes) const;
  /// The one-entry dictionary {key: value} to each listed module.
  void setProfileAttribute(std::string_view key, std::string_view value,
                           const std::vector<ModuleName>& modules) const;
  /// To each listed module, in order.
  void setProfileAttributes(const StringDictionary& attributes,
                            const std::vector<ModuleName>& modules) const;
  /// Each dictionary to its module.
  void setProfileAttributes(const ModuleAttributes& attributes) const;
  /// As the list form, after converting the integers.
  void setProfileAttributesNamed(const StringDictionary& attributes,
                                 const std::vector<int>& rawModules) const;
  /// As the per-module form, after converting the integer keys.
  void setProfileAttributesNamed(const RawModuleAttributes& attributes) const;

  /// As clearProfileAttributes() with one key.
  void clearProfileAttribute(std::string_view key) const;
  /// Sets every key to "" for every subscribed module: clearing is setting to empty.
  void clearProfileAttributes(const std::vector<std::string>& keys) const;
};

}  // namespace vorn
