// BlockOperation: a synchronous Operation whose main() calls one closure.
//
// Ownership: create it with std::make_shared (see Operation). Thread safety: as Operation.
#pragma once

#include <functional>

#include "vorn/base/Export.hpp"
#include "vorn/runtime/Operation.hpp"

namespace vorn {

class VORN_API BlockOperation : public Operation {
 public:
  explicit BlockOperation(std::function<void()> block);
  ~BlockOperation() override;

  void main() override;

 private:
  std::function<void()> block_;  // written only by the constructor
};

}  // namespace vorn
