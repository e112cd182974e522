#include "vorn/runtime/BlockOperation.hpp"

#include <utility>

namespace vorn {

BlockOperation::BlockOperation(std::function<void()> block) : block_(std::move(block)) {}

BlockOperation::~BlockOperation() = default;

void BlockOperation::main() {
  if (block_) {
    block_();
  }
}

}  // namespace vorn
