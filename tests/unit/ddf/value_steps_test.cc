#include "ddf/value_steps.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "ddf/loops.h"
#include "support/events.h"
#include "support/piece.h"
#include "support/scripted_draws.h"

namespace korvo {

namespace {

// A block with `parameters` p-fields from P4 up, of `events` events, or with 0 measured in beats.
struct Block : Piece {
  explicit Block(int parameters, std::int64_t events, float length = 0.0F, float start = 0.0F)
      : Piece("the line\n") {
    read();
    making.block.header.pfieldCount = parameters + 3;
    making.block.header.start = start;
    making.block.header.length = events > 0 ? static_cast<float>(-events) : length;
    making.block.target = events;
    beginEvents(making.events, parameters);
    startClock(making);
    beginPfield(making, 2);
  }

  void makeEvents(int count, float rhythm) {
    for (int i = 0; i < count; ++i) {
      script(random, {kDrawHalf});
      EXPECT_EQ(startStep(making, rhythm, ZeroInterval::kAllowed), kOk);
    }
    making.block.target = count;
  }
};

TEST(ValueSteps, ABlockOfEventsIsFullByTheirNumber) {
  Block block(0, 3);
  for (int filled = 0; filled < 6; ++filled) {
    block.making.pfield.filled = filled;
    EXPECT_EQ(blockIsFull(block.making), filled >= 3) << filled;
  }
}

TEST(ValueSteps, ABlockOfBeatsIsFullByItsClock) {
  Block block(0, 0, 4.0F);
  struct {
    float beat;
    bool full;
  } rows[] = {{0, false}, {3.999F, false}, {4, true}, {5, true}};
  for (const auto &row : rows) {
    block.global.tempo.beat = row.beat;
    EXPECT_EQ(blockIsFull(block.making), row.full) << row.beat;
  }
}

TEST(ValueSteps, ABlockThatAsksForTooManyEventsIsKnownBeforehand) {
  struct {
    std::int64_t target;
    std::int64_t filled;
    std::int64_t more;
    bool exceeds;
  } rows[] = {
      {10, 0, 10, false},
      {10, 0, std::int64_t{1} << 60, false},
      {67108864, 0, 67108864, false},
      {67108865, 0, 67108864, false},
      {67108865, 0, 67108865, true},
      {67108865, 1, 67108865, false},
      {std::int64_t{1} << 62, 0, 5, false},
      {std::int64_t{1} << 62, 0, std::int64_t{1} << 62, true},
      {0, 0, std::int64_t{1} << 62, false},  // measured in beats
  };
  for (const auto &row : rows) {
    Block block(0, row.target, 4.0F);
    block.making.pfield.filled = row.filled;
    EXPECT_EQ(exceedsBlock(block.making, row.more), row.exceeds) << row.target << " " << row.more;
  }
}

TEST(ValueSteps, TheClockBeginsAtTheStartInBeats) {
  Block block(0, 0, 8.0F, 10.0F);
  EXPECT_EQ(block.global.tempo.beat, 10);
  EXPECT_EQ(block.making.block.endBeat, 18);
  block.global.tempo.defs[0] = {0, 120, 1000, 120, 0, 0};
  startClock(block.making);
  EXPECT_EQ(block.global.tempo.beat, 20);
  EXPECT_EQ(block.making.block.endBeat, 28);
}

TEST(ValueSteps, StartsFollowTheMagnitudesOfTheRhythms) {
  Block block(0, 10, 0, 5.0F);
  script(block.random);
  for (float rhythm : {1.0F, -2.0F, 0.5F, 0.0F, 4.0F}) {
    EXPECT_EQ(startStep(block.making, rhythm, ZeroInterval::kError), kOk);
  }
  EXPECT_EQ(block.random.next, 5U);  // one each, also without any deviation
  struct {
    float start;
    float rhythm;
    float beat;
  } rows[] = {{5, 1, 5}, {6, -2, 6}, {8, 0.5F, 8}, {8.5F, 0, 8.5F}, {8.5F, 4, 8.5F}};
  std::vector<EventRecord *> events = eventsOf(block.making.events);
  ASSERT_EQ(events.size(), 5U);
  for (std::size_t i = 0; i < events.size(); ++i) {
    EXPECT_EQ(events[i]->start, rows[i].start) << i;
    EXPECT_EQ(events[i]->duration, rows[i].rhythm) << i;
    EXPECT_EQ(events[i]->beat, rows[i].beat) << i;
    EXPECT_EQ(events[i]->flag, 0) << i;
  }
  EXPECT_EQ(block.global.tempo.beat, 12.5F);
  EXPECT_EQ(block.making.pfield.filled, 5);
  EXPECT_TRUE(block.making.pfield.dataSeen);
}

TEST(ValueSteps, RhythmsAreConvertedThenDeviated) {
  Block block(0, 10, 0, 3.0F);
  block.global.tempo.defs[0] = {0, 120, 1000, 120, 0, 0};
  startClock(block.making);  // beat 6
  block.global.settings.rd = 0.25F;
  block.global.settings.dv = 0.25F;
  script(block.random, {kDrawOne, kDrawZero, kDrawHalf});
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(startStep(block.making, 4, ZeroInterval::kError), kOk);  // 2 s, spread by 1 s
  }
  std::vector<EventRecord *> events = eventsOf(block.making.events);
  EXPECT_EQ(events[0]->duration, 2.5F);
  EXPECT_EQ(events[1]->duration, 1.5F);
  EXPECT_EQ(events[2]->duration, 2.0F);
  EXPECT_EQ(events[0]->start, 3.0F);
  EXPECT_EQ(events[1]->start, 5.5F);
  EXPECT_EQ(events[2]->start, 7.0F);
  // The clock moves by the beats as they were.
  EXPECT_EQ(events[0]->beat, 6);
  EXPECT_EQ(events[1]->beat, 10);
  EXPECT_EQ(events[2]->beat, 14);
  EXPECT_EQ(block.global.tempo.beat, 18);
}

TEST(ValueSteps, AnInsertedEventStartsWithTheOneBefore) {
  Block block(0, 10);
  script(block.random);
  startStep(block.making, 1, ZeroInterval::kError);
  startStep(block.making, 2, ZeroInterval::kError);
  block.making.pfield.insertRequest = true;
  startStep(block.making, 0.5F, ZeroInterval::kError);
  EXPECT_FALSE(block.making.pfield.insertRequest);
  startStep(block.making, 4, ZeroInterval::kError);
  std::vector<EventRecord *> events = eventsOf(block.making.events);
  EXPECT_EQ(events[2]->flag, 1);
  EXPECT_EQ(events[2]->start, 1);
  EXPECT_EQ(events[2]->beat, 1);
  EXPECT_EQ(events[2]->duration, 0.5F);
  EXPECT_EQ(events[3]->flag, 0);
  EXPECT_EQ(events[3]->start, 1.5F);  // behind the inserted one
  EXPECT_EQ(events[3]->beat, 3.5F);   // it has moved the clock like any other
}

TEST(ValueSteps, AnIntervalOfZeroIsAnErrorInABlockOfBeats) {
  Block block(0, 0, 4.0F);
  script(block.random);
  EXPECT_EQ(startStep(block.making, 0, ZeroInterval::kError), kZeroInterval);
  EXPECT_EQ(startStep(block.making, -0.0F, ZeroInterval::kError), kZeroInterval);
  EXPECT_EQ(block.making.events.count, 0U);
  EXPECT_EQ(startStep(block.making, 0, ZeroInterval::kAllowed), kOk);
  EXPECT_EQ(startStep(block.making, 1e-6F, ZeroInterval::kError), kOk);
  // One that is merely too small to move the clock makes its event.
  block.global.tempo.beat = 1000000;
  EXPECT_EQ(startStep(block.making, 0.01F, ZeroInterval::kError), kOk);
  EXPECT_EQ(startStep(block.making, -0.01F, ZeroInterval::kError), kOk);
  EXPECT_EQ(block.global.tempo.beat, 1000000);
  Block counted(0, 4);
  EXPECT_EQ(startStep(counted.making, 0, ZeroInterval::kError), kOk);
}

TEST(ValueSteps, ABlockOfBeatsThatStandsStillEnds) {
  Block block(0, 0, 4.0F);
  for (int i = 0; i < 65536; ++i) {
    ASSERT_EQ(startStep(block.making, 0, ZeroInterval::kAllowed), kOk) << i;
  }
  EXPECT_EQ(startStep(block.making, 0, ZeroInterval::kAllowed), kZeroInterval);

  Block late(0, 0, 4.0F);  // at a million a hundredth of a beat stands still, too
  late.global.tempo.beat = 1000000;
  late.making.block.endBeat = 1000004;
  for (int i = 0; i < 65536; ++i) {
    ASSERT_EQ(startStep(late.making, 0.01F, ZeroInterval::kError), kOk) << i;
  }
  EXPECT_EQ(startStep(late.making, 0.01F, ZeroInterval::kError), kZeroInterval);
}

TEST(ValueSteps, AnyMovementCountsAnew) {
  Block block(0, 0, 4.0F);
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 60000; ++i) {
      ASSERT_EQ(startStep(block.making, 0, ZeroInterval::kAllowed), kOk) << i;
    }
    ASSERT_EQ(startStep(block.making, 0.5F, ZeroInterval::kAllowed), kOk);
  }
}

TEST(ValueSteps, DurationsByTheirBand) {
  struct {
    float value;
    float rhythm;
    float duration;
    bool warned;
  } rows[] = {
      {0.5F, 4, 2, false},        // a factor
      {-0.5F, 4, -2, false},      //
      {0, 4, 0, false},           //
      {199, 2, 398, false},       //
      {200, 4, 4, false},         // the rhythm plus
      {201.5F, 4, 5.5F, false},   //
      {-201.5F, 4, 2.5F, false},  //
      {299, 4, 103, false},       //
      {300, 4, 4, true},          // the rhythm less; the warning comes when it stays positive
      {301, 4, 3, true},          //
      {304, 4, 0, false},         //
      {305, 4, -1, false},        //
      {-301, 4, 5, true},         //
      {399, 4, -95, false},       //
      {400, 4, 0, false},         // beats
      {402, 4, 1, false},         //
      {-402, 4, -1, false},       //
      {999, 4, 299.5F, false},    //
      {1000, 4, 0, false},        // seconds
      {1002.5F, 4, 2.5F, false},  //
      {-1002.5F, 4, -2.5F, false},
      {3, -4, -12, false},   // of a rest's rhythm
      {201, -4, -3, false},  //
      {301, -4, -5, false},
  };
  for (const auto &row : rows) {
    Block block(0, 1);
    block.makeEvents(1, row.rhythm);
    block.global.tempo.current = 120;
    beginPfield(block.making, 3);
    EventRecord &event = *eventsOf(block.making.events)[0];
    script(block.random);
    durationStep(block.making, block.source, event, row.value);
    EXPECT_EQ(block.random.next, 2U) << row.value;
    EXPECT_EQ(event.duration, row.duration) << row.value;
    EXPECT_EQ(block.messages(),
              row.warned ? "\nWARNING: P3 Duration < 0! (Event turned into rest...)" : "")
        << row.value;
  }
}

TEST(ValueSteps, DurationsAreDeviatedByRDThenByDV) {
  Block block(0, 1);
  block.makeEvents(1, 1);
  beginPfield(block.making, 3);
  block.global.settings.rd = 0.5F;
  block.global.settings.dv = 0.25F;
  EventRecord &event = *eventsOf(block.making.events)[0];
  script(block.random, {kDrawOne, kDrawZero});
  durationStep(block.making, block.source, event, 1008);
  EXPECT_EQ(event.duration, 8.75F);  // 8 spread to 10, then 10 to 8.75
}

TEST(ValueSteps, DurationsAreMultipliedByPF) {
  Block block(0, 1);
  block.makeEvents(1, 4);
  beginPfield(block.making, 3);
  block.global.settings.pf = -0.5F;
  EventRecord &event = *eventsOf(block.making.events)[0];
  script(block.random);
  durationStep(block.making, block.source, event, 201);
  EXPECT_EQ(event.duration, -2.5F);
}

TEST(ValueSteps, Parameters) {
  struct {
    CommandCode mode;
    bool quarterTones;
    float value;
    float stored;
  } rows[] = {
      {kRE, false, 2.5F, 2.5F}, {kIN, false, 2.5F, 2.5F},  {kDB, false, 2.25F, 2.25F},
      {kNO, false, 2.5F, 3},    {kNO, false, -2.5F, -2},   {kOP, false, 2.4F, 2},
      {kNO, true, 2.5F, 2.5F},  {kOP, true, 2.25F, 2.25F},
  };
  for (const auto &row : rows) {
    Block block(3, 1);
    block.makeEvents(1, 1);
    beginPfield(block.making, 5);
    block.making.pfield.inputMode = row.mode;
    block.global.name.quarterTones = row.quarterTones;
    block.global.settings.pf = 2;
    EventRecord &event = *eventsOf(block.making.events)[0];
    script(block.random, {kDrawZero});
    EXPECT_EQ(parameterStep(block.making, event, row.value), row.stored) << row.mode;
    EXPECT_EQ(block.random.next, 1U);
    EXPECT_EQ(valuesOf(event)[0], 0);
    EXPECT_EQ(valuesOf(event)[1], row.stored * 2) << row.mode;
    EXPECT_EQ(valuesOf(event)[2], 0);
  }
}

TEST(ValueSteps, ParametersAreDeviatedBeforeRounding) {
  Block block(1, 1);
  block.makeEvents(1, 1);
  beginPfield(block.making, 4);
  block.global.settings.rd = 0.25F;
  block.global.settings.dv = 0.25F;
  EventRecord &event = *eventsOf(block.making.events)[0];
  script(block.random, {kDrawQuarter, kDrawQuarter, kDrawQuarter});
  EXPECT_EQ(parameterStep(block.making, event, 100), 87.5F);  // 100 - 25 + 12.5
  EXPECT_EQ(parameterStep(block.making, event, -100), -87.5F);
  block.making.pfield.inputMode = kNO;
  EXPECT_EQ(parameterStep(block.making, event, 100), 88);
}

TEST(ValueSteps, EventsAreFilledInTheirOrder) {
  Block block(1, 3);
  block.makeEvents(3, 1);
  beginPfield(block.making, 4);
  script(block.random);
  for (float value : {1.0F, 2.0F, 3.0F}) {
    EXPECT_EQ(applyValue(block.making, block.source, value), kOk);
  }
  std::vector<EventRecord *> events = eventsOf(block.making.events);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(valuesOf(*events[i])[0], i + 1);
  }
  EXPECT_TRUE(blockIsFull(block.making));
}

TEST(ValueSteps, AnInsertedValueFillsACopyOfTheEventBefore) {
  Block block(2, 2);
  block.makeEvents(2, 1);
  beginPfield(block.making, 4);
  script(block.random);
  EXPECT_EQ(applyValue(block.making, block.source, 10), kOk);
  valuesOf(*eventsOf(block.making.events)[0])[1] = 5;
  block.making.pfield.insertRequest = true;
  EXPECT_EQ(applyValue(block.making, block.source, 11), kOk);
  EXPECT_FALSE(block.making.pfield.insertRequest);
  EXPECT_EQ(applyValue(block.making, block.source, 12), kOk);
  std::vector<EventRecord *> events = eventsOf(block.making.events);
  ASSERT_EQ(events.size(), 3U);
  EXPECT_EQ(valuesOf(*events[0])[0], 10);
  EXPECT_EQ(valuesOf(*events[1])[0], 11);
  EXPECT_EQ(valuesOf(*events[2])[0], 12);
  EXPECT_EQ(events[0]->flag, 0);
  EXPECT_EQ(events[1]->flag, 1);
  EXPECT_EQ(events[1]->start, 0);
  EXPECT_EQ(events[1]->beat, 0);
  EXPECT_EQ(events[1]->duration, 1);
  EXPECT_EQ(valuesOf(*events[1])[1], 5);  // all other p-fields are copied
  EXPECT_EQ(events[2]->start, 1);
}

TEST(ValueSteps, ACopyCanBeMadeBeforeItIsFilled) {
  Block block(1, 2);
  block.makeEvents(2, 1);
  beginPfield(block.making, 4);
  script(block.random);
  EXPECT_EQ(insertPending(block.making), kOk);
  EXPECT_EQ(block.making.events.count, 2U);
  applyValue(block.making, block.source, 10);
  block.making.pfield.insertRequest = true;
  EXPECT_EQ(insertPending(block.making), kOk);
  EXPECT_FALSE(block.making.pfield.insertRequest);
  EXPECT_EQ(block.making.events.count, 3U);
  EXPECT_EQ(eventAt(block.making.events, peekNextEvent(block.making)).flag, 1);
  applyValue(block.making, block.source, 11);
  EXPECT_EQ(valuesOf(*eventsOf(block.making.events)[1])[0], 11);
}

TEST(ValueSteps, ARestInNotesSilencesTheEvent) {
  struct {
    CommandCode mode;
    float value;
    float duration;
  } rows[] = {{kNO, -1, -2}, {kNO, 0, 2}, {kNO, 5, 2}, {kRE, -1, 2}, {kOP, -1, 2}, {kIN, -1, 2}};
  for (const auto &row : rows) {
    Block block(1, 1);
    block.makeEvents(1, 2);
    beginPfield(block.making, 4);
    block.making.pfield.inputMode = row.mode;
    script(block.random);
    EXPECT_EQ(applyValue(block.making, block.source, row.value), kOk);
    EXPECT_EQ(eventsOf(block.making.events)[0]->duration, row.duration) << row.mode;
    EXPECT_EQ(valuesOf(*eventsOf(block.making.events)[0])[0], row.value);
  }
}

TEST(ValueSteps, EveryPfieldHasItsStep) {
  Block block(1, 2);
  script(block.random);
  EXPECT_EQ(applyValue(block.making, block.source, 2), kOk);
  EXPECT_EQ(block.random.next, 1U);
  EXPECT_EQ(block.making.events.count, 1U);
  beginPfield(block.making, 3);
  script(block.random);
  EXPECT_EQ(applyValue(block.making, block.source, 1.5F), kOk);
  EXPECT_EQ(block.random.next, 2U);
  EXPECT_EQ(eventsOf(block.making.events)[0]->duration, 3);
}

}  // namespace

}  // namespace korvo
