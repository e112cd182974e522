// A few hundred kilobytes of gzip that inflate to more than the bound must give no value and
// a line, not a process that runs out of memory.
#include <gtest/gtest.h>

#include "vorn/storage/crypto/Gzip.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

using testing::CaptureLogSink;

TEST(GzipBomb, InflatingStopsAtTheBoundWithALine) {
  const Bytes zeros(std::size_t{1} << 20, 0);
  const auto packed = gzipDeflate(zeros);
  ASSERT_TRUE(packed);
  auto sink = CaptureLogSink::install();

  EXPECT_EQ(gzipInflate(*packed, zeros.size()), zeros);
  EXPECT_FALSE(gzipInflate(*packed, zeros.size() - 1));
  EXPECT_EQ(sink->count("Couldn't decompress input: more than 1048575 bytes"), 1u);
  // The thread's stream is reset after a refused input.
  EXPECT_EQ(gzipInflate(*packed), zeros);
}

TEST(GzipBomb, DefaultBoundRefusesMoreThan64MiB) {
  const Bytes zeros(kGzipInflateMaxOutput + 1, 0);
  const auto packed = gzipDeflate(zeros);
  ASSERT_TRUE(packed);
  ASSERT_LT(packed->size(), std::size_t{1} << 20);
  EXPECT_FALSE(gzipInflate(*packed));
}

}  // namespace
}  // namespace vorn
