// The Standard MIDI File, format 1: a header, a conductor track, and a note track with the events
// of one block. P4 is the velocity (amplitudes 0 to 32767 become 0 to 127), P5 the key; one second
// is one quarter note of 480 ticks.
#pragma once

#include <cstdint>

#include "driver/error_code.h"
#include "output/output_buffer.h"

struct RunState;

// Turns the block's events into note-ons and note-offs in the order of the track, prints the
// listing and counts the bytes of the track's events. `something` is false when there is nothing to
// write: no events, or (with a message) only rests. Error 32.
ErrorCode prepareMidi(RunState &run, std::uint32_t &byteCount, bool &something);

// Writes header and tracks for what has been prepared.
void MidiWriter(RunState &run, std::uint32_t byteCount);

// The length of a variable-length quantity, and the quantity itself: seven bits a byte, the highest
// first, bit 7 set on all but the last.
int variableLength(std::uint64_t quantity);
void writeVariableLength(OutputBuffer &output, std::uint64_t quantity);
