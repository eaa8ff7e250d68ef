#include "output/midi_writer.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "support/events.h"
#include "support/piece.h"

namespace korvo {

namespace {

std::string hex(const std::string &bytes) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (char c : bytes) {
    text += kDigits[static_cast<unsigned char>(c) >> 4];
    text += kDigits[static_cast<unsigned char>(c) & 15];
  }
  return text;
}

std::string withoutBlanks(const std::string &text) {
  std::string result;
  for (char c : text) {
    if (c != ' ') {
      result += c;
    }
  }
  return result;
}

TEST(MidiWriter, VariableLengthQuantities) {
  struct {
    std::uint64_t quantity;
    const char *bytes;
  } rows[] = {
      {0, "00"},
      {1, "01"},
      {0x40, "40"},
      {127, "7F"},
      {128, "8100"},
      {240, "8170"},
      {0x2000, "C000"},
      {16383, "FF7F"},
      {16384, "818000"},
      {2097151, "FFFF7F"},
      {2097152, "81808000"},
      {268435455, "FFFFFF7F"},
      {268435456, "8180808000"},
      {std::uint64_t{1} << 63, "81808080808080808000"},
      {UINT64_MAX, "81FFFFFFFFFFFFFFFF7F"},
  };
  for (const auto &row : rows) {
    char bytes[kLongestQuantity];
    char *end = writeVariableLength(bytes, row.quantity);
    EXPECT_EQ(hex({bytes, end}), row.bytes) << row.quantity;
    EXPECT_EQ(variableLength(row.quantity), end - bytes) << row.quantity;
  }
}

struct Written {
  ErrorCode result;
  std::string bytes;  // in hex
  std::string messages;
};

Written write(const std::vector<MadeEvent> &events, int parameters = 2) {
  Piece piece("");
  EventList &list = piece.making.events;
  beginEvents(list, parameters);
  for (const MadeEvent &event : events) {
    addEvent(list, event);
  }
  Written written{};
  MidiTrack track;
  written.result = prepareMidi(list, *piece.making.messages, track);
  MidiWriter(list, track, piece.output);
  freeMidiTrack(track);
  written.bytes = hex(piece.written());
  written.messages = piece.messages();
  return written;
}

constexpr const char *kHeader = "4D546864 00000006 0001 0002 01E0";

// A file with the conductor track that ends at `end` and this note track.
std::string file(const std::string &end, const std::string &notes) {
  auto lengthOf = [](const std::string &bytes, std::size_t more) {
    char text[20];
    std::snprintf(text, sizeof text, "%08zX", withoutBlanks(bytes).size() / 2 + more);
    return std::string(text);
  };
  return withoutBlanks(kHeader + std::string("4D54726B") + lengthOf(end, 18) +
                       "00FF580404021808 00FF51030F4240" + end + "FF2F00 4D54726B" +
                       lengthOf(notes, 4) + notes + "00FF2F00");
}

TEST(MidiWriter, OneNote) {
  Written written = write({{0, 1, {32767, 60}}});
  EXPECT_EQ(written.result, kOk);
  EXPECT_EQ(written.bytes,
            "4D546864000000060001000201E0"
            "4D54726B0000001400FF58040402180800FF51030F42408B20FF2F00"
            "4D54726B0000000D00903C7F8360803C4000FF2F00");
  EXPECT_EQ(written.messages,
            "\n   0.00\t   1.00\tON\tN:   60.00\tV:  127.00\t"
            "\n   1.00\t   1.00\tOFF\tN:   60.00\tV:   60.00\t");
}

TEST(MidiWriter, ANoteOffStandsBehindANoteOnOfTheSameMoment) {
  Written written = write({{0, 1, {32767, 60}}, {1, 1, {32767, 60}}});
  EXPECT_EQ(written.bytes,
            file("8F00", "00 903C7F  8360 903C7F  00 803C40  8360 803C40"));  // (2 + 1 + 1) s
}

TEST(MidiWriter, OverlappingNotes) {
  // 62 sounds inside 60; 64 begins with 62 and ends last.
  Written written = write({{0, 2, {32767, 60}}, {0.5F, 0.5F, {32767, 62}}, {0.5F, 3, {32767, 64}}});
  EXPECT_EQ(written.bytes,
            file("9C10",  // (3.5 + 3 + 1) s
                 "00 903C7F 8170 903E7F 00 90407F 8170 803E40 8360 803C40 8550 804040"));
}

TEST(MidiWriter, NoteOffsOfOneMomentKeepTheOrderOfTheirNotes) {
  Written written = write({{0, 2, {32767, 60}}, {1, 1, {32767, 62}}, {1.5F, 0.5F, {32767, 64}}});
  EXPECT_EQ(written.bytes,
            file("8D10",  // (2 + 0.5 + 1) s
                 "00 903C7F 8360 903E7F 8170 90407F 8170 803C40 00 803E40 00 804040"));
}

TEST(MidiWriter, KeysAndVelocities) {
  struct {
    float amplitude;
    float key;
    const char *bytes;  // key and velocity
  } rows[] = {
      {32767, 60.9F, "3C7F"}, {32767, 130, "027F"},    {32767, -3, "FD7F"},   {32767, 128, "007F"},
      {32767, 127, "7F7F"},   {16384, 60, "3C3F"},     {0, 60, "3C00"},       {40000, 60, "3C9B"},
      {-32767, 60, "3C81"},   {32767, 255.5F, "7F7F"}, {32767, -130, "FE7F"},
  };
  for (const auto &row : rows) {
    Written written = write({{0, 1, {row.amplitude, row.key}}});
    std::string key = std::string(row.bytes).substr(0, 2);
    EXPECT_EQ(written.bytes,
              file("8B20", std::string("00 90") + row.bytes + " 8360 80" + key + "40"))
        << row.amplitude << " " << row.key;
  }
}

TEST(MidiWriter, TicksAreTruncated) {
  // 0.999 of a tick is none; 128.9 ticks are 128.
  Written written = write({{0.999F / 480.0F, 1, {32767, 60}}});
  EXPECT_EQ(written.bytes.substr(withoutBlanks(kHeader).size() + 2 * 28 + 16, 8), "00903C7F");
  written = write({{128.9F / 480.0F, 1, {32767, 60}}});
  EXPECT_EQ(written.bytes.substr(withoutBlanks(kHeader).size() + 2 * 28 + 16, 10), "8100903C7F");
}

TEST(MidiWriter, WithoutAmplitudeOrKey) {
  EXPECT_EQ(write({{0, 1, {}}}, 0).bytes, file("8B20", "00 903C40 8360 803C40"));
  EXPECT_EQ(write({{0, 1, {32767}}}, 1).bytes, file("8B20", "00 903C7F 8360 803C40"));
  EXPECT_EQ(write({{0, 1, {32767, 62, 5, 6}}}, 4).bytes, file("8B20", "00 903E7F 8360 803E40"));
}

TEST(MidiWriter, ManyNotesStayInTheOrderOfTime) {
  std::vector<MadeEvent> events;
  for (int i = 0; i < 30000; ++i) {
    events.push_back({static_cast<float>(i) / 8.0F,
                      static_cast<float>(i * 7919 % 1000 + 1) / 16.0F,
                      {32767, static_cast<float>(i % 128)}});
  }
  Piece piece("");
  beginEvents(piece.making.events, 2);
  for (const MadeEvent &event : events) {
    addEvent(piece.making.events, event);
  }
  MidiTrack track;
  ASSERT_EQ(prepareMidi(piece.making.events, *piece.making.messages, track), kOk);
  std::vector<Note> notes;
  forEachNote(piece.making.events, track, [&notes](const Note &note) { notes.push_back(note); });
  freeMidiTrack(track);
  ASSERT_EQ(notes.size(), 60000U);
  for (std::size_t i = 1; i < notes.size(); ++i) {
    ASSERT_LE(notes[i - 1].start, notes[i].start);
    if (notes[i - 1].start == notes[i].start) {
      ASSERT_GE(notes[i - 1].isOn, notes[i].isOn) << "a note-off before a note-on at " << i;
    }
  }
}

}  // namespace

}  // namespace korvo
