// The settings statements RD, DV, RS, SR and PF, and what they set.
#pragma once

#include <cstdint>

#include "driver/error_code.h"

struct RunState;
struct SourceReader;

struct RunSettings {
  float rd = 0.0F;  // random deviation, a fraction (1 is 100 %); holds for the rest of the run
  float dv = 0.0F;  // the same for one p-field only
  float pf = 1.0F;  // every value of the p-field is stored times this factor
  std::uint64_t sampleRate = 44100;  // in Hz, for FFT bin numbers
};

// Each reads one statement, the position just behind its name, up to its ")". Errors: 19, 96, those
// of `read_line`, and readRS 29, readSR 65, readRD and readDV 28, readPF 125 and, in P2, 126.
// readRS seeds the standard generator.
ErrorCode readRS(RunState &run, SourceReader &source);
ErrorCode readSR(RunState &run, SourceReader &source);
ErrorCode readRD(RunState &run, SourceReader &source);
ErrorCode readDV(RunState &run, SourceReader &source);
ErrorCode readPF(RunState &run, SourceReader &source);
