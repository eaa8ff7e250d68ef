// Every sounding event is a note-on, and gets a note-off at its end. In the track a note-off stands
// behind everything that starts no later than it, so also behind a note-on at the same moment;
// among note-offs of one moment the one whose note began first comes first. That is an order by
// time, and it is made by sorting, however long notes overlap. A note-off is no event of its own: it
// is known by the event that it ends.
#include "output/midi_writer.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "base/arithmetic.h"
#include "base/messages.h"
#include "base/number_format.h"
#include "ddf/event_list.h"

namespace korvo {

namespace {

constexpr float kTicksPerSecond = 480.0F;
constexpr double kVelocityFactor = 0.003875850703452;  // 127 / 32767
constexpr float kNoteOffAmplitude =
    static_cast<float>(static_cast<double>(15480.47265625F) * kVelocityFactor);
constexpr float kKeys = 128.0F;
constexpr float kDefaultVelocity = 64.0F;  // of a block without P4
constexpr float kNoteOffVelocity = 60.0F;  // of its note-offs, in the listing
constexpr float kDefaultKey = 60.0F;       // of a block without P5
constexpr std::uint32_t kNoteBytes = 3;    // of a note event behind its delta
constexpr char kEndOfTrack[] = {'\x00', '\xff', '\x2f', '\x00'};

std::uint64_t toTicks(float seconds) {
  return toUint64(static_cast<double>(seconds * kTicksPerSecond));
}

// Brings amplitude and key to what MIDI has room for.
void scaleValues(const EventList &list, EventRecord &event) {
  float *values = valuesOf(event);
  if (list.parameters >= 1) {
    values[0] = static_cast<float>(static_cast<double>(values[0]) * kVelocityFactor);
  }
  if (list.parameters >= 2) {
    values[1] = remainderOf(values[1], kKeys);
  }
}

// The latest moment at which an event of the list starts.
float latestStart(const EventList &list) {
  float latest = 0.0F;
  forEachEvent(list, [&latest](const EventRecord &event) {
    latest = std::isnan(event.start) ? latest : std::max(latest, event.start);
  });
  return latest;
}

// Scales the values of all events and notes where each ends, in the order of the list. False when
// some moment is not a number.
bool findNoteOffs(EventList &list, NoteOff *noteOffs) {
  bool allNumbers = true;
  std::uint32_t event = firstEvent(list);
  for (std::uint32_t i = 0; i < list.count; ++i) {
    EventRecord &record = eventAt(list, event);
    scaleValues(list, record);
    float end = record.start + record.duration;
    allNumbers = allNumbers && !std::isnan(end);
    noteOffs[i] = {end, i, event};
    event = record.next;
  }
  return allNumbers;
}

// A note-off whose moment is not a number stands behind everything that was there before it: it
// sorts with the latest moment so far.
void placeWithoutMoment(NoteOff *noteOffs, std::uint32_t count, float latest) {
  for (std::uint32_t i = 0; i < count; ++i) {
    float &moment = noteOffs[i].moment;
    latest = std::isnan(moment) ? latest : std::max(latest, moment);
    moment = std::isnan(moment) ? latest : moment;
  }
}

// Equal moments keep the order of their notes.
void sortNoteOffs(NoteOff *noteOffs, std::uint32_t count) {
  std::sort(noteOffs, noteOffs + count, [](const NoteOff &a, const NoteOff &b) {
    return a.moment < b.moment || (a.moment == b.moment && a.position < b.position);
  });
}

// Says where and how a note begins or ends. There are two such lines for every note, so they are
// not composed from a format.
void listNote(const Note &note, Messages &messages) {
  char line[4 * kLongestNumber + 32];
  char *out = line;
  auto put = [&out](std::string_view text) { out = std::copy(text.begin(), text.end(), out); };
  auto putReal = [&out](float value) { out = writeFixed(out, value, 7, 2); };
  put("\n");
  putReal(note.start);
  put("\t");
  putReal(note.duration);
  put(note.isOn ? "\tON\tN: " : "\tOFF\tN: ");
  putReal(note.key);
  put("\tV: ");
  putReal(note.velocity);
  put("\t");
  composeBytes(messages, {line, static_cast<std::size_t>(out - line)});
  tell(messages, {});
}

// Prints the listing, and counts the bytes that the notes will take and what they come to.
void listNotes(const EventList &list, Messages &messages, MidiTrack &track) {
  float previous = 0.0F;
  forEachNote(list, track, [&](const Note &note) {
    track.byteCount += kNoteBytes;
    track.byteCount += static_cast<std::uint32_t>(variableLength(toTicks(note.start - previous)));
    track.end = std::max(track.end, static_cast<double>(note.start + note.duration));
    listNote(note, messages);
    previous = note.start;
  });
}

void writeChunkHeader(OutputBuffer &output, std::uint32_t length) {
  append(output, "MTrk", 4);
  for (int shift = 24; shift >= 0; shift -= 8) {
    char byte = static_cast<char>(length >> shift);
    append(output, &byte, 1);
  }
}

// Two tracks, 480 ticks to the quarter note.
void writeHeader(OutputBuffer &output) {
  constexpr char kHeader[] = {'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 1, 0, 2, 0x01, '\xe0'};
  append(output, kHeader, sizeof kHeader);
}

// Time signature 4/4, 60 quarter notes a minute, and the end of the track.
void writeConductorTrack(OutputBuffer &output, float endTime) {
  constexpr char kSignatureAndTempo[] = {0, '\xff', 0x58, 4, 4,    2,    0x18, 8,
                                         0, '\xff', 0x51, 3, 0x0f, 0x42, 0x40};
  std::uint64_t ticks = toTicks(endTime);
  auto length = static_cast<std::uint32_t>(sizeof kSignatureAndTempo + sizeof kEndOfTrack - 1);
  writeChunkHeader(output, length + static_cast<std::uint32_t>(variableLength(ticks)));
  append(output, kSignatureAndTempo, sizeof kSignatureAndTempo);
  taken(output, writeVariableLength(room(output, kLongestQuantity), ticks));
  append(output, kEndOfTrack + 1, sizeof kEndOfTrack - 1);
}

// The low byte of a number, its fraction dropped.
char lowByte(float value) { return static_cast<char>(toInt64(static_cast<double>(value))); }

void writeNote(OutputBuffer &output, const Note &note, float previous) {
  char *out = room(output, kLongestQuantity + kNoteBytes);
  out = writeVariableLength(out, toTicks(note.start - previous));
  *out++ = note.isOn ? '\x90' : '\x80';
  *out++ = lowByte(note.key);
  *out++ = note.isOn ? lowByte(note.velocity) : '\x40';
  taken(output, out);
}

void writeNoteTrack(OutputBuffer &output, const EventList &list, const MidiTrack &track) {
  writeChunkHeader(output, track.byteCount + static_cast<std::uint32_t>(sizeof kEndOfTrack));
  float previous = 0.0F;
  forEachNote(list, track, [&](const Note &note) {
    writeNote(output, note, previous);
    previous = note.start;
  });
  append(output, kEndOfTrack, sizeof kEndOfTrack);
}

}  // namespace

Note noteOnOf(const EventList &list, const EventRecord &event) {
  const float *values = valuesOf(event);
  return {true, event.start, event.duration, list.parameters >= 1 ? values[0] : kDefaultVelocity,
          list.parameters >= 2 ? values[1] : kDefaultKey};
}

// Its key is brought to its range once more; it may have been left at the end of it.
Note noteOffOf(const EventList &list, const EventRecord &event) {
  return {false, event.start + event.duration, event.duration,
          list.parameters >= 1 ? kNoteOffAmplitude : kNoteOffVelocity,
          list.parameters >= 2 ? remainderOf(valuesOf(event)[1], kKeys) : kDefaultKey};
}

ErrorCode prepareMidi(EventList &list, Messages &messages, MidiTrack &track) {
  track.noteOffs =
      static_cast<NoteOff *>(std::malloc(sizeof(NoteOff) * static_cast<std::size_t>(list.count)));
  if (track.noteOffs == nullptr) {
    return kOutOfMemory;
  }
  if (!findNoteOffs(list, track.noteOffs)) {
    track.latestStart = latestStart(list);
    placeWithoutMoment(track.noteOffs, list.count, track.latestStart);
  }
  sortNoteOffs(track.noteOffs, list.count);
  listNotes(list, messages, track);
  return kOk;
}

void MidiWriter(const EventList &list, const MidiTrack &track, OutputBuffer &output) {
  Note last = noteOffOf(list, eventAt(list, track.noteOffs[list.count - 1].event));
  writeHeader(output);
  writeConductorTrack(output, last.start + last.duration + 1.0F);
  writeNoteTrack(output, list, track);
}

void freeMidiTrack(MidiTrack &track) {
  std::free(track.noteOffs);
  track.noteOffs = nullptr;
}

int variableLength(std::uint64_t quantity) {
  int bytes = 1;
  while (quantity >>= 7) {
    ++bytes;
  }
  return bytes;
}

char *writeVariableLength(char *out, std::uint64_t quantity) {
  for (int group = variableLength(quantity) - 1; group >= 0; --group) {
    auto bits = static_cast<unsigned>(quantity >> (7 * group) & 0x7FU);
    *out++ = static_cast<char>(group > 0 ? bits | 0x80U : bits);
  }
  return out;
}

}  // namespace korvo
