// InboxTableViewDataSource: what the push module creates to fill a TableView with inbox
// messages. The host's view asks it for the rows; the module implements it.
//
// Ownership: created by the module, shared with the host through std::shared_ptr. Thread
// safety: called from the host's user-interface thread; an implementation guards its own
// state against the module's refreshes.
#pragma once

#include <cstddef>

#include "vorn/base/Export.hpp"
#include "vorn/base/Value.hpp"

namespace vorn {

class VORN_API InboxTableViewDataSource {
 public:
  virtual ~InboxTableViewDataSource();

  /// How many messages the view shows.
  virtual std::size_t numberOfRows() const = 0;
  /// The message shown in `row` (below numberOfRows()); an empty dictionary otherwise.
  virtual Dictionary messageAt(std::size_t row) const = 0;
};

}  // namespace vorn
