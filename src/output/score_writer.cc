// Finished events come in, lines of a score go out. The columns are worked out once for a block.
#include "output/score_writer.h"

#include "driver/run_state.h"
#include "global/arithmetic.h"
#include "output/number_format.h"
#include "output/output_buffer.h"
#include "output/output_kinds.h"

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

char *writeColumn(char *out, const RunState &run, const OutputKind &kind,
                  const PfieldFormat &format, float value) {
  double converted = kind.convert(run, format, value);
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

void writeEvent(RunState &run, const Columns &columns, const EventRecord &event) {
  const BlockState &block = run.block;
  char *out = room(run.output, 3 * kFieldRoom);
  *out++ = '\n';
  *out++ = 'i';
  out = writeInteger(out, block.header.instrument, 0);
  *out++ = ' ';
  out = writeTime(out, event.start, kStartColumns, block.pfields[2].precision);
  out = writeTime(out, event.duration, kDurationColumns, block.pfields[3].precision);
  taken(run.output, out);
  const float *values = valuesOf(event);
  for (int i = 0; i < columns.count; ++i) {
    out = room(run.output, kFieldRoom);
    taken(run.output,
          writeColumn(out, run, *columns.kinds[i], *columns.formats[i], values[columns.values[i]]));
  }
}

}  // namespace

bool ScoreWriter(RunState &run) {
  removeRests(run.events);
  if (run.events.count == 0) {
    say(run.screen, "\n\nOops i-block %d is all rests (check p2=0 and p3 != 400+n OR 1000+n?)! ",
        {run.block.header.instrument});
    return false;
  }
  Columns columns = columnsOf(run.block);
  std::int64_t written = 0;
  forEachEvent(run.events, [&](const EventRecord &event) {
    writeEvent(run, columns, event);
    ++written;
    if (countProgress(run.progress)) {
      drawProgress(run, "score", written);
    }
  });
  append(run.output, "\n", 1);
  return true;
}
