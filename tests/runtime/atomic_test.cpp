#include "vorn/runtime/Atomic.hpp"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace vorn {
namespace {

TEST(AtomicTest, ConcurrentIncrementsAllLand) {
  constexpr int kThreads = 8;
  constexpr int kIncrements = 10000;
  Atomic<long> counter(0);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < kIncrements; ++i) {
        counter.mutate([](long& value) { ++value; });
      }
    });
  }
  for (auto& t : threads) {
    t.join();
  }
  EXPECT_EQ(counter.read(), static_cast<long>(kThreads) * kIncrements);
}

TEST(AtomicTest, ReadReturnsACopy) {
  Atomic<std::vector<std::string>> cell({"a"});
  std::vector<std::string> copy = cell.read();
  copy.push_back("b");
  cell.mutate([](auto& value) { value.push_back("c"); });
  EXPECT_EQ(cell.read(), (std::vector<std::string>{"a", "c"}));
}

}  // namespace
}  // namespace vorn
