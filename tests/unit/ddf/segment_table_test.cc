#include "ddf/segment_table.h"

#include <gtest/gtest.h>

#include <memory>

namespace korvo {

namespace {

TEST(SegmentTable, PoolsGrow) {
  auto table = std::make_unique<SegmentTable>();
  for (int i = 0; i < 100000; ++i) {
    ASSERT_TRUE(addValue(table->values, static_cast<float>(i)));
    ASSERT_TRUE(addGroup(table->groups, {{static_cast<std::uint32_t>(i), 2}}));
    ASSERT_TRUE(addTerm(table->terms, {'%', i % 2 == 0, i, 0.5F}));
  }
  EXPECT_EQ(table->values.count, 100000U);
  EXPECT_EQ(table->groups.count, 100000U);
  EXPECT_EQ(table->terms.count, 100000U);
  for (int i = 0; i < 100000; ++i) {
    ASSERT_EQ(table->values.items[i], static_cast<float>(i));
    ASSERT_EQ(table->groups.items[i].values.first, static_cast<std::uint32_t>(i));
    ASSERT_EQ(table->terms.items[i].pfield, i);
    ASSERT_EQ(table->terms.items[i].isReference, i % 2 == 0);
    ASSERT_EQ(table->terms.items[i].operation, '%');
  }
  freeSegments(*table);
}

TEST(SegmentTable, FlagsAreClearedAlsoInUsedMemory) {
  auto table = std::make_unique<SegmentTable>();
  for (int round = 0; round < 3; ++round) {
    ASSERT_TRUE(addFlags(table->usedFlags, 10));
    ASSERT_TRUE(addFlags(table->usedFlags, 0));
    ASSERT_TRUE(addFlags(table->usedFlags, 1000));
    EXPECT_EQ(table->usedFlags.count, 1010U);
    for (std::uint32_t i = 0; i < 1010; ++i) {
      ASSERT_EQ(table->usedFlags.items[i], 0);
      table->usedFlags.items[i] = 1;
    }
    clearSegments(*table);
  }
  freeSegments(*table);
}

TEST(SegmentTable, AnAbsurdNumberOfFlagsIsRefused) {
  auto table = std::make_unique<SegmentTable>();
  EXPECT_TRUE(addFlags(table->usedFlags, 5));
  EXPECT_FALSE(addFlags(table->usedFlags, 0xFFFFFFFFU));
  EXPECT_EQ(table->usedFlags.count, 5U);
  freeSegments(*table);
}

TEST(SegmentTable, ClearingMakesItReadyForTheNextCall) {
  auto table = std::make_unique<SegmentTable>();
  table->count = 7;
  table->referenceSeen = true;
  addValue(table->values, 1);
  addGroup(table->groups, {{0, 1}});
  addTerm(table->terms, {'+', false, 0, 1});
  addFlags(table->usedFlags, 3);
  clearSegments(*table);
  EXPECT_EQ(table->count, 0);
  EXPECT_FALSE(table->referenceSeen);
  EXPECT_EQ(table->values.count, 0U);
  EXPECT_EQ(table->groups.count, 0U);
  EXPECT_EQ(table->terms.count, 0U);
  EXPECT_EQ(table->usedFlags.count, 0U);
  EXPECT_TRUE(addValue(table->values, 2));
  EXPECT_EQ(table->values.items[0], 2);
  freeSegments(*table);
  EXPECT_EQ(table->values.items, nullptr);
  freeSegments(*table);  // nothing is released twice
}

TEST(SegmentTable, ATableHasRoomFor128Segments) {
  EXPECT_EQ(kMaxSegments, 128);
  EXPECT_EQ(kMaxListValues, 65536U);
}

}  // namespace

}  // namespace korvo
