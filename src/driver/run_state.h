// The one state of a run, handed to every function that needs more than the text before it. Plain
// records, one for each room; the headers of the rooms say what is in them.
#pragma once

#include "ddf/event_list.h"
#include "ddf/pfield_state.h"
#include "ddf/segment_table.h"
#include "ddf/settings.h"
#include "driver/messages.h"
#include "driver/options.h"
#include "driver/progress.h"
#include "global/tempo_map.h"
#include "iblock/block_state.h"
#include "output/output_buffer.h"
#include "preproc/conditional.h"
#include "preproc/constants.h"
#include "preproc/macros.h"
#include "reader/names.h"
#include "reader/source_reader.h"

struct RunState {
  Options options;
  Screen screen;
  Progress progress;
  OutputBuffer output;     // the score or the MIDI file
  OutputBuffer expansion;  // the file of -x; its stream is null without

  MacroTable macros;
  ConstTable constants;
  ConditionalState conditional;
  NameLookup name;
  TempoMap tempo;
  RunSettings settings;

  BlockState block;
  EventList events;
  PfieldState pfield;
  SegmentTable segments;

  double lastBlockSeconds = 0.0;   // the duration of the last i-block ("@1")
  double cumulativeSeconds = 0.0;  // the latest end that any i-block has reached ("@2")
};
