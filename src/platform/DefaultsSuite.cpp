#include "vorn/platform/DefaultsStore.hpp"

namespace vorn {

DefaultsSuite::DefaultsSuite(std::shared_ptr<DefaultsStore> store, std::string name)
    : store_(std::move(store)), name_(std::move(name)) {}

std::optional<DefaultsValue> DefaultsSuite::object(std::string_view key) const {
  return store_->object(name_, key);
}

ReadResult<DefaultsValue> DefaultsSuite::read(std::string_view key) const {
  return store_->read(name_, key);
}

std::vector<ReadResult<DefaultsValue>> DefaultsSuite::readSnapshot(
    std::span<const std::string> keys) const {
  return store_->readSnapshot(name_, keys);
}

bool DefaultsSuite::boolFor(std::string_view key) const {
  return store_->boolFor(name_, key);
}

std::int64_t DefaultsSuite::integerFor(std::string_view key) const {
  return store_->integerFor(name_, key);
}

std::optional<std::string> DefaultsSuite::stringFor(std::string_view key) const {
  return store_->stringFor(name_, key);
}

std::optional<DefaultsData> DefaultsSuite::dataFor(std::string_view key) const {
  return store_->dataFor(name_, key);
}

bool DefaultsSuite::set(const DefaultsValue& value, std::string_view key) const {
  return store_->set(name_, key, value);
}

bool DefaultsSuite::setBool(bool value, std::string_view key) const {
  return store_->setBool(name_, value, key);
}

bool DefaultsSuite::setInteger(std::int64_t value, std::string_view key) const {
  return store_->setInteger(name_, value, key);
}

bool DefaultsSuite::setString(std::string_view value, std::string_view key) const {
  return store_->setString(name_, value, key);
}

bool DefaultsSuite::setData(const DefaultsData& value, std::string_view key) const {
  return store_->setData(name_, value, key);
}

bool DefaultsSuite::removeObject(std::string_view key) const {
  return store_->remove(name_, key);
}

bool DefaultsSuite::removePersistentDomain() const {
  return store_->removePersistentDomain(name_);
}

}  // namespace vorn
