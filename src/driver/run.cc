// The run sequence: the include pass, then the global area and the i-blocks in turn until the input
// is used up. The first error ends the run; whatever has been made by then has been handed over.
#include <cstdlib>
#include <new>

#include "ddf/loops.h"
#include "driver/run_state.h"
#include "global/scanner.h"
#include "global/tempo_map.h"
#include "iblock/block_driver.h"
#include "korvo/korvo.h"
#include "preproc/conditional.h"
#include "preproc/constants.h"
#include "preproc/macros.h"
#include "reader/include_pass.h"

namespace korvo {

namespace {

// Joins the input with its includes and goes on reading from where the host has kept it.
ErrorCode readIncludes(Run &run, const char *name, TextInput input, const Host &host) {
  ErrorCode error =
      include_pass(run.messages, host, name, input, run.source.map, run.source.wantsPlaces);
  if (error > 0 && error != kTemporaryFileLost) {
    return kAlreadyReported;
  }
  if (error > 0 || !host.rewindText(host.context)) {
    return kTemporaryFileLost;
  }
  run.source.input.text = {host.context, host.readText};
  return kOk;
}

bool lineIsUsedUp(const SourceReader &source) { return current(source) == '\0'; }

// Reads on to the next i-block. At the end of the input the rest of the last line is passed over.
ErrorCode scanToBlock(Run &run) {
  ErrorCode error = scan_to_next_iblock(run.source, run.making.global);
  if (error == kEndOfInput) {
    while (!lineIsUsedUp(run.source)) {
      ++run.source.position;
    }
    return kOk;
  }
  return error;
}

// All i-blocks of the input, or under -m the first. `toTheEnd` tells whether the input has been
// used up. A section that is still open is found only when nothing stands behind the last "}".
ErrorCode runBlocks(Run &run, bool &toTheEnd) {
  toTheEnd = false;
  ErrorCode error = scanToBlock(run);
  while (error == kOk) {
    RETURN_IF_ERROR(BlockDriver(run.making, run.source, run.output));
    if (inputEnded(run.source) && lineIsUsedUp(run.source)) {
      toTheEnd = true;
      return NoConditionalOpen(run.source.conditional) ? kOk : kSectionLeftOpen;
    }
    if (run.making.midi) {
      return kOk;
    }
    if (inputEnded(run.source)) {
      toTheEnd = true;
      return kOk;
    }
    error = scanToBlock(run);
  }
  return error;
}

// All of a piece. Under -m the score's end and the closing message are left out where the first
// block is not the end of the text.
ErrorCode runPiece(Run &run, const char *name, TextInput input, const Host &host) {
  RETURN_IF_ERROR(readIncludes(run, name, input, host));
  bool toTheEnd = false;
  RETURN_IF_ERROR(runBlocks(run, toTheEnd));
  if (toTheEnd) {
    if (!run.making.midi) {
      append(run.output, "\ne\n", 3);
    }
    say(run.messages, "\n\nGlobal cumulative duration of all i-blocks = %f (secs)\n",
        {run.source.values.cumulativeSeconds});
  }
  return kOk;
}

// What belongs to the run's parts is known to all of them.
void connect(Run &run, const Options &options, const Listener &listener) {
  run.messages.listener = listener;
  run.messages.silent = options.silent;
  run.messages.tempoVerbose = options.tempoVerbose;
  run.messages.printed = options.alreadySaid;
  run.output.listener = listener;
  run.source.messages = &run.messages;
  run.source.wantsPlaces = options.places;
  run.source.followsLines = options.places || listener.dropped != nullptr;
  run.source.random = &run.making.global.random;
  run.source.values.tempo = &run.making.global.tempo.current;
  run.making.messages = &run.messages;
  run.making.midi = options.midi;
  run.making.global.score = options.midi ? nullptr : &run.output;
  seedRandom(run.making.global.random, 1);
}

}  // namespace

// Not by `new`: without exceptions some C++ libraries end the program instead of giving null.
Run *newRun() {
  void *memory = std::malloc(sizeof(Run));
  return memory == nullptr ? nullptr : new (memory) Run;
}

void freeRun(Run *run) {
  if (run != nullptr) {
    releaseEvents(run->making.events);
    freeLoop(run->making.pfield);
    freeSegments(run->making.segments);
    freeMacros(run->source.macros);
    freeConstants(run->source.constants);
    freeReplacements(run->source.replacements);
    freeSourceMap(run->source.map);
    run->~Run();
    std::free(run);
  }
}

bool perform(Run &run, const Options &options, const char *name, TextInput input, const Host &host,
             const Listener &listener) {
  connect(run, options, listener);
  ErrorCode error = runPiece(run, name, input, host);
  if (error > 0) {
    reportError(run.source, error);
  }
  flushOutput(run.output);
  return error <= 0;
}

void visitEvents(const BlockView &block, void *context,
                 void (*visit)(void *context, const Event &event)) {
  forEachEvent(*static_cast<const EventList *>(block.events), [&](const EventRecord &record) {
    visit(context, {record.start, record.duration, valuesOf(record)});
  });
}

float tempoAt(const BlockView &block, float beat) {
  return TempoAtBeat(*static_cast<const TempoMap *>(block.tempos), beat);
}

}  // namespace korvo
