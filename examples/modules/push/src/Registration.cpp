#include "Registration.hpp"

namespace push {
namespace {

constexpr std::string_view kDataKey = "registration";
constexpr std::string_view kDirtyKey = "registrationDirty";
constexpr std::string_view kAcceptedKey = "registrationAccepted";

}  // namespace

Registration::Registration(std::shared_ptr<vorn::SecurePrefs> prefs) : prefs_(std::move(prefs)) {
  if (!prefs_)
    return;
  if (const auto text = prefs_->stringFor(kDataKey))
    data_ = fromStored(nlohmann::json::parse(*text, nullptr, false));
  dirty_ = prefs_->boolFor(kDirtyKey).value_or(false);
  everAccepted_ = prefs_->boolFor(kAcceptedKey).value_or(false);
}

bool Registration::update(const std::function<void(RegistrationData&)>& change) {
  std::lock_guard lock(mutex_);
  RegistrationData next = data_;
  change(next);
  if (next == data_)
    return false;
  data_ = std::move(next);
  changed();
  return true;
}

void Registration::markDirty() {
  std::lock_guard lock(mutex_);
  changed();
}

std::optional<Registration::Snapshot> Registration::pending() const {
  std::lock_guard lock(mutex_);
  if (!dirty_)
    return std::nullopt;
  return Snapshot{data_, version_};
}

void Registration::accepted(std::uint64_t version) {
  std::lock_guard lock(mutex_);
  everAccepted_ = true;
  if (version == version_)
    dirty_ = false;
  store();
}

RegistrationData Registration::data() const {
  std::lock_guard lock(mutex_);
  return data_;
}

bool Registration::dirty() const {
  std::lock_guard lock(mutex_);
  return dirty_;
}

bool Registration::registered() const {
  std::lock_guard lock(mutex_);
  return everAccepted_ && !dirty_;
}

void Registration::changed() {
  dirty_ = true;
  ++version_;
  store();
}

void Registration::store() {
  if (!prefs_)
    return;
  prefs_->setString(toStored(data_).dump(), kDataKey);
  prefs_->setBool(dirty_, kDirtyKey);
  prefs_->setBool(everAccepted_, kAcceptedKey);
}

}  // namespace push
