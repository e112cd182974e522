// InboxTableViewDelegate: what the push module creates to react to the user's actions on an
// inbox TableView (opening a message marks it read and shows it).
//
// Ownership: created by the module, shared with the host through std::shared_ptr. Thread
// safety: called from the host's user-interface thread.
#pragma once

#include <cstddef>

#include "vorn/base/Export.hpp"

namespace vorn {

class VORN_API InboxTableViewDelegate {
 public:
  virtual ~InboxTableViewDelegate();

  /// The user selected the message in `row`.
  virtual void didSelectRow(std::size_t row) = 0;
};

}  // namespace vorn
