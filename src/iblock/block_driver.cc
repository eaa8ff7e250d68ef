// Text comes in through the parser, the finished events go out through a writer, and what the block
// came to is told and added to the run.
#include "iblock/block_driver.h"

#include <algorithm>
#include <cstdint>

#include "driver/run_state.h"
#include "iblock/block_parser.h"
#include "output/midi_writer.h"
#include "output/number_format.h"
#include "output/score_writer.h"

namespace {

// What the summary says of the events of a block.
struct BlockSummary {
  std::int64_t count = 0;
  double end = 0.0;      // seconds, the latest end of an event
  double seconds = 0.0;  // from the first start to that end
  float beats = 0.0F;    // from the first beat position to the last
};

BlockSummary summarize(const EventList &list) {
  BlockSummary summary;
  const EventRecord &first = eventAt(list, firstEvent(list));
  summary.count = list.count;
  forEachEvent(list, [&summary](const EventRecord &event) {
    summary.end = std::max(summary.end, static_cast<double>(event.start + event.duration));
  });
  summary.seconds = summary.end - static_cast<double>(first.start);
  summary.beats = eventAt(list, list.last).beat - first.beat;
  return summary;
}

// The comment line stands in the score before it is known whether the block sounds, and stays when
// it does not.
void writeBlockComment(RunState &run) {
  char text[64] = "\n;I-block #";
  char *end = writeInteger(text + 11, run.block.number, 0);
  *end++ = ' ';
  *end++ = '(';
  *end++ = 'i';
  end = writeInteger(end, run.block.header.instrument, 0);
  *end++ = ')';
  *end++ = ':';
  append(run.output, text, static_cast<std::size_t>(end - text));
}

// Writes the block in the form of the run. `written` tells whether there was anything to write.
ErrorCode writeBlock(RunState &run, bool &written) {
  written = false;
  if (run.events.count == 0) {
    return kOk;
  }
  if (!run.options.midi) {
    writeBlockComment(run);
    written = ScoreWriter(run);
    return kOk;
  }
  std::uint32_t byteCount = 0;
  ErrorCode error = prepareMidi(run, byteCount, written);
  if (error == kOk && written) {
    MidiWriter(run, byteCount);
  }
  return error;
}

void tellSummary(RunState &run) {
  BlockSummary summary = summarize(run.events);
  run.cumulativeSeconds = std::max(run.cumulativeSeconds, summary.end);
  run.lastBlockSeconds = summary.seconds;
  say(run.screen, "\n\n%d events generated in block #%d (i%d).\n",
      {summary.count, run.block.number, run.block.header.instrument});
  say(run.screen, "Total i-block duration: %f (secs), %f (beats)\n",
      {summary.seconds, summary.beats});
  say(run.screen, "Cumulative i-block duration: %f (secs)\n", {summary.end});
  ++run.block.number;
}

}  // namespace

ErrorCode BlockDriver(RunState &run, SourceReader &source) {
  ErrorCode error = parseBlock(run, source);
  if (error > 0) {
    return error;
  }
  if (error == kEndOfInput) {
    releaseEvents(run.events);
  }
  bool written = false;
  error = writeBlock(run, written);
  if (error > 0) {
    return error;
  }
  if (written) {
    tellSummary(run);
  } else if (run.block.number == 1) {
    say(run.screen, "\n\n\t(N.B. No I-Block Data Written)");
  }
  releaseEvents(run.events);
  return kOk;
}
