// Catalog object events: interest in an item of the catalogue. Each carries the catalog
// object, a fixed name, category `engagement` and absent attributes.
//
// The payload is stored as given, without validation; like every event these are immutable
// and may be read from any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/events/CatalogObject.hpp"
#include "vorn/events/EngagementEvent.hpp"

namespace vorn {

class VORN_API CatalogObjectEvent : public EngagementEvent {
 public:
  const CatalogObject& catalogObject() const noexcept { return catalogObject_; }

 protected:
  CatalogObjectEvent(std::string name, CatalogObject catalogObject);

 private:
  const CatalogObject catalogObject_;
};

class VORN_API ViewCatalogObjectEvent final : public CatalogObjectEvent {
 public:
  static constexpr std::string_view kName = "View Catalog Object";
  explicit ViewCatalogObjectEvent(CatalogObject catalogObject);
};

class VORN_API ViewCatalogObjectDetailEvent final : public CatalogObjectEvent {
 public:
  static constexpr std::string_view kName = "View Catalog Object Detail";
  explicit ViewCatalogObjectDetailEvent(CatalogObject catalogObject);
};

class VORN_API QuickViewCatalogObjectEvent final : public CatalogObjectEvent {
 public:
  static constexpr std::string_view kName = "Quick View Catalog Object";
  explicit QuickViewCatalogObjectEvent(CatalogObject catalogObject);
};

class VORN_API ShareCatalogObjectEvent final : public CatalogObjectEvent {
 public:
  static constexpr std::string_view kName = "Share Catalog Object";
  explicit ShareCatalogObjectEvent(CatalogObject catalogObject);
};

class VORN_API ReviewCatalogObjectEvent final : public CatalogObjectEvent {
 public:
  static constexpr std::string_view kName = "Review Catalog Object";
  explicit ReviewCatalogObjectEvent(CatalogObject catalogObject);
};

class VORN_API CommentCatalogObjectEvent final : public CatalogObjectEvent {
 public:
  static constexpr std::string_view kName = "Comment Catalog Object";
  explicit CommentCatalogObjectEvent(CatalogObject catalogObject);
};

class VORN_API FavoriteCatalogObjectEvent final : public CatalogObjectEvent {
 public:
  static constexpr std::string_view kName = "Favorite Catalog Object";
  explicit FavoriteCatalogObjectEvent(CatalogObject catalogObject);
};

}  // namespace vorn
