// The Standard MIDI File, format 1: a header, a conductor track, and a note track with the events
// of one block. P4 is the velocity (amplitudes 0 to 32767 become 0 to 127), P5 the key; one second
// is one quarter note of 480 ticks.
#pragma once

#include <cmath>
#include <cstdint>

#include "base/error_code.h"
#include "base/output_buffer.h"
#include "ddf/event_list.h"

namespace korvo {

struct Messages;

// What stands in the track: where a note begins or ends, and how.
struct Note {
  bool isOn;
  float start;  // seconds
  float duration;
  float velocity;
  float key;
};

// The end of an event: the moment it is sorted by, the event's place in the list and its number.
struct NoteOff {
  float moment;
  std::uint32_t position;
  std::uint32_t event;
};

// What is known of a note track before it is written.
struct MidiTrack {
  NoteOff *noteOffs = nullptr;  // one for each event of the list, in the order of the track
  float latestStart = 0.0F;     // seconds; where an event stands whose start is not a number
  std::uint32_t byteCount = 0;  // of the notes
  double end = 0.0;             // seconds, the latest end; a note-off lasts as long as its note
};

// The note-on and the note-off of an event whose values have been scaled.
Note noteOnOf(const EventList &list, const EventRecord &event);
Note noteOffOf(const EventList &list, const EventRecord &event);

// Hands every note-on and note-off to `visit`, in the order of the track.
template <typename Visit>
void forEachNote(const EventList &list, const MidiTrack &track, Visit visit) {
  const NoteOff *off = track.noteOffs;
  const NoteOff *end = off + list.count;
  forEachEvent(list, [&](const EventRecord &event) {
    float moment = std::isnan(event.start) ? track.latestStart : event.start;
    for (; off != end && off->moment < moment; ++off) {
      visit(noteOffOf(list, eventAt(list, off->event)));
    }
    visit(noteOnOf(list, event));
  });
  for (; off != end; ++off) {
    visit(noteOffOf(list, eventAt(list, off->event)));
  }
}

// Scales the values of the events, of which there is at least one and no rests, to what MIDI has
// room for, finds the note-offs, prints the listing and counts the bytes of the track. Error 32.
ErrorCode prepareMidi(EventList &list, Messages &messages, MidiTrack &track);

// Writes header and tracks for what has been prepared.
void MidiWriter(const EventList &list, const MidiTrack &track, OutputBuffer &output);

// Releases what has been prepared.
void freeMidiTrack(MidiTrack &track);

// The length of a variable-length quantity, and the quantity itself: seven bits a byte, the highest
// first, bit 7 set on all but the last. Writing it gives the end of what is written.
inline constexpr int kLongestQuantity = 10;
int variableLength(std::uint64_t quantity);
char *writeVariableLength(char *out, std::uint64_t quantity);

}  // namespace korvo
