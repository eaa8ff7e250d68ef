// Text comes in through the parser, the finished events go out through a writer, and what the block
// came to is told and added to the run.
#include "iblock/block_driver.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "base/number_format.h"
#include "ddf/generation.h"
#include "iblock/block_parser.h"
#include "output/midi_writer.h"
#include "output/output_kinds.h"
#include "output/score_writer.h"
#include "preproc/source_reader.h"

namespace korvo {

namespace {

// What the summary says of the events of a block.
struct BlockSummary {
  std::int64_t count = 0;
  double end = 0.0;      // seconds, the latest end of an event
  double seconds = 0.0;  // from the first start to that end
  float beats = 0.0F;    // from the first beat position to the last
};

void finishSummary(BlockSummary &summary, const EventRecord &first, const EventRecord &last) {
  summary.seconds = summary.end - static_cast<double>(first.start);
  summary.beats = last.beat - first.beat;
}

BlockSummary summarizeEvents(const EventList &list, double end) {
  BlockSummary summary;
  summary.count = list.count;
  summary.end = end;
  finishSummary(summary, eventAt(list, firstEvent(list)), eventAt(list, list.last));
  return summary;
}

// Note-ons and note-offs are counted.
BlockSummary summarizeNotes(const EventList &list, const MidiTrack &track) {
  BlockSummary summary;
  summary.count = 2 * static_cast<std::int64_t>(list.count);
  summary.end = track.end;
  const NoteOff &last = track.noteOffs[list.count - 1];
  finishSummary(summary, eventAt(list, firstEvent(list)), eventAt(list, last.event));
  return summary;
}

// The comment line stands in the score before it is known whether the block sounds, and stays when
// it does not.
void writeBlockComment(const BlockState &block, OutputBuffer &output) {
  char text[64] = "\n;I-block #";
  char *end = writeInteger(text + 11, block.number, 0);
  *end++ = ' ';
  *end++ = '(';
  *end++ = 'i';
  end = writeInteger(end, block.header.instrument, 0);
  *end++ = ')';
  *end++ = ':';
  append(output, text, static_cast<std::size_t>(end - text));
}

void sayAllRests(const Generation &making) {
  say(*making.messages,
      making.midi ? "\n\nOops i-block %d is all rests! "
                  : "\n\nOops i-block %d is all rests (check p2=0 and p3 != 400+n OR 1000+n?)! ",
      {making.block.header.instrument});
}

Pfield pfieldOf(const PfieldFormat &format, int number) {
  Pfield pfield;
  pfield.number = number;
  std::memcpy(pfield.kind, outputKind(format.kind).name, 2);
  pfield.decimals = format.kind == kRE ? format.precision : 0;
  return pfield;
}

void tellBlock(const Generation &making) {
  const Listener &listener = making.messages->listener;
  if (listener.block == nullptr) {
    return;
  }
  const BlockState &block = making.block;
  Pfield pfields[kMaxPfields];
  BlockView view;
  for (int number = 2; number <= block.header.pfieldCount; ++number) {
    pfields[view.pfieldCount++] = pfieldOf(block.pfields[number], number);
  }
  view.number = block.number;
  view.instrument = block.header.instrument;
  view.pfields = pfields;
  view.eventCount = making.events.count;
  view.events = &making.events;
  view.tempos = &making.global.tempo;
  listener.block(listener.context, view);
}

ErrorCode writeMidi(Generation &making, OutputBuffer &output, BlockSummary &summary) {
  MidiTrack track;
  RETURN_IF_ERROR(prepareMidi(making.events, *making.messages, track));
  MidiWriter(making.events, track, output);
  summary = summarizeNotes(making.events, track);
  freeMidiTrack(track);
  return kOk;
}

// Writes the block in the form of the run. A summary that counts nothing tells that there was
// nothing to write.
ErrorCode writeBlock(Generation &making, OutputBuffer &output, BlockSummary &summary) {
  if (making.events.count == 0) {
    return kOk;
  }
  if (!making.midi) {
    writeBlockComment(making.block, output);
  }
  removeRests(making.events);
  if (making.events.count == 0) {
    sayAllRests(making);
    return kOk;
  }
  tellBlock(making);
  if (making.midi) {
    return writeMidi(making, output, summary);
  }
  double end = ScoreWriter(making, output);
  summary = summarizeEvents(making.events, end);
  return kOk;
}

void tellSummary(const BlockState &block, const BlockSummary &summary, Messages &messages) {
  say(messages, "\n\n%d events generated in block #%d (i%d).\n",
      {summary.count, block.number, block.header.instrument});
  say(messages, "Total i-block duration: %f (secs), %f (beats)\n",
      {summary.seconds, summary.beats});
  say(messages, "Cumulative i-block duration: %f (secs)\n", {summary.end});
}

}  // namespace

ErrorCode BlockDriver(Generation &making, SourceReader &source, OutputBuffer &output) {
  ErrorCode parsed = parseBlock(making, source);
  RETURN_IF_ERROR(parsed);
  if (parsed == kEndOfInput) {
    releaseEvents(making.events);
  }
  BlockSummary summary;
  RETURN_IF_ERROR(writeBlock(making, output, summary));
  if (summary.count > 0) {
    source.values.cumulativeSeconds = std::max(source.values.cumulativeSeconds, summary.end);
    source.values.lastBlockSeconds = summary.seconds;
    tellSummary(making.block, summary, *making.messages);
    ++making.block.number;
  } else if (making.block.number == 1) {
    say(*making.messages, "\n\n\t(N.B. No I-Block Data Written)");
  }
  releaseEvents(making.events);
  return kOk;
}

}  // namespace korvo
