// TableView: the host's list view in which the push module shows the inbox. The host
// subclasses it around its own view; the module's data source and delegate drive it.
//
// Ownership: the host owns the view and shares it with the module through std::shared_ptr.
// Thread safety: reloadData() is called by the module from any thread; an implementation
// hands it to its user-interface thread.
#pragma once

#include "vorn/base/Export.hpp"

namespace vorn {

class VORN_API TableView {
 public:
  virtual ~TableView();

  /// Asks the view to read its rows again from its data source.
  virtual void reloadData() = 0;
};

}  // namespace vorn
