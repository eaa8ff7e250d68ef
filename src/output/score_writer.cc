// Finished events come in, lines of a score go out. The columns are worked out once for a block.
#include "output/score_writer.h"

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
constexpr int kFieldRoom = kLongestNumber + 16;

// The columns that a block writes, worked out once.
struct Columns {
  const PfieldFormat *formats[kMaxPfields];
  const OutputKind *kinds[kMaxPfields];
  int values[kMaxPfields];  // which value of an event
  int count = 0;
};

Columns columnsOf(const BlockState &block) {
  Columns columns;
  for (int number = 4; number <= block.header.pfieldCount; ++number) {
    const PfieldFormat &format = block.pfields[number];
    const OutputKind &kind = outputKind(format.kind);
    if (kind.convert != nullptr) {
      columns.formats[columns.count] = &format;
      columns.kinds[columns.count] = &kind;
      columns.values[columns.count] = number - 4;
      ++columns.count;
    }
  }
  return columns;
}

char *writeTime(char *out, float seconds, int columns, int precision) {
  out = writeFixed(out, static_cast<double>(seconds), precision + columns, precision);
  *out++ = ' ';
  return out;
}

char *writeColumn(char *out, const OutputKind &kind, const PfieldFormat &format,
                  std::uint64_t sampleRate, float value) {
  double converted = kind.convert(format, sampleRate, value);
  if (kind.decimals == kWhole) {
    out = writeInteger(out, toInt64(converted), kind.width);
  } else if (kind.decimals == kOwnPrecision) {
    out = writeFixed(out, converted, kind.width + format.precision, format.precision);
  } else {
    out = writeFixed(out, converted, kind.width, kind.decimals);
  }
  *out++ = ' ';
  return out;
}

void writeEvent(OutputBuffer &output, const BlockState &block, std::uint64_t sampleRate,
                const Columns &columns, const EventRecord &event) {
  char *out = room(output, 3 * kFieldRoom);
  *out++ = '\n';
  *out++ = 'i';
  out = writeInteger(out, block.header.instrument, 0);
  *out++ = ' ';
  out = writeTime(out, event.start, kStartColumns, block.pfields[2].precision);
  out = writeTime(out, event.duration, kDurationColumns, block.pfields[3].precision);
  taken(output, out);
  const float *values = valuesOf(event);
  for (int i = 0; i < columns.count; ++i) {
    out = room(output, kFieldRoom);
    taken(output, writeColumn(out, *columns.kinds[i], *columns.formats[i], sampleRate,
                              values[columns.values[i]]));
  }
}

}  // namespace

void ScoreWriter(Generation &making, OutputBuffer &output) {
  Columns columns = columnsOf(making.block);
  std::int64_t written = 0;
  forEachEvent(making.events, [&](const EventRecord &event) {
    writeEvent(output, making.block, making.global.settings.sampleRate, columns, event);
    ++written;
    if (countStep(making.steps)) {
      tellProgress(making, "score", written);
    }
  });
  append(output, "\n", 1);
}

}  // namespace korvo
