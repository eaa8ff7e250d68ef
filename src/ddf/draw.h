// Random draws. All of them come from the standard library's generator, one call each, and their
// order is part of what a seed promises: a function that draws says in its header how often and in
// which order.
#pragma once

#include <cstdint>
#include <cstdlib>

// One draw in 0..1, in single precision.
inline float drawUnit() { return static_cast<float>(std::rand()) * 4.656613e-10F; }

// One draw of an index below `count` (which is above 0).
inline std::uint32_t drawIndex(std::uint32_t count) {
  return static_cast<std::uint32_t>(std::rand()) % count;
}
