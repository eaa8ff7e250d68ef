// Finished events come in, lines of a score go out. The columns are worked out once for a block.
#include "output/score_writer.h"

#include <algorithm>
#include <cstring>

#include "base/arithmetic.h"
#include "base/number_format.h"
#include "base/output_buffer.h"
#include "base/progress.h"
#include "ddf/generation.h"
#include "output/output_kinds.h"

namespace korvo {

namespace {

constexpr int kStartColumns = 5;  // P2 is wider than P3 by two
constexpr int kDurationColumns = 3;
constexpr std::size_t kFieldRoom = kLongestNumber + 16;

// One column of the lines of a block, worked out once.
struct Column {
  const OutputKind *kind;
  const PfieldFormat *format;
  bool isPlain;  // a number that is written as it is
  int width;
  int decimals;  // or kWhole
  int value;     // which value of an event
};

// What the lines of a block have in common.
struct LineFormat {
  char head[24];  // what every line begins with
  std::size_t headLength = 0;
  Column columns[kMaxPfields];
  int count = 0;
  std::size_t room = 0;
};

Column columnOf(const PfieldFormat &format, const OutputKind &kind, int value) {
  bool isOwn = kind.decimals == kOwnPrecision;
  return {&kind,
          &format,
          kind.code == kRE,
          isOwn ? kind.width + format.precision : kind.width,
          isOwn ? format.precision : kind.decimals,
          value};
}

LineFormat lineFormatOf(const BlockState &block) {
  LineFormat line;
  line.head[0] = '\n';
  line.head[1] = 'i';
  char *end = writeInteger(line.head + 2, block.header.instrument, 0);
  *end++ = ' ';
  line.headLength = static_cast<std::size_t>(end - line.head);
  for (int number = 4; number <= block.header.pfieldCount; ++number) {
    const PfieldFormat &format = block.pfields[number];
    const OutputKind &kind = outputKind(format.kind);
    if (kind.convert != nullptr) {
      line.columns[line.count++] = columnOf(format, kind, number - 4);
    }
  }
  line.room = static_cast<std::size_t>(line.count + 3) * kFieldRoom;
  return line;
}

char *writeTime(char *out, float seconds, int columns, int precision) {
  out = writeFixed(out, seconds, precision + columns, precision);
  *out++ = ' ';
  return out;
}

char *writeConverted(char *out, const Column &column, double converted) {
  return column.decimals == kWhole ? writeInteger(out, toInt64(converted), column.width)
                                   : writeFixed(out, converted, column.width, column.decimals);
}

char *writeColumn(char *out, const Column &column, std::uint64_t sampleRate, float value) {
  out = column.isPlain
            ? writeFixed(out, value, column.width, column.decimals)
            : writeConverted(out, column, column.kind->convert(*column.format, sampleRate, value));
  *out++ = ' ';
  return out;
}

void writeEvent(OutputBuffer &output, const BlockState &block, std::uint64_t sampleRate,
                const LineFormat &line, const EventRecord &event) {
  char *out = room(output, line.room);
  std::memcpy(out, line.head, sizeof line.head);
  out += line.headLength;
  out = writeTime(out, event.start, kStartColumns, block.pfields[2].precision);
  out = writeTime(out, event.duration, kDurationColumns, block.pfields[3].precision);
  const float *values = valuesOf(event);
  for (int i = 0; i < line.count; ++i) {
    const Column &column = line.columns[i];
    out = writeColumn(out, column, sampleRate, values[column.value]);
  }
  taken(output, out);
}

}  // namespace

double ScoreWriter(Generation &making, OutputBuffer &output) {
  LineFormat line = lineFormatOf(making.block);
  std::int64_t written = 0;
  double end = 0.0;
  forEachEvent(making.events, [&](const EventRecord &event) {
    writeEvent(output, making.block, making.global.settings.sampleRate, line, event);
    end = std::max(end, static_cast<double>(event.start + event.duration));
    ++written;
    if (countStep(making.steps)) {
      tellProgress(making, "score", written);
    }
  });
  append(output, "\n", 1);
  return end;
}

}  // namespace korvo
