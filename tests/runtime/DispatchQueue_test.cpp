#include "vorn/runtime/DispatchQueue.hpp"

#include <gtest/gtest.h>

#include "Waiting.hpp"

namespace vorn {
namespace {

TEST(DispatchQueueTest, AsyncRunsWork) {
  DispatchQueue queue("test.smoke");
  test::Latch done;
  queue.async([&] { done.countDown(); });
  EXPECT_TRUE(done.wait());
}

}  // namespace
}  // namespace vorn
