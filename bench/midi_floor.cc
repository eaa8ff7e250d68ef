// The floor of the MIDI run: the draws of its piece, the file to the byte, and on standard error the
// lines of the listing to the byte, from the first line feed to the last tab. Only what stands
// before and behind the listing is left out: the banner, the notes on spans, the summary.
//
//   midi_floor EVENTS OUTFILE 2> LISTING
#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "floor.h"

namespace {

using namespace bench;

constexpr float kTicksPerSecond = 480.0F;
constexpr double kVelocityFactor = 0.003875850703452;  // 127 / 32767

struct Note {
  float start;
  float duration;
  float velocity;
  float key;
};

// The end of a note and its number, in one number that sorts by both: floats that are not negative
// have the order of their bits.
struct NoteOff {
  std::uint64_t key;

  NoteOff(float end, std::size_t note)
      : key(static_cast<std::uint64_t>(std::bit_cast<std::uint32_t>(end)) << 32 | note) {}
  float end() const { return std::bit_cast<float>(static_cast<std::uint32_t>(key >> 32)); }
  std::size_t note() const { return static_cast<std::uint32_t>(key); }
};

std::vector<Note> drawNotes(std::size_t count) {
  Draws draws;
  std::vector<Note> notes(count);
  float start = 0.0F;
  for (Note &note : notes) {
    note.start = start;
    start += drawRange(draws, 0.005F, 0.015F, 1);
  }
  for (Note &note : notes) {
    note.duration = drawRange(draws, 1000.9F, 1001.1F, 2) - 1000.0F;
  }
  for (Note &note : notes) {
    double amplitude = static_cast<double>(drawRange(draws, 0.0F, 32767.0F, 1));
    note.velocity = static_cast<float>(amplitude * kVelocityFactor);
  }
  for (Note &note : notes) {
    note.key = drawRange(draws, 20.0F, 100.0F, 1);
  }
  return notes;
}

// Notes end nearly in the order in which they begin: each end goes but a few places back.
std::vector<NoteOff> sortEnds(const std::vector<Note> &notes) {
  std::vector<NoteOff> ends;
  ends.reserve(notes.size());
  for (std::size_t i = 0; i < notes.size(); ++i) {
    NoteOff off(notes[i].start + notes[i].duration, i);
    ends.push_back(off);
    std::size_t place = i;
    for (; place > 0 && ends[place - 1].key > off.key; --place) {
      ends[place] = ends[place - 1];
    }
    ends[place] = off;
  }
  return ends;
}

// A number with two decimals, seven columns wide.
char *writeNumber(char *out, float value) {
  std::uint32_t hundredths = rounded(value, 100.0);
  out = writeWhole<5>(out, hundredths / 100);
  std::memcpy(out, kZeroBlank[hundredths % 100].data() + 1, 2);
  return out + 2;
}

template <std::size_t size>
char *writeText(char *out, const char (&text)[size]) {
  std::memcpy(out, text, size - 1);
  return out + size - 1;
}

char *writeTicks(char *out, std::uint64_t ticks) {
  int shift = 0;
  while (ticks >> shift > 127) {
    shift += 7;
  }
  for (; shift > 0; shift -= 7) {
    *out++ = static_cast<char>((ticks >> shift & 127) | 128);
  }
  *out++ = static_cast<char>(ticks & 127);
  return out;
}

std::uint64_t toTicks(float seconds) {
  return static_cast<std::uint64_t>(static_cast<std::int64_t>(seconds * kTicksPerSecond));
}

// The listing and the note track, written as the notes come.
struct Track {
  Output &listing;
  char *end;
  float now = 0.0F;

  void event(float moment, float duration, bool on, float key, float velocity) {
    char *line = writeNumber(writeText(listing.line(), "\n"), moment);
    line = writeNumber(writeText(line, "\t"), duration);
    line = on ? writeText(line, "\tON\tN: ") : writeText(line, "\tOFF\tN: ");
    line = writeText(writeNumber(line, key), "\tV: ");
    line = on ? writeNumber(line, velocity) : writeText(line, "  60.00");
    listing.end = writeText(line, "\t");

    end = writeTicks(end, toTicks(moment - now));
    *end++ = static_cast<char>(on ? 0x90 : 0x80);
    *end++ = static_cast<char>(static_cast<int>(key));
    *end++ = static_cast<char>(on ? static_cast<int>(velocity) : 0x40);
    now = moment;
  }
};

// A note-off stands behind every note-on that begins no later. Returns the duration of the note that
// ends last.
float makeTrack(const std::vector<Note> &notes, Track &track) {
  std::vector<NoteOff> ends = sortEnds(notes);
  auto off = ends.begin();
  auto endNote = [&] {
    const Note &note = notes[off->note()];
    track.event(off->end(), note.duration, false, note.key, 0.0F);
    ++off;
  };
  for (const Note &note : notes) {
    while (off->end() < note.start) {
      endNote();
    }
    track.event(note.start, note.duration, true, note.key, note.velocity);
  }
  while (off != ends.end()) {
    endNote();
  }
  return notes[ends.back().note()].duration;
}

char *writeLength(char *out, std::uint32_t length) {
  for (int shift = 24; shift >= 0; shift -= 8) {
    *out++ = static_cast<char>(length >> shift & 255);
  }
  return out;
}

void writeAll(int file, const char *from, const char *end) {
  while (from < end) {
    ssize_t written = write(file, from, static_cast<std::size_t>(end - from));
    if (written < 0) {
      std::exit(1);
    }
    from += written;
  }
}

// Header and conductor track: 480 ticks to the quarter note, 4/4, sixty of them a minute.
char *writeHead(char *out, std::uint64_t ticks) {
  char conductor[32];
  char *end = writeText(conductor,
                        "\x00\xff\x58\x04\x04\x02\x18\x08"
                        "\x00\xff\x51\x03\x0f\x42\x40");
  end = writeText(writeTicks(end, ticks), "\xff\x2f\x00");
  out = writeText(out, "MThd\x00\x00\x00\x06\x00\x01\x00\x02\x01\xe0MTrk");
  out = writeLength(out, static_cast<std::uint32_t>(end - conductor));
  return std::copy(conductor, end, out);
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 3 || std::atol(argv[1]) < 1) {
    return 1;
  }
  std::vector<Note> notes = drawNotes(std::strtoul(argv[1], nullptr, 10));
  constexpr std::size_t kMostEventBytes = 8;
  auto bytes = std::make_unique_for_overwrite<char[]>(2 * notes.size() * kMostEventBytes + 8);
  auto listing = std::make_unique<Output>(STDERR_FILENO);
  Track track{*listing, bytes.get()};
  float lastDuration = makeTrack(notes, track);
  listing->flush();
  track.end = writeText(track.end, "\x00\xff\x2f\x00");

  char head[128];
  char *end = writeHead(head, toTicks(track.now + lastDuration + 1.0F));
  end = writeLength(writeText(end, "MTrk"), static_cast<std::uint32_t>(track.end - bytes.get()));
  int file = create(argv[2]);
  writeAll(file, head, end);
  writeAll(file, bytes.get(), track.end);
  return 0;
}
