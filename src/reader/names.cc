// The lookup is a cascade: the first letter only says where it is entered, and a second letter that
// fits none of that letter's names is tried on the groups that follow. So "dx" is EX and "sa" is
// RA; pieces rely on it, and it is kept.
#include "reader/names.h"

#include <cstring>
#include <iterator>

#include "base/characters.h"
#include "base/numbers.h"
#include "reader/lexical.h"

namespace korvo {

namespace {

struct CascadeRow {
  char first;
  char second;
  CommandCode code;
};

// clang-format off
constexpr CascadeRow kCascade[] = {
    {'d', 'v', kDV}, {'d', 'b', kDB},
    {'e', 'x', kEX},
    {'h', 'o', kHO}, {'h', 'z', kHZ},
    {'i', 'n', kIN},
    {'m', 's', kMS}, {'m', 'o', kMO},
    {'n', 'o', kNO},
    {'o', 'p', kOP}, {'o', 'd', kOD},
    {'p', 'f', kPF},
    {'s', '2', kS2}, {'s', 'r', kSR}, {'s', 'e', kSE},
    {'r', 'a', kRA}, {'r', 'd', kRD}, {'r', 'e', kRE},
    {'r', 'h', kRH}, {'r', 's', kRS}, {'r', 'w', kRW},
    {'t', 'r', kTR}, {'t', 'e', kTE},
    {'x', 'x', kXX},
    {'b', 'n', kBN},
};
// clang-format on

struct BlockName {
  char first;
  const char *seconds;
};

constexpr BlockName kBlockNames[] = {
    {'d', "bv"}, {'e', "x"}, {'h', "o"},      {'n', "o"},  {'i', "n"},
    {'m', "os"}, {'o', "p"}, {'r', "adehsw"}, {'s', "e2"}, {'p', "f"},
};

constexpr unsigned kHighestNameNumber = 7;

// The number that may follow RE and BN directly.
bool takeNameNumber(const char *text, std::int32_t &position, int absent, int &number) {
  number = absent;
  if (!isDigit(text[position])) {
    return true;
  }
  unsigned given = 0;
  bool readable = read_ushort(given, text, position) && given <= kHighestNameNumber;
  while (isDigit(text[position])) {
    ++position;
  }
  if (readable) {
    number = static_cast<int>(given);
  }
  return readable;
}

// What belongs to a name beyond its two letters.
bool takeNameTail(const char *text, std::int32_t &position, NameLookup &name) {
  switch (name.code) {
    case kRE:
      return takeNameNumber(text, position, 3, name.precision);
    case kBN:
      return takeNameNumber(text, position, 4, name.fftIndex);
    case kNO:
    case kOP:
      name.quarterTones = toLower(text[position]) == 'x';
      position += name.quarterTones ? 1 : 0;
      return true;
    default:
      return true;
  }
}

}  // namespace

bool lookupDdfName(const char *text, std::int32_t &position, NameLookup &name) {
  char first = toLower(text[position]);
  if (first == '>') {
    name.code = kLiteralLine;
    ++position;
    return true;
  }
  if (first == '#' || first == '$') {
    ++position;
    name.code = toLower(text[position]) == 'c' ? kConstWord : kMacroWord;
    return true;
  }
  const CascadeRow *row = std::begin(kCascade);
  while (row != std::end(kCascade) && row->first != first) {
    ++row;
  }
  if (row == std::end(kCascade)) {
    return false;
  }
  char second = toLower(text[position + 1]);
  position += second == '\0' ? 1 : 2;
  for (; row != std::end(kCascade); ++row) {
    if (row->second == second) {
      name.code = row->code;
      return takeNameTail(text, position, name);
    }
  }
  return true;
}

bool isBlockName(const char *text, std::int32_t position) {
  char first = toLower(text[position]);
  if (first == '#') {
    return true;
  }
  char second = first == '\0' ? '\0' : toLower(text[position + 1]);
  if (second == '\0') {
    return false;
  }
  for (const BlockName &name : kBlockNames) {
    if (name.first == first) {
      return std::strchr(name.seconds, second) != nullptr;
    }
  }
  return false;
}

bool isPfieldName(const char *text, std::int32_t position) {
  if (toLower(text[position]) == 'd' && toLower(text[position + 1]) == 'x') {
    std::int32_t behind = position + 2;
    skipBlanksInLine(text, behind);
    return text[behind] == '(';
  }
  return isBlockName(text, position);
}

}  // namespace korvo
