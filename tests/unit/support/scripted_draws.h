// Random draws that a test writes down beforehand.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>

#include "base/random.h"

namespace korvo {

// The next draws are these, and those behind them, up to the end of the batch, are 0; without any,
// all are. `random.next` then counts the draws that have been taken.
inline void script(Random &random, std::initializer_list<std::uint32_t> draws = {}) {
  if (draws.size() > Random::kBatch) {
    std::abort();
  }
  std::fill(std::begin(random.numbers), std::end(random.numbers), 0U);
  std::fill(std::begin(random.units), std::end(random.units), 0.0F);
  std::transform(draws.begin(), draws.end(), random.numbers + Random::kBehind,
                 [](std::uint32_t drawn) { return drawn << 1; });
  std::transform(draws.begin(), draws.end(), random.units,
                 [](std::uint32_t drawn) { return static_cast<float>(drawn) * 4.656613e-10F; });
  random.next = 0;
}

// Draws that come out as 0, 1/4, 1/2, 3/4 and 1.
inline constexpr std::uint32_t kDrawZero = 0;
inline constexpr std::uint32_t kDrawQuarter = 536870912;
inline constexpr std::uint32_t kDrawHalf = 1073741824;
inline constexpr std::uint32_t kDrawThreeQuarters = 1610612736;
inline constexpr std::uint32_t kDrawOne = 2147483647;

}  // namespace korvo
