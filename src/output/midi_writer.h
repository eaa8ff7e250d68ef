// The Standard MIDI File, format 1: a header, a conductor track, and a note track with the events
// of one block. P4 is the velocity (amplitudes 0 to 32767 become 0 to 127), P5 the key; one second
// is one quarter note of 480 ticks.
#pragma once

#include <cstdint>

#include "base/error_code.h"
#include "base/output_buffer.h"

namespace korvo {

struct EventList;
struct Messages;

// Turns the events, of which there is at least one and no rests, into note-ons and note-offs in the
// order of the track, prints the listing and counts the bytes of the track's events. Error 32.
ErrorCode prepareMidi(EventList &list, Messages &messages, std::uint32_t &byteCount);

// Writes header and tracks for what has been prepared.
void MidiWriter(const EventList &list, OutputBuffer &output, std::uint32_t byteCount);

// The length of a variable-length quantity, and the quantity itself: seven bits a byte, the highest
// first, bit 7 set on all but the last. Writing it gives the end of what is written.
inline constexpr int kLongestQuantity = 10;
int variableLength(std::uint64_t quantity);
char *writeVariableLength(char *out, std::uint64_t quantity);

}  // namespace korvo
