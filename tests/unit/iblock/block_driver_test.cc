#include "iblock/block_driver.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "support/piece.h"

namespace korvo {

namespace {

struct Driven {
  ErrorCode result;
  std::string written;
  std::string messages;
  int nextNumber;
};

Driven drive(const std::string &text, bool midi = false) {
  Piece piece(text);
  EXPECT_EQ(piece.read(), kOk);
  piece.making.midi = midi;
  Driven driven{};
  driven.result = BlockDriver(piece.making, piece.source, piece.output);
  driven.written = piece.written();
  driven.messages = piece.messages();
  driven.nextNumber = piece.making.block.number;
  EXPECT_EQ(piece.making.events.count, 0U);
  return driven;
}

// A block of instrument 12 with an event at every second of these durations (in seconds).
std::string blockOf(const std::vector<const char *> &durations) {
  std::string text = "i12 = 3 0 -" + std::to_string(durations.size()) + " { p2 1 p3";
  for (const char *duration : durations) {
    text += std::string(" ") + duration;
  }
  return text + " }";
}

TEST(BlockDriver, RestsAreLeftOut) {
  struct {
    std::vector<const char *> durations;
    std::vector<int> starts;  // of those that sound
  } rows[] = {
      {{"1", "0", "1"}, {0, 2}},           {{"0", "1", "1"}, {1, 2}},  {{"1", "1", "0"}, {0, 1}},
      {{"0", "0", "1", "0", "0"}, {2}},    {{"1", "-1", "1"}, {0, 2}}, {{"-0.0", "1"}, {1}},
      {{"1", "0", "0", "0", "1"}, {0, 4}},
  };
  for (const auto &row : rows) {
    std::string expected;
    for (int start : row.starts) {
      expected += "\ni12    " + std::to_string(start) + ".000  1.000 ";
    }
    Driven driven = drive(blockOf(row.durations));
    EXPECT_EQ(driven.result, kOk);
    EXPECT_EQ(driven.written, "\n;I-block #1 (i12):" + expected + "\n");
    EXPECT_NE(driven.messages.find("\n\n" + std::to_string(row.starts.size()) +
                                   " events generated in block #1 (i12).\n"),
              std::string::npos)
        << driven.messages;
    EXPECT_EQ(driven.nextNumber, 2);
  }
}

constexpr const char *kNothingWritten = "\n\n\t(N.B. No I-Block Data Written)";

TEST(BlockDriver, NothingButRests) {
  for (const std::vector<const char *> &durations :
       {std::vector<const char *>{"0"}, std::vector<const char *>{"-1", "0"}}) {
    Driven driven = drive(blockOf(durations));
    EXPECT_EQ(driven.result, kOk);
    EXPECT_EQ(driven.written, "\n;I-block #1 (i12):");
    EXPECT_NE(driven.messages.find(
                  std::string("\n\nOops i-block 12 is all rests (check p2=0 and p3 != 400+n OR "
                              "1000+n?)! ") +
                  kNothingWritten),
              std::string::npos)
        << driven.messages;
    EXPECT_EQ(driven.nextNumber, 1);
  }
}

TEST(BlockDriver, NothingButRestsForAMidiFile) {
  Driven driven = drive(blockOf({"0", "-1"}), true);
  EXPECT_EQ(driven.result, kOk);
  EXPECT_EQ(driven.written, "");
  EXPECT_NE(
      driven.messages.find(std::string("\n\nOops i-block 12 is all rests! ") + kNothingWritten),
      std::string::npos)
      << driven.messages;
}

TEST(BlockDriver, RestsAreLeftOutOfAMidiFile) {
  Driven driven =
      drive("i1 = 5 0 -4 { p2 0 0 5 4 p3 1000 1001 1000 1000 p4 32767 p5 1 60 2 3 }", true);
  EXPECT_EQ(driven.result, kOk);
  const std::string kNotes("\x00\x90\x3c\x7f\x83\x60\x80\x3c\x40\x00\xff\x2f\x00", 13);
  ASSERT_GE(driven.written.size(), kNotes.size());
  EXPECT_EQ(driven.written.substr(driven.written.size() - kNotes.size()), kNotes);
}

TEST(BlockDriver, ABlockThatIsSkippedWritesNothing) {
  for (bool midi : {false, true}) {
    Driven driven = drive("i-1 = 3 0 -1 { p2 1 p3 1 }", midi);
    EXPECT_EQ(driven.result, kOk);
    EXPECT_EQ(driven.written, "");
    EXPECT_EQ(driven.messages,
              "\nWARNING: I-block skipped! (i-no < 0)" + std::string(kNothingWritten));
  }
}

// What a listener hears of a block.
struct HeardBlock {
  int calls = 0;
  int number = 0;
  int instrument = 0;
  std::vector<std::string> pfields;
  std::vector<std::vector<float>> events;  // start, duration, P4 and P5
};

void hearBlock(void *context, const BlockView &block) {
  auto &heard = *static_cast<HeardBlock *>(context);
  ++heard.calls;
  heard.number = block.number;
  heard.instrument = block.instrument;
  for (int i = 0; i < block.pfieldCount; ++i) {
    const Pfield &pfield = block.pfields[i];
    heard.pfields.push_back(std::to_string(pfield.number) + pfield.kind +
                            std::to_string(pfield.decimals));
  }
  visitEvents(block, &heard, [](void *inner, const Event &event) {
    static_cast<HeardBlock *>(inner)->events.push_back(
        {event.start, event.duration, event.values[0], event.values[1]});
  });
  EXPECT_EQ(block.eventCount, heard.events.size());
}

TEST(BlockDriver, AListenerSeesTheEventsBeforeTheyAreWritten) {
  Piece piece("i7 = 5 2 -3 { p2(re1) 1 0.5 p3 1 0 2 p4(hz) no c4 d4 e4 p5(re5) 1.5 }");
  EXPECT_EQ(piece.read(), kOk);
  HeardBlock heard;
  Listener &listener = piece.making.messages->listener;
  listener.context = &heard;
  listener.block = hearBlock;
  listener.message = nullptr;
  piece.making.block.number = 4;
  EXPECT_EQ(BlockDriver(piece.making, piece.source, piece.output), kOk);
  EXPECT_EQ(heard.calls, 1);
  EXPECT_EQ(heard.number, 4);
  EXPECT_EQ(heard.instrument, 7);
  EXPECT_EQ(heard.pfields, (std::vector<std::string>{"2re1", "3re3", "4hz0", "5re5"}));
  // The event in the middle is a rest. P3 is a factor of the rhythms 1, 0.5 and 0.5.
  EXPECT_EQ(heard.events, (std::vector<std::vector<float>>{{2, 1, 48, 1.5F}, {3.5F, 1, 52, 1.5F}}));
}

TEST(BlockDriver, AListenerHearsOfNoBlockThatIsSilent) {
  for (const char *text : {"i1 = 3 0 -2 { p2 1 p3 0 }", "i-1 = 3 0 -2 { p2 1 p3 1 }"}) {
    Piece piece(text);
    EXPECT_EQ(piece.read(), kOk);
    HeardBlock heard;
    Listener &listener = piece.making.messages->listener;
    listener.context = &heard;
    listener.block = hearBlock;
    listener.message = nullptr;
    EXPECT_EQ(BlockDriver(piece.making, piece.source, piece.output), kOk);
    EXPECT_EQ(heard.calls, 0) << text;
  }
}

}  // namespace

}  // namespace korvo
