// A sign of life during large work: when it is time to tell the listener how far a block is.
#pragma once

#include <cstdint>

namespace korvo {

// Counts one value or line; true now and then, when it is worth telling.
inline bool countStep(std::uint64_t &steps) {
  constexpr std::uint64_t kStepsBetweenLooks = 1U << 15;
  return ++steps % kStepsBetweenLooks == 0;
}

}  // namespace korvo
