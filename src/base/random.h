// Random draws. The numbers are those of the GNU C library's `rand`, which seeds have always meant;
// they are made here, so that a seed means them on every system and two runs never share them. The
// order of draws is part of what a seed promises: a function that draws says in its header how
// often and in which order.
#pragma once

#include <cstdint>

namespace korvo {

// Every number is the sum of those 3 and 31 before it, modulo 2 to the 32nd; the upper 31 bits are
// drawn. Numbers are made 31 at a time.
struct Random {
  static constexpr std::uint32_t kBehind = 31;
  std::uint32_t numbers[kBehind] = {};
  std::uint32_t next = kBehind;
};

// Begins the sequence of a seed (below 2147483648); 0 is the same as 1.
void seedRandom(Random &random, std::uint32_t seed);

// Makes the next 31 numbers.
void makeNumbers(Random &random);

// One draw in 0..2147483647.
inline std::uint32_t draw(Random &random) {
  if (random.next == Random::kBehind) {
    makeNumbers(random);
  }
  return random.numbers[random.next++] >> 1;
}

// One draw in 0..1, in single precision.
inline float drawUnit(Random &random) {
  return static_cast<float>(static_cast<std::int32_t>(draw(random))) * 4.656613e-10F;
}

// One draw of an index below `count` (which is above 0).
inline std::uint32_t drawIndex(Random &random, std::uint32_t count) { return draw(random) % count; }

}  // namespace korvo
