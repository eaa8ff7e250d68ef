// Every sounding event is a note-on, and gets a note-off at its end. In the track a note-off stands
// behind everything that starts no later than it, so also behind a note-on at the same moment;
// among note-offs of one moment the one whose note began first comes first. That is an order by
// time, and it is made by sorting, however long notes overlap.
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
constexpr float kNoteOffAmplitude = 15480.47265625F;   // becomes velocity 60 in the listing
constexpr float kKeys = 128.0F;
constexpr float kDefaultVelocity = 64.0F;  // of a block without P4
constexpr float kNoteOffVelocity = 60.0F;  // of its note-offs, in the listing
constexpr float kDefaultKey = 60.0F;       // of a block without P5
constexpr std::uint32_t kNoteBytes = 3;    // of a note event behind its delta
constexpr char kEndOfTrack[] = {'\x00', '\xff', '\x2f', '\x00'};

// A note-off to be put into the list: the moment it is sorted by, and its event.
struct NoteOff {
  float moment;
  std::uint32_t event;
};

std::uint64_t toTicks(float seconds) {
  return toUint64(static_cast<double>(seconds * kTicksPerSecond));
}

// The P4 and P5 of an event, or what stands for them in a block that has none.
float velocityOf(const EventList &list, const EventRecord &event) {
  return list.parameters >= 1 ? valuesOf(event)[0]
         : event.flag == 1    ? kDefaultVelocity
                              : kNoteOffVelocity;
}
float keyOf(const EventList &list, const EventRecord &event) {
  return list.parameters >= 2 ? valuesOf(event)[1] : kDefaultKey;
}

// Brings amplitude and key to what MIDI has room for.
void scaleValues(EventList &list, EventRecord &event) {
  float *values = valuesOf(event);
  if (list.parameters >= 1) {
    values[0] = static_cast<float>(static_cast<double>(values[0]) * kVelocityFactor);
  }
  if (list.parameters >= 2) {
    values[1] = remainderOf(values[1], kKeys);
  }
}

// A note-off for `noteOn`, made from its scaled values.
std::uint32_t makeNoteOff(EventList &list, std::uint32_t noteOn) {
  std::uint32_t made = makeEvent(list);
  if (made == kNoEvent) {
    return kNoEvent;
  }
  EventRecord &off = eventAt(list, made);
  const EventRecord &on = eventAt(list, noteOn);
  std::memcpy(&off, &on, list.stride);
  off.flag = 0;
  off.start = on.start + on.duration;
  if (list.parameters >= 1) {
    valuesOf(off)[0] = kNoteOffAmplitude;
  }
  scaleValues(list, off);
  return made;
}

// The latest moment at which an event of the list starts.
float latestStart(const EventList &list) {
  float latest = 0.0F;
  forEachEvent(list, [&latest](const EventRecord &event) {
    latest = std::isnan(event.start) ? latest : std::max(latest, event.start);
  });
  return latest;
}

// Makes note-ons of all events, and a note-off for each, in the order of the list. A note-off whose
// moment is not a number stands behind everything that was there before it: it sorts with the
// latest moment so far.
ErrorCode makeNotes(EventList &list, float latest, NoteOff *noteOffs) {
  std::uint32_t event = firstEvent(list);
  for (std::uint32_t i = 0; i < list.count; ++i) {
    EventRecord &on = eventAt(list, event);
    on.flag = 1;
    scaleValues(list, on);
    std::uint32_t off = makeNoteOff(list, event);
    if (off == kNoEvent) {
      return kOutOfMemory;
    }
    float end = eventAt(list, off).start;
    latest = std::isnan(end) ? latest : std::max(latest, end);
    noteOffs[i] = {std::isnan(end) ? latest : end, off};
    event = on.next;
  }
  return kOk;
}

// Sorts the note-offs into the list. They were numbered as they were made, so equal moments keep
// the order of their notes.
void mergeNoteOffs(EventList &list, float latest, NoteOff *noteOffs) {
  std::uint32_t notes = list.count;
  std::sort(noteOffs, noteOffs + notes, [](const NoteOff &a, const NoteOff &b) {
    return a.moment < b.moment || (a.moment == b.moment && a.event < b.event);
  });
  std::uint32_t on = firstEvent(list);
  std::uint32_t off = 0;
  list.last = kNoEvent;
  list.count = 0;
  for (std::uint32_t i = 0; i < notes; ++i) {
    float start = eventAt(list, on).start;
    float moment = std::isnan(start) ? latest : start;
    while (off < notes && noteOffs[off].moment < moment) {
      appendEvent(list, noteOffs[off++].event);
    }
    std::uint32_t next = eventAt(list, on).next;
    appendEvent(list, on);
    on = next;
  }
  while (off < notes) {
    appendEvent(list, noteOffs[off++].event);
  }
}

ErrorCode insertNoteOffs(EventList &list) {
  auto *noteOffs =
      static_cast<NoteOff *>(std::malloc(sizeof(NoteOff) * static_cast<std::size_t>(list.count)));
  if (noteOffs == nullptr) {
    return kOutOfMemory;
  }
  float latest = latestStart(list);
  ErrorCode error = makeNotes(list, latest, noteOffs);
  if (error == kOk) {
    mergeNoteOffs(list, latest, noteOffs);
  }
  std::free(noteOffs);
  return error;
}

// Says where and how a note begins or ends. There are two such lines for every note, so they are
// not composed from a format.
void listNote(const EventList &list, const EventRecord &event, Messages &messages) {
  char line[4 * kLongestNumber + 32];
  char *out = line;
  auto put = [&out](std::string_view text) { out = std::copy(text.begin(), text.end(), out); };
  auto putReal = [&out](float value) { out = writeFixed(out, static_cast<double>(value), 7, 2); };
  put("\n");
  putReal(event.start);
  put("\t");
  putReal(event.duration);
  put(event.flag == 1 ? "\tON\tN: " : "\tOFF\tN: ");
  putReal(keyOf(list, event));
  put("\tV: ");
  putReal(velocityOf(list, event));
  put("\t");
  composeBytes(messages, {line, static_cast<std::size_t>(out - line)});
  tell(messages, {});
}

// Prints the listing and counts the bytes that the events will take.
std::uint32_t listNotes(const EventList &list, Messages &messages) {
  std::uint32_t bytes = 0;
  float previous = 0.0F;
  forEachEvent(list, [&](const EventRecord &event) {
    bytes += kNoteBytes;
    bytes += static_cast<std::uint32_t>(variableLength(toTicks(event.start - previous)));
    listNote(list, event, messages);
    previous = event.start;
  });
  return bytes;
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

void writeNote(OutputBuffer &output, const EventList &list, const EventRecord &event,
               float previous) {
  char *out = room(output, kLongestQuantity + kNoteBytes);
  out = writeVariableLength(out, toTicks(event.start - previous));
  bool on = event.flag == 1;
  *out++ = on ? '\x90' : '\x80';
  *out++ = lowByte(keyOf(list, event));
  *out++ = on ? lowByte(velocityOf(list, event)) : '\x40';
  taken(output, out);
}

void writeNoteTrack(OutputBuffer &output, const EventList &list, std::uint32_t byteCount) {
  writeChunkHeader(output, byteCount + static_cast<std::uint32_t>(sizeof kEndOfTrack));
  float previous = 0.0F;
  forEachEvent(list, [&](const EventRecord &event) {
    writeNote(output, list, event, previous);
    previous = event.start;
  });
  append(output, kEndOfTrack, sizeof kEndOfTrack);
}

}  // namespace

ErrorCode prepareMidi(EventList &list, Messages &messages, std::uint32_t &byteCount) {
  RETURN_IF_ERROR(insertNoteOffs(list));
  byteCount = listNotes(list, messages);
  return kOk;
}

void MidiWriter(const EventList &list, OutputBuffer &output, std::uint32_t byteCount) {
  const EventRecord &last = eventAt(list, list.last);
  writeHeader(output);
  writeConductorTrack(output, last.start + last.duration + 1.0F);
  writeNoteTrack(output, list, byteCount);
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
