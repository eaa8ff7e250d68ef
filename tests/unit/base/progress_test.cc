#include "base/progress.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

TEST(CountStep, IsWorthTellingNowAndThen) {
  std::uint64_t steps = 0;
  int tellings = 0;
  for (int i = 0; i < 1 << 18; ++i) {
    bool told = countStep(steps);
    tellings += told ? 1 : 0;
    EXPECT_EQ(told, steps % 32768 == 0);
  }
  EXPECT_EQ(tellings, 8);
  EXPECT_EQ(steps, 1U << 18);
}

}  // namespace

}  // namespace korvo
