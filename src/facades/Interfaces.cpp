// Key functions of the facades' abstract classes: their vtables and type information live
// in the library once, so a module built apart from it casts and overrides them reliably.
#include "vorn/facades/CdpInterface.hpp"
#include "vorn/facades/InAppMessageEventDelegate.hpp"
#include "vorn/facades/InboxTableViewDataSource.hpp"
#include "vorn/facades/InboxTableViewDelegate.hpp"
#include "vorn/facades/LocationDelegate.hpp"
#include "vorn/facades/PushInterface.hpp"
#include "vorn/facades/TableView.hpp"
#include "vorn/facades/URLHandlingDelegate.hpp"

namespace vorn {

PushInterface::~PushInterface() = default;
CdpInterface::~CdpInterface() = default;
TableView::~TableView() = default;
InboxTableViewDataSource::~InboxTableViewDataSource() = default;
InboxTableViewDelegate::~InboxTableViewDelegate() = default;
URLHandlingDelegate::~URLHandlingDelegate() = default;
LocationDelegate::~LocationDelegate() = default;
InAppMessageEventDelegate::~InAppMessageEventDelegate() = default;

}  // namespace vorn
