#include "base/random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "support/scripted_draws.h"

namespace korvo {

namespace {

// The C library's numbers of a seed; those of `random_r` are those of `rand`.
class LibraryNumbers {
  random_data data;
  char state[128];

 public:
  explicit LibraryNumbers(std::uint32_t seed) {
    std::memset(&data, 0, sizeof data);
    initstate_r(seed, state, sizeof state, &data);
  }
  LibraryNumbers(const LibraryNumbers &) = delete;
  LibraryNumbers &operator=(const LibraryNumbers &) = delete;

  std::uint32_t next() {
    std::int32_t number = 0;
    random_r(&data, &number);
    return static_cast<std::uint32_t>(number);
  }
};

// The first draw of these that is not the library's; `count` when all are.
int firstDifference(std::uint32_t seed, int count) {
  Random random;
  seedRandom(random, seed);
  LibraryNumbers library(seed);
  for (int i = 0; i < count; ++i) {
    if (draw(random) != library.next()) {
      return i;
    }
  }
  return count;
}

TEST(Random, EverySeedHasTheLibrarysNumbers) {
  for (std::uint32_t seed = 0; seed < 65536; ++seed) {
    ASSERT_EQ(firstDifference(seed, 1000), 1000) << seed;
  }
}

TEST(Random, TheNumbersStayThoseOfTheLibrary) {
  for (std::uint32_t seed : {1U, 2U, 12345U, 65535U}) {
    EXPECT_EQ(firstDifference(seed, 10000000), 10000000) << seed;
  }
}

TEST(Random, TheLibrarysNumbersAreThoseOfRand) {
  for (unsigned seed : {0U, 1U, 7U, 65535U}) {
    std::srand(seed);
    LibraryNumbers library(seed);
    for (int i = 0; i < 1000; ++i) {
      ASSERT_EQ(static_cast<std::uint32_t>(std::rand()), library.next()) << seed << " " << i;
    }
  }
}

TEST(Random, SeedZeroIsSeedOne) {
  Random zero;
  Random one;
  seedRandom(zero, 0);
  seedRandom(one, 1);
  for (int i = 0; i < 1000; ++i) {
    ASSERT_EQ(draw(zero), draw(one)) << i;
  }
}

TEST(Random, SeedingBeginsAnewWhateverWasDrawn) {
  Random random;
  seedRandom(random, 5);
  std::uint32_t first = draw(random);
  for (int drawn = 0; drawn < 100; ++drawn) {
    seedRandom(random, 5);
    for (int i = 0; i < drawn; ++i) {
      draw(random);
    }
    seedRandom(random, 5);
    ASSERT_EQ(draw(random), first) << drawn;
  }
}

TEST(Random, TwoSequencesDoNotMeet) {
  Random a;
  Random b;
  Random alone;
  seedRandom(a, 3);
  seedRandom(b, 4);
  seedRandom(alone, 3);
  for (int i = 0; i < 100; ++i) {
    draw(b);
    ASSERT_EQ(draw(a), draw(alone));
  }
}

TEST(Random, AUnitDrawIsItsNumberTimesAConstant) {
  Random random;
  seedRandom(random, 9);
  LibraryNumbers library(9);
  for (int i = 0; i < 10000; ++i) {
    float number = static_cast<float>(static_cast<std::int32_t>(library.next()));
    ASSERT_EQ(drawUnit(random), number * 4.656613e-10F) << i;
  }
}

TEST(Random, BothKindsOfDrawTakeFromOneSequence) {
  Random random;
  seedRandom(random, 9);
  LibraryNumbers library(9);
  for (int i = 0; i < 10000; ++i) {
    library.next();
    drawUnit(random);
    ASSERT_EQ(draw(random), library.next()) << i;
  }
}

TEST(Random, AUnitDrawIsBetweenZeroAndOne) {
  Random random;
  script(random, {kDrawZero, kDrawQuarter, kDrawHalf, kDrawThreeQuarters, kDrawOne, 1});
  EXPECT_EQ(drawUnit(random), 0.0F);
  EXPECT_EQ(drawUnit(random), 0.25F);
  EXPECT_EQ(drawUnit(random), 0.5F);
  EXPECT_EQ(drawUnit(random), 0.75F);
  EXPECT_EQ(drawUnit(random), 1.0F);
  EXPECT_EQ(drawUnit(random), 4.656613e-10F);
}

TEST(Random, ADrawWithinBoundsMayLieOnThem) {
  Random random;
  script(random, {kDrawZero, kDrawOne, kDrawThreeQuarters, kDrawQuarter, kDrawHalf, kDrawHalf});
  EXPECT_EQ(drawUnitWithin(random, 0.25F, 0.5F), 0.25F);
  EXPECT_EQ(drawUnitWithin(random, 0.25F, 0.5F), 0.5F);
  EXPECT_EQ(drawUnitWithin(random, 0.5F, 0.5F), 0.5F);
  EXPECT_EQ(random.next, 6U);
}

TEST(Random, ADrawWithinBoundsMayBeZeroOrOne) {
  Random random;
  script(random, {kDrawOne, kDrawZero, kDrawZero, kDrawOne});
  EXPECT_EQ(drawUnitWithin(random, 0.0F, 0.125F), 0.0F);
  EXPECT_EQ(random.next, 2U);
  EXPECT_EQ(drawUnitWithin(random, 0.875F, 1.0F), 1.0F);
  EXPECT_EQ(random.next, 4U);
}

TEST(Random, ADrawWithinBoundsGoesOnIntoTheNextNumbers) {
  Random random;
  Random one;
  seedRandom(random, 3);
  seedRandom(one, 3);
  for (int i = 0; i < 2000; ++i) {
    float expected = 0.0F;
    do {
      expected = drawUnit(one);
    } while (expected < 0.4F || expected > 0.41F);
    ASSERT_EQ(drawUnitWithin(random, 0.4F, 0.41F), expected) << i;
    ASSERT_EQ(random.next, one.next) << i;
  }
}

TEST(Random, BoundsThatAreNotNumbersTakeTheFirstDraw) {
  Random random;
  script(random, {kDrawHalf, kDrawQuarter});
  EXPECT_EQ(drawUnitWithin(random, std::nanf(""), std::nanf("")), 0.5F);
  EXPECT_EQ(drawUnitWithin(random, std::nanf(""), std::nanf("")), 0.25F);
}

TEST(Random, AnIndexIsTheRemainderOfADraw) {
  Random random;
  script(random, {7, 2147483647, 0, 5});
  EXPECT_EQ(drawIndex(random, 3), 1U);
  EXPECT_EQ(drawIndex(random, 10), 7U);
  EXPECT_EQ(drawIndex(random, 1), 0U);
  EXPECT_EQ(drawIndex(random, 6), 5U);
}

}  // namespace

}  // namespace korvo
