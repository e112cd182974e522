// Behavior: one thing that happened in the host app's life, as handed to observers.
//
// A behaviour is stamped when it is made: the time from the installed Platform's clock, and
// the app's version and name from the Platform's AppInfo (each absent when the host does not
// know it). The four kinds are subclasses; an observer that wants a subclass's own field
// casts (std::dynamic_pointer_cast<const AppVersionChanged>).
//
// Ownership: held by std::shared_ptr<const Behavior>; the same object may be delivered to
// several observers and kept in the manager's sticky list. Immutable, so any thread may read
// it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "vorn/base/Date.hpp"
#include "vorn/base/Export.hpp"
#include "vorn/behavior/BehaviorType.hpp"

namespace vorn {

struct Platform;

class VORN_API Behavior {
 public:
  virtual ~Behavior();

  BehaviorType type() const noexcept { return type_; }
  Date timestamp() const noexcept { return timestamp_; }
  const std::optional<std::string>& appVersion() const noexcept { return appVersion_; }
  const std::optional<std::string>& appName() const noexcept { return appName_; }

  Behavior(const Behavior&) = delete;
  Behavior& operator=(const Behavior&) = delete;

 protected:
  /// Stamped now, from the current Platform.
  explicit Behavior(BehaviorType type);

 private:
  Behavior(BehaviorType type, const Platform& platform);

  const BehaviorType type_;
  const Date timestamp_;
  const std::optional<std::string> appVersion_;
  const std::optional<std::string> appName_;
};

class VORN_API AppForegrounded final : public Behavior {
 public:
  AppForegrounded() : Behavior(BehaviorType::appForegrounded) {}
};

class VORN_API AppBackgrounded final : public Behavior {
 public:
  AppBackgrounded() : Behavior(BehaviorType::appBackgrounded) {}
};

class VORN_API AppVersionChanged final : public Behavior {
 public:
  explicit AppVersionChanged(std::string previousAppVersion)
      : Behavior(BehaviorType::appVersionChanged),
        previousAppVersion_(std::move(previousAppVersion)) {}

  /// The version stored by the run before this one.
  const std::string& previousAppVersion() const noexcept { return previousAppVersion_; }

 private:
  const std::string previousAppVersion_;
};

class VORN_API ScreenEntry final : public Behavior {
 public:
  explicit ScreenEntry(std::string name)
      : Behavior(BehaviorType::screenEntry), name_(std::move(name)) {}

  /// The screen's name as the host's UI layer reported it.
  const std::string& name() const noexcept { return name_; }

 private:
  const std::string name_;
};

}  // namespace vorn
