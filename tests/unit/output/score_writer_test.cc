#include "output/score_writer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "output/output_kinds.h"
#include "support/events.h"
#include "support/piece.h"

namespace korvo {

namespace {

struct Column {
  CommandCode kind = kRE;
  int precision = 3;
  int fftIndex = 4;
};

// The score of a block of instrument 1 with these columns from P4 on.
std::string write(const std::vector<MadeEvent> &events, const std::vector<Column> &columns = {},
                  int startPrecision = 3, int durationPrecision = 3, int instrument = 1,
                  std::uint64_t sampleRate = 44100) {
  Piece piece("");
  Generation &making = piece.making;
  making.global.settings.sampleRate = sampleRate;
  making.block.header.instrument = instrument;
  making.block.header.pfieldCount = 3 + static_cast<int>(columns.size());
  making.block.pfields[2].precision = startPrecision;
  making.block.pfields[3].precision = durationPrecision;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    making.block.pfields[4 + i].kind = columns[i].kind;
    making.block.pfields[4 + i].precision = columns[i].precision;
    making.block.pfields[4 + i].fftIndex = columns[i].fftIndex;
  }
  beginEvents(making.events, static_cast<int>(columns.size()));
  for (const MadeEvent &event : events) {
    addEvent(making.events, event);
  }
  ScoreWriter(making, piece.output);
  EXPECT_EQ(piece.messages(), "");
  return piece.written();
}

TEST(ScoreWriter, StartAndDuration) {
  std::string written = write({{0, 1, {}}, {1.5F, 0.25F, {}}, {12345.678F, 1000, {}}});
  EXPECT_EQ(written,
            "\ni1    0.000  1.000 "
            "\ni1    1.500  0.250 "
            "\ni1 12345.678 1000.000 "
            "\n");
}

TEST(ScoreWriter, PrecisionsOfStartAndDuration) {
  EXPECT_EQ(write({{0.5F, 1.5F, {}}}, {}, 0, 0), "\ni1     0   2 \n");
  EXPECT_EQ(write({{1.5F, 2.5F, {}}}, {}, 7, 1), "\ni1    1.5000000  2.5 \n");
  EXPECT_EQ(write({{1.5F, 2.5F, {}}}, {}, 1, 7), "\ni1    1.5  2.5000000 \n");
  EXPECT_EQ(write({{1, 1, {}}}, {}, 3, 3, 1234567), "\ni1234567    1.000  1.000 \n");
  EXPECT_EQ(write({{1, 1, {}}}, {}, 3, 3, 0), "\ni0    1.000  1.000 \n");
}

// One event with one column.
std::string column(const Column &kind, float value) {
  std::string text = write({{0, 1, {value}}}, {kind});
  std::string before = "\ni1    0.000  1.000 ";
  EXPECT_EQ(text.substr(0, before.size()), before);
  EXPECT_EQ(text.back(), '\n');
  return text.substr(before.size(), text.size() - before.size() - 1);
}

TEST(ScoreWriter, ColumnsOfEveryKind) {
  struct {
    Column kind;
    float value;
    const char *text;
  } rows[] = {
      {{kRE}, 1.5F, "    1.500 "},
      {{kRE}, -1.5F, "   -1.500 "},
      {{kRE, 0}, 2.5F, "     2 "},
      {{kRE, 7}, 0.1F, "    0.1000000 "},
      {{kRE, 1}, 123456, "123456.0 "},
      {{kIN}, 2.5F, "    3 "},
      {{kIN}, -2.5F, "   -2 "},
      {{kIN}, -0.5F, "    0 "},
      {{kIN}, 2.4F, "    2 "},
      {{kIN}, 1234567, "1234567 "},
      {{kIN}, 1e30F, "9223372036854775807 "},
      {{kIN}, -1e30F, "-9223372036854775808 "},
      {{kIN}, std::numeric_limits<float>::infinity(), "9223372036854775807 "},
      {{kIN}, std::numeric_limits<float>::quiet_NaN(), "    0 "},
      {{kDB}, 32767, "90.3 "},
      {{kDB}, 63095, "96.0 "},
      {{kDB}, 1, " 0.0 "},
      {{kDB}, 1.4F, " 0.0 "},
      {{kDB}, 2.5F, " 9.5 "},  // three
      {{kDB}, 100, "40.0 "},
      {{kDB}, 0, "-inf "},
      {{kDB}, 0.4F, "-inf "},
      {{kHZ}, 57, "  440.00000 "},
      {{kHZ}, 69, "  880.00000 "},
      {{kHZ}, 0, "   16.35160 "},
      {{kHZ}, 48, "  261.62558 "},
      {{kHZ}, -12, "    8.17580 "},
      {{kOP}, 61, " 9.010 "},
      {{kOP}, 48, " 8.000 "},
      {{kOP}, 0, " 4.000 "},
      {{kOP}, 59, " 8.110 "},
      {{kOP}, 59.5F, " 8.115 "},
      {{kOP}, -1, " 3.990 "},
      {{kOP}, -13, " 2.990 "},
      {{kOP}, 120, "14.000 "},
      {{kOD}, 54, "8.50 "},
      {{kOD}, 57, "8.75 "},
      {{kOD}, 0, "4.00 "},
      {{kOD}, -6, "3.50 "},
      {{kOD}, 72, "10.00 "},
      {{kTR}, 0, "1.000000 "},
      {{kTR}, 12, "2.000000 "},
      {{kTR}, -12, "0.500000 "},
      {{kTR}, 7, "1.498307 "},
      {{kBN}, 57, "   41 "},  // 440 Hz in bins of 44100 / 4096 Hz: 40.87
      {{kBN, 3, 0}, 57, "    3 "},
      {{kBN, 3, 1}, 57, "    5 "},
      {{kBN, 3, 2}, 57, "   10 "},
      {{kBN, 3, 3}, 57, "   20 "},
      {{kBN, 3, 5}, 57, "   82 "},
      {{kBN, 3, 6}, 57, "  163 "},
      {{kBN, 3, 7}, 57, "  163 "},  // the largest size again
      {{kBN, 3, 0}, 0, "    0 "},
      {{kXX}, 5, ""},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(column(row.kind, row.value), row.text) << row.kind.kind << " of " << row.value;
  }
}

TEST(ScoreWriter, BinsDependOnTheSampleRate) {
  std::vector<MadeEvent> events = {{0, 1, {57}}};
  EXPECT_EQ(write(events, {{kBN}}, 3, 3, 1, 88200), "\ni1    0.000  1.000    20 \n");
  EXPECT_EQ(write(events, {{kBN}}, 3, 3, 1, 22050), "\ni1    0.000  1.000    82 \n");
}

TEST(ScoreWriter, AColumnThatIsNotWrittenLeavesNoTrace) {
  EXPECT_EQ(write({{0, 1, {1, 2, 3}}}, {{kIN}, {kXX}, {kIN}}),
            "\ni1    0.000  1.000     1     3 \n");
}

TEST(ScoreWriter, ADurationThatIsNoNumberIsNoRest) {
  std::string written =
      write({{0, std::copysign(std::numeric_limits<float>::quiet_NaN(), 1.0F), {}}});
  EXPECT_EQ(written, "\ni1    0.000    nan \n");
}

TEST(ScoreWriter, ManyEventsAndColumns) {
  std::vector<Column> columns(125, Column{kRE, 7});
  std::vector<MadeEvent> events;
  std::string expected;
  for (int i = 0; i < 300; ++i) {
    events.push_back({static_cast<float>(i), 1, std::vector<float>(125, -0.5F)});
    char begin[40];
    std::snprintf(begin, sizeof begin, "\ni1 %8.3f %6.3f ", static_cast<double>(i), 1.0);
    expected += begin;
    for (int k = 0; k < 125; ++k) {
      expected += "   -0.5000000 ";
    }
  }
  EXPECT_TRUE(write(events, columns) == expected + "\n");
}

TEST(ScoreWriter, TheWidestNumbersFit) {
  std::vector<Column> columns(125, Column{kRE, 7});
  float largest = std::numeric_limits<float>::max();
  std::string written =
      write({{largest, largest, std::vector<float>(125, -largest)}}, columns, 7, 7);
  char number[80];
  std::snprintf(number, sizeof number, "%.7f ", static_cast<double>(largest));
  std::string expected = std::string("\ni1 ") + number + number;
  for (int k = 0; k < 125; ++k) {
    expected += std::string("-") + number;
  }
  EXPECT_EQ(written, expected + "\n");
}

}  // namespace

}  // namespace korvo
