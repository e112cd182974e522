#include "vorn/events/CatalogObjectEvent.hpp"

#include <utility>

namespace vorn {

CatalogObjectEvent::CatalogObjectEvent(std::string name, CatalogObject catalogObject)
    : EngagementEvent(std::move(name), std::nullopt), catalogObject_(std::move(catalogObject)) {}

ViewCatalogObjectEvent::ViewCatalogObjectEvent(CatalogObject catalogObject)
    : CatalogObjectEvent(std::string(kName), std::move(catalogObject)) {}

ViewCatalogObjectDetailEvent::ViewCatalogObjectDetailEvent(CatalogObject catalogObject)
    : CatalogObjectEvent(std::string(kName), std::move(catalogObject)) {}

QuickViewCatalogObjectEvent::QuickViewCatalogObjectEvent(CatalogObject catalogObject)
    : CatalogObjectEvent(std::string(kName), std::move(catalogObject)) {}

ShareCatalogObjectEvent::ShareCatalogObjectEvent(CatalogObject catalogObject)
    : CatalogObjectEvent(std::string(kName), std::move(catalogObject)) {}

ReviewCatalogObjectEvent::ReviewCatalogObjectEvent(CatalogObject catalogObject)
    : CatalogObjectEvent(std::string(kName), std::move(catalogObject)) {}

CommentCatalogObjectEvent::CommentCatalogObjectEvent(CatalogObject catalogObject)
    : CatalogObjectEvent(std::string(kName), std::move(catalogObject)) {}

FavoriteCatalogObjectEvent::FavoriteCatalogObjectEvent(CatalogObject catalogObject)
    : CatalogObjectEvent(std::string(kName), std::move(catalogObject)) {}

}  // namespace vorn
