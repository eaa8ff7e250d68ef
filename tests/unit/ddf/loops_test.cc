#include "ddf/loops.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ddf/value_steps.h"
#include "support/events.h"
#include "support/piece.h"
#include "support/scripted_draws.h"

namespace korvo {

namespace {

using Floats = std::vector<float>;

// Records a value as if the event filled last had been inserted, or not.
void record(PfieldState &pfield, float value, bool shared) {
  std::uint32_t inserted = pfield.inserted;
  pfield.inserted = shared ? pfield.cursor : pfield.cursor ^ 1U;
  EXPECT_TRUE(recordValue(pfield, value));
  pfield.inserted = inserted;
}

// A block with one parameter and `events` events of one beat; P4 has begun.
struct Block : Piece {
  explicit Block(int events) : Piece("the line\n") {
    read();
    making.block.header.pfieldCount = 4;
    making.block.target = events;
    beginEvents(making.events, 1);
    startClock(making);
    beginPfield(making, 2);
    script(random);
    for (int i = 0; i < events; ++i) {
      startStep(making, 1, ZeroInterval::kError);
    }
    beginPfield(making, 4);
  }

  // Plain data of P4, with "<" and ">" around it when it is a loop.
  void data(const Floats &values, bool loop) {
    if (loop) {
      EXPECT_TRUE(loopMarker(making.pfield, '<'));
    }
    for (float value : values) {
      EXPECT_EQ(applyValue(making, source, value), kOk);
      making.pfield.lastValue = value;
      EXPECT_TRUE(recordValue(making.pfield, value));
    }
    if (loop) {
      EXPECT_TRUE(loopMarker(making.pfield, '>'));
    }
  }

  Floats values() const {
    Floats result;
    for (const EventRecord *event : eventsOf(making.events)) {
      result.push_back(valuesOf(*event)[0]);
    }
    return result;
  }
};

TEST(Loops, Markers) {
  PfieldState pfield;
  EXPECT_FALSE(loopMarker(pfield, '>'));
  EXPECT_TRUE(loopMarker(pfield, '<'));
  EXPECT_TRUE(pfield.looping);
  EXPECT_FALSE(loopMarker(pfield, '<'));
  EXPECT_TRUE(pfield.looping);
  EXPECT_TRUE(loopMarker(pfield, '>'));
  EXPECT_FALSE(pfield.looping);
  EXPECT_FALSE(loopMarker(pfield, '>'));
  EXPECT_TRUE(loopMarker(pfield, '<'));  // a second loop may follow
  pfield.insertRequest = true;
  EXPECT_TRUE(loopMarker(pfield, '>'));
  EXPECT_FALSE(loopMarker(pfield, '<'));  // not while a value waits to be inserted
}

TEST(Loops, OnlyAnOpenLoopRecords) {
  PfieldState pfield;
  record(pfield, 1, false);
  EXPECT_EQ(pfield.loop.count, 0U);
  loopMarker(pfield, '<');
  for (int i = 0; i < 10000; ++i) {
    record(pfield, static_cast<float>(i), i % 3 == 0);
  }
  loopMarker(pfield, '>');
  record(pfield, 5, false);
  ASSERT_EQ(pfield.loop.count, 10000U);
  for (int i = 0; i < 10000; ++i) {
    ASSERT_EQ(pfield.loop.entries[i].value, static_cast<float>(i));
    ASSERT_EQ(pfield.loop.entries[i].shared, i % 3 == 0);
  }
  freeLoop(pfield);
  EXPECT_EQ(pfield.loop.count, 0U);
  EXPECT_EQ(pfield.loop.entries, nullptr);
}

TEST(Loops, WithoutALoopTheLastValueIsHeld) {
  Block block(5);
  block.data({1, 2}, false);
  script(block.random);
  EXPECT_EQ(completePfield(block.making, block.source), kOk);
  EXPECT_EQ(block.values(), (Floats{1, 2, 2, 2, 2}));
  EXPECT_EQ(block.random.next, 3U);
}

TEST(Loops, ALoopIsReplayed) {
  Block block(5);
  block.data({1, 2}, true);
  script(block.random);
  EXPECT_EQ(completePfield(block.making, block.source), kOk);
  EXPECT_EQ(block.values(), (Floats{1, 2, 1, 2, 1}));
  EXPECT_EQ(block.random.next, 3U);
}

TEST(Loops, ALoopMayBeginLate) {
  Block block(7);
  block.data({9}, false);
  block.data({1, 2, 3}, true);
  EXPECT_EQ(completePfield(block.making, block.source), kOk);
  EXPECT_EQ(block.values(), (Floats{9, 1, 2, 3, 1, 2, 3}));
}

TEST(Loops, AFullBlockIsComplete) {
  for (bool loop : {false, true}) {
    Block block(3);
    block.data({1, 2, 3}, loop);
    script(block.random);
    EXPECT_EQ(completePfield(block.making, block.source), kOk);
    EXPECT_EQ(block.random.next, 0U);
    EXPECT_EQ(block.values(), (Floats{1, 2, 3}));
  }
}

TEST(Loops, AnEmptyLoopCountsAsNone) {
  Block block(4);
  block.data({1, 2}, false);
  block.data({}, true);
  EXPECT_EQ(completePfield(block.making, block.source), kOk);
  EXPECT_EQ(block.values(), (Floats{1, 2, 2, 2}));
}

TEST(Loops, ALoopOfInsertedValuesOnlyCountsAsNone) {
  Block block(3);
  block.data({7}, false);
  block.making.pfield.looping = true;
  record(block.making.pfield, 1, true);
  block.making.pfield.looping = false;
  EXPECT_EQ(completePfield(block.making, block.source), kOk);
  EXPECT_EQ(block.values(), (Floats{7, 7, 7}));
}

TEST(Loops, InsertedValuesMakeRoomForThemselves) {
  // A loop of two events, each of 1 and, together with it, 2.
  Block block(3);
  loopMarker(block.making.pfield, '<');
  EXPECT_EQ(applyValue(block.making, block.source, 1), kOk);
  recordValue(block.making.pfield, 1);
  block.making.pfield.insertRequest = true;
  ++block.making.block.target;
  EXPECT_EQ(applyValue(block.making, block.source, 2), kOk);
  recordValue(block.making.pfield, 2);
  loopMarker(block.making.pfield, '>');
  EXPECT_EQ(completePfield(block.making, block.source), kOk);
  // Every replayed 2 adds an event; the block is full when its last event has its 1.
  EXPECT_EQ(block.values(), (Floats{1, 2, 1, 2, 1}));
  EXPECT_EQ(block.making.block.target, 5);
  std::vector<EventRecord *> events = eventsOf(block.making.events);
  for (std::size_t i = 0; i < events.size(); ++i) {
    EXPECT_EQ(events[i]->start, static_cast<float>(i / 2)) << i;
    EXPECT_EQ(events[i]->flag, static_cast<int>(i % 2)) << i;
  }
}

TEST(Loops, ALoopThatBeginsWithAnInsertedValueRaisesTheTargetOnce) {
  // The record: 5 inserted, then 6. Two of four events are filled.
  Block block(4);
  block.data({1, 2}, false);
  block.making.pfield.looping = true;
  record(block.making.pfield, 5, true);
  record(block.making.pfield, 6, false);
  block.making.pfield.looping = false;
  EXPECT_EQ(completePfield(block.making, block.source), kOk);
  // 5 joins the second event; 6, then 5 with it, 6: each further 5 makes room for itself.
  EXPECT_EQ(block.values(), (Floats{1, 2, 5, 6, 5, 6}));
  EXPECT_EQ(block.making.block.target, 6);
}

TEST(Loops, ALoopThatBeginsWithAnInsertedValueGrowsAFullBlock) {
  Block block(2);
  block.data({1, 2}, false);
  block.making.pfield.looping = true;
  record(block.making.pfield, 5, true);
  record(block.making.pfield, 6, false);
  block.making.pfield.looping = false;
  EXPECT_EQ(completePfield(block.making, block.source), kOk);
  EXPECT_EQ(block.values(), (Floats{1, 2, 5}));
  EXPECT_EQ(block.making.block.target, 3);
}

TEST(Loops, RestsOfALoopSilenceTheirEvents) {
  Block block(4);
  block.making.pfield.inputMode = kNO;
  block.data({48, -1}, true);
  EXPECT_EQ(completePfield(block.making, block.source), kOk);
  EXPECT_EQ(block.values(), (Floats{48, -1, 48, -1}));
  std::vector<EventRecord *> events = eventsOf(block.making.events);
  EXPECT_EQ(events[1]->duration, -1);
  EXPECT_EQ(events[2]->duration, 1);
  EXPECT_EQ(events[3]->duration, -1);
}

// P2 of a block of 4 beats.
struct BeatBlock : Piece {
  BeatBlock() : Piece("the line\n") {
    read();
    making.block.header.pfieldCount = 3;
    making.block.header.length = 4;
    beginEvents(making.events, 0);
    startClock(making);
    beginPfield(making, 2);
  }
};

TEST(Loops, StartsAreCompletedByTheClock) {
  BeatBlock block;
  script(block.random);
  EXPECT_EQ(applyValue(block.making, block.source, 1.5F), kOk);
  block.making.pfield.lastValue = 1.5F;
  EXPECT_EQ(completePfield(block.making, block.source), kOk);
  std::vector<EventRecord *> events = eventsOf(block.making.events);
  ASSERT_EQ(events.size(), 3U);
  EXPECT_EQ(events[2]->start, 3);
  EXPECT_EQ(block.global.tempo.beat, 4.5F);
}

TEST(Loops, StartsThatStandStillCannotBeHeld) {
  BeatBlock block;
  block.making.pfield.lastValue = 0;
  EXPECT_EQ(completePfield(block.making, block.source), kZeroInterval);
}

TEST(Loops, InsertedStartsOfABlockOfBeatsRaiseNothing) {
  BeatBlock block;
  script(block.random);
  EXPECT_EQ(applyValue(block.making, block.source, 1), kOk);
  block.making.pfield.looping = true;
  record(block.making.pfield, 0.5F, true);
  record(block.making.pfield, 1, false);
  block.making.pfield.looping = false;
  EXPECT_EQ(completePfield(block.making, block.source), kOk);
  EXPECT_EQ(block.making.block.target, 0);
  // Beats 1, then 0.5 with it, 1, 0.5 with that, 1: the clock is at 4.
  std::vector<EventRecord *> events = eventsOf(block.making.events);
  ASSERT_EQ(events.size(), 5U);
  struct {
    float start;
    float beat;
    int flag;
  } rows[] = {{0, 0, 0}, {0, 0, 1}, {0.5F, 1.5F, 0}, {0.5F, 1.5F, 1}, {1, 3, 0}};
  for (std::size_t i = 0; i < events.size(); ++i) {
    EXPECT_EQ(events[i]->start, rows[i].start) << i;
    EXPECT_EQ(events[i]->beat, rows[i].beat) << i;
    EXPECT_EQ(events[i]->flag, rows[i].flag) << i;
  }
}

TEST(Loops, ANewPfieldForgetsEverythingButTheOctave) {
  Block block(2);
  PfieldState &pfield = block.making.pfield;
  pfield.inputMode = kNO;
  pfield.noteOctave = 4;
  pfield.lastValue = 7;
  pfield.filled = 2;
  pfield.cursor = 1;
  pfield.dataSeen = true;
  pfield.blockEnd = true;
  pfield.marked = true;
  pfield.insertRequest = true;
  pfield.looping = true;
  record(pfield, 1, false);
  block.global.settings = {0.5F, 0.5F, 3, 48000};
  beginPfield(block.making, 9);
  EXPECT_EQ(pfield.number, 9);
  EXPECT_EQ(pfield.inputMode, kRE);
  EXPECT_EQ(pfield.noteOctave, 4);
  EXPECT_EQ(pfield.lastValue, 0);
  EXPECT_EQ(pfield.filled, 0);
  EXPECT_EQ(pfield.cursor, kNoEvent);
  EXPECT_FALSE(pfield.dataSeen);
  EXPECT_FALSE(pfield.blockEnd);
  EXPECT_FALSE(pfield.marked);
  EXPECT_FALSE(pfield.insertRequest);
  EXPECT_FALSE(pfield.looping);
  EXPECT_EQ(pfield.loop.count, 0U);
  EXPECT_FALSE(pfield.loop.hasUnshared);
  EXPECT_EQ(block.global.settings.rd, 0.5F);  // holds for the rest of the run
  EXPECT_EQ(block.global.settings.dv, 0);
  EXPECT_EQ(block.global.settings.pf, 1);
  EXPECT_EQ(block.global.settings.sampleRate, 48000U);
}

}  // namespace

}  // namespace korvo
