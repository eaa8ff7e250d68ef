// The two-letter names: statements, input modes, output kinds and data functions share one code
// space and one lookup.
#pragma once

#include <cstdint>

#include "base/characters.h"

namespace korvo {

enum CommandCode : int {
  kEX = 0,
  kTE = 1,
  kDB = 2,
  kDV = 3,
  kHZ = 4,
  kHO = 5,
  kIN = 6,
  kMO = 7,
  kSE = 9,
  kNO = 10,
  kOP = 11,
  kPF = 12,
  kOD = 13,
  kRE = 14,
  kRH = 15,
  kRA = 16,
  kRD = 17,
  kRS = 18,
  kRW = 19,
  kLiteralLine = 20,  // ">"
  kMacroWord = 21,    // "#" or "$"
  kMS = 22,
  kXX = 23,
  kS2 = 24,
  kConstWord = 25,  // "#" or "$" followed by "c"
  kTR = 26,
  kBN = 27,
  kSR = 28,
};

// What the last name was. The flag and the numbers keep what their name said until that name is
// read again.
struct NameLookup {
  CommandCode code = kRE;
  int precision = 3;          // of RE: its digits, 3 without
  int fftIndex = 4;           // of BN: its digits, 4 without
  bool quarterTones = false;  // of NO and OP: written with a trailing "x"
};

// Looks up the name at the position (no blanks are skipped) and moves the position past it. False
// when no name begins with that letter, or when the number of RE or BN is above 7. A known first
// letter with a second letter that fits nowhere counts as found and leaves the code as it was.
bool lookupDdfName(const char *text, std::int32_t &position, NameLookup &name);

// Whether one of the two names below may begin with this character. Most of what stands in a
// p-field is numbers.
inline bool mayBeginName(char c) { return isLetter(c) || c == '#'; }

// Whether the text at the position begins with a name that may stand in an i-block: a mode, a data
// function, a setting or "#".
bool isBlockName(const char *text, std::int32_t position);

// The same inside a p-field, where "dx" before a "(" is a name as well (of EX). Without the "(" it
// is the note "d" and the repeat sign "x".
bool isPfieldName(const char *text, std::int32_t position);

}  // namespace korvo
