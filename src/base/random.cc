// A seed comes in, numbers go out. The first 31 come from the seed by a congruence, the others from
// those before them, and 310 are thrown away before the first that is drawn.
#include "base/random.h"

namespace korvo {

namespace {

constexpr std::uint32_t kLag = 3;
constexpr int kThrownAway = 310;  // ten times all 31
constexpr std::int64_t kMultiplier = 16807;
constexpr std::int64_t kModulus = 2147483647;

}  // namespace

void makeNumbers(Random &random) {
  std::uint32_t *numbers = random.numbers;
  for (std::uint32_t i = 0; i < kLag; ++i) {
    numbers[i] += numbers[Random::kBehind - kLag + i];
  }
  for (std::uint32_t i = kLag; i < Random::kBehind; ++i) {
    numbers[i] += numbers[i - kLag];
  }
  random.next = 0;
}

void seedRandom(Random &random, std::uint32_t seed) {
  std::int64_t number = seed == 0 ? 1 : seed;
  for (std::uint32_t &place : random.numbers) {
    place = static_cast<std::uint32_t>(number);
    number = number * kMultiplier % kModulus;
  }
  // The sequence goes on with the first three numbers themselves: one turn of them comes before
  // the sums begin, so the state is turned by three places.
  std::uint32_t turned[Random::kBehind];
  for (std::uint32_t i = 0; i < Random::kBehind; ++i) {
    turned[i] = random.numbers[(i + kLag) % Random::kBehind];
  }
  for (std::uint32_t i = 0; i < Random::kBehind; ++i) {
    random.numbers[i] = turned[i];
  }
  for (int made = 0; made < kThrownAway; made += static_cast<int>(Random::kBehind)) {
    makeNumbers(random);
  }
  random.next = Random::kBehind;
}

}  // namespace korvo
