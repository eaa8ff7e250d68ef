// A row for each mode. Semitones count from the C that score files call octave 4; a MIDI file
// counts from an octave below, so pitches are 12 higher there.
#include "ddf/input_modes.h"

#include <cmath>
#include <cstring>

#include "base/arithmetic.h"
#include "base/characters.h"
#include "base/mathematics.h"
#include "base/numbers.h"
#include "ddf/generation.h"
#include "reader/lexical.h"

namespace korvo {

namespace {

constexpr float kLoudest = 96.0F;  // decibels
constexpr int kHighestOctave = 9;
constexpr float kRest = -1.0F;    // below 0, which value_steps.cc takes for a rest
constexpr float kOctave = 12.0F;  // semitones

bool isSign(char c) { return c == '+' || c == '-'; }
bool isLastValue(char c) { return c == 'z' || c == 'Z'; }

bool beginsReal(char c) { return isSign(c) || c == '.' || isDigit(c) || isLastValue(c); }
bool beginsInteger(char c) { return isSign(c) || isDigit(c); }
bool beginsNote(char c) { return isLetter(c) || isDigit(c); }
bool beginsPitch(char c) { return isSign(c) || isDigit(c) || isLastValue(c); }

bool readReal(Generation & /*making*/, const char *text, std::int32_t &position, float &value) {
  return read_float(value, text, position);
}

bool readInteger(Generation & /*making*/, const char *text, std::int32_t &position, float &value) {
  if (!read_float(value, text, position)) {
    return false;
  }
  value = roundHalfUp(value);
  return true;
}

// Decibels become the amplitude they stand for, both as whole numbers: 96 gives 63095.
bool readDecibels(Generation & /*making*/, const char *text, std::int32_t &position, float &value) {
  float decibels = 0.0F;
  if (!read_float(decibels, text, position) || decibels < 0.0F || decibels > kLoudest) {
    return false;
  }
  value = static_cast<float>(
      std::trunc(exponential(std::trunc(static_cast<double>(decibels)) * kDecibelExponent)));
  return true;
}

// One note length with its dots, each of which adds half of what was added last: 4 is a beat, "4."
// one and a half.
bool readNoteLength(const char *text, std::int32_t &position, float &beats) {
  int denominator = 0;
  if (!read_short(denominator, text, position) || denominator == 0) {
    return false;
  }
  float part = 4.0F / static_cast<float>(denominator);
  beats = part;
  for (; text[position] == '.'; ++position) {
    part /= 2.0F;
    beats += part;
  }
  return true;
}

// A note length and what is tied to it: "," directly behind a length adds the next one. The sign of
// the first length is that of the sum.
bool readRhythm(Generation & /*making*/, const char *text, std::int32_t &position, float &value) {
  float sum = 0.0F;
  if (!readNoteLength(text, position, sum)) {
    return false;
  }
  bool negative = sum < 0.0F;
  sum = std::fabs(sum);
  while (text[position] == ',') {
    ++position;
    float tied = 0.0F;
    if (!readNoteLength(text, position, tied)) {
      return false;
    }
    sum += tied;
  }
  value = negative ? -sum : sum;
  return true;
}

// The semitone of a note letter in its octave; false for a letter that names no note.
bool noteSemitone(char letter, float &semitone) {
  constexpr char kNotes[] = "cdefgab";
  constexpr float kSemitones[] = {0.0F, 2.0F, 4.0F, 5.0F, 7.0F, 9.0F, 11.0F};
  const char *found = letter == '\0' ? nullptr : std::strchr(kNotes, letter);
  if (found == nullptr) {
    return false;
  }
  semitone = kSemitones[found - kNotes];
  return true;
}

// The marks behind a note letter. Quarter tones only where the mode's name ended in "x".
bool readNoteMarks(const Generation &making, const char *text, std::int32_t &position,
                   float &semitone) {
  for (;; ++position) {
    switch (text[position]) {
      case 's':
        semitone += 1.0F;
        break;
      case 'f':
        semitone -= 1.0F;
        break;
      case 'n':
        break;
      case '+':
      case '-':
        if (!making.global.name.quarterTones) {
          ++position;
          return false;
        }
        semitone += text[position] == '+' ? 0.5F : -0.5F;
        break;
      default:
        return true;
    }
  }
}

bool readNote(Generation &making, const char *text, std::int32_t &position, float &value) {
  skipBlanksInLine(text, position);
  if (text[position] == 'r') {
    ++position;
    value = kRest;
    return true;
  }
  float semitone = 0.0F;
  if (!noteSemitone(text[position], semitone)) {
    return false;
  }
  ++position;
  if (!readNoteMarks(making, text, position, semitone)) {
    return false;
  }
  if (isDigit(text[position])) {
    int octave = 0;
    if (!read_short(octave, text, position) || octave > kHighestOctave) {
      return false;
    }
    making.pfield.noteOctave = octave;
  }
  value = semitone + static_cast<float>(making.pfield.noteOctave) * kOctave +
          (making.midi ? kOctave : 0.0F);
  return true;
}

// octave.pitch-class: 8.00 is 48, 8.01 is 49. The octave counts by its magnitude; in a score a
// negative one negates the result.
bool readPitch(Generation &making, const char *text, std::int32_t &position, float &value) {
  int octave = 0;
  if (!read_short(octave, text, position)) {
    return false;
  }
  float fraction = 0.0F;
  if (text[position] == '.' && !read_float(fraction, text, position)) {
    return false;
  }
  float magnitude = static_cast<float>(octave < 0 ? -octave : octave);
  value = fraction * 100.0F + magnitude * kOctave - 48.0F;
  if (making.midi) {
    value += kOctave;
  } else if (octave < 0) {
    value = -value;
  }
  return true;
}

// clang-format off
constexpr InputMode kModes[] = {
    {kRE, beginsReal, readReal, true, true},
    {kIN, beginsInteger, readInteger, true, true},
    {kRH, beginsReal, readRhythm, true, false},
    {kDB, beginsReal, readDecibels, false, false},
    {kNO, beginsNote, readNote, false, false},
    {kOP, beginsPitch, readPitch, false, false},
};
// clang-format on

}  // namespace

const InputMode *findInputMode(CommandCode code) {
  for (const InputMode &mode : kModes) {
    if (mode.code == code) {
      return &mode;
    }
  }
  return nullptr;
}

bool readValue(Generation &making, const char *text, std::int32_t &position, float &value) {
  if (isLastValue(text[position])) {
    ++position;
    value = making.pfield.lastValue;
    return true;
  }
  return findInputMode(making.pfield.inputMode)->read(making, text, position, value);
}

}  // namespace korvo
