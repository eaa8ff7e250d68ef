// Where text comes from: from a position in the line that parsers see back to the composer's own
// files, through the macros, constants and includes that brought it there.
//
// Nothing is worked out before a message asks. What is kept for it: where a new stretch of the
// joined text begins, where the present line begins in it, and what has been replaced in the line.
// When there is no memory for that, messages have no place, and the run goes on.
#pragma once

#include <cstdint>
#include <string_view>

#include "korvo/korvo.h"

namespace korvo {

inline constexpr int kMaxFiles = 12;        // texts in a run, the main input included
inline constexpr int kFileNameBytes = 256;  // of an include
// Stretches that are kept. A text that has more was made to have them.
inline constexpr std::uint32_t kMaxStretches = 65536;
// Replacements that are kept of a line.
inline constexpr std::uint32_t kMaxReplacements = 8192;

// A place without a width. Line 0: none.
struct Spot {
  int file = 0;
  std::int64_t line = 0;
  std::int32_t column = 0;
};

// Text of one file that stands in the joined text without a gap.
struct Stretch {
  std::int64_t begin;  // byte of the joined text
  Spot spot;           // where that byte stands in its file
};

struct SourceMap {
  const char *mainName = "";                   // of the first text
  char names[kMaxFiles][kFileNameBytes] = {};  // of the others
  int fileCount = 0;
  Stretch *stretches = nullptr;
  std::uint32_t count = 0;
  std::uint32_t capacity = 0;
  bool complete = true;  // nothing had to be left out
};

// A file that takes part; its number. The name of the first one has to last as long as the map.
int addFile(SourceMap &map, const char *name);

// From byte `begin` of the joined text on it is the text at `spot`.
void beginStretch(SourceMap &map, std::int64_t begin, const Spot &spot);

void freeSourceMap(SourceMap &map);

// Where a line stands in the joined text.
struct LineOrigin {
  std::int64_t begin = 0;     // its first byte
  std::int64_t length = 0;    // bytes, its line feed included
  std::uint32_t stretch = 0;  // the one that its first byte lies in
  Spot spot;                  // of its first byte
  bool endsLine = false;      // a line feed closes it
};

// Moves on to the next line, `length` bytes long.
void nextLine(LineOrigin &origin, const SourceMap &map, std::int64_t length, bool endsLine);

// The text of a definition that replaces a name.
struct BodyOrigin {
  Spot spot;              // of its first character
  std::string_view text;  // line ends inside it are line feeds
};

// What took the place of a reference. References inside a macro's body are replaced there before
// the body goes into the line: they stand before it in the list, with a greater depth.
struct Replacement {
  std::int32_t from = 0;      // where it begins
  std::int32_t to = 0;        // where what it replaced ended
  std::int32_t inserted = 0;  // its length
  std::int32_t depth = 1;     // 1 in the line, more in a body
  std::uint32_t inner = 0;    // the first of the replacements inside its body
  BodyOrigin body;            // line 0: it has no definition (an equation, an argument)
  bool whole = false;         // the text of the definition is meant as a whole
};

struct ReplacementList {
  Replacement *items = nullptr;
  std::uint32_t count = 0;
  std::uint32_t capacity = 0;
  bool complete = true;
};

void addReplacement(ReplacementList &list, const Replacement &replacement);

// Begins a line: nothing in it has been replaced yet.
void clearReplacements(ReplacementList &list);

// Forgets the definitions, one of which is about to go; the references stay known.
void forgetBodies(ReplacementList &list);
void freeReplacements(ReplacementList &list);

// Whether the line stands in its file as it is: all of it in one stretch, nothing replaced. Of a
// definition whose text is not made of such lines nobody could say where a character of it stands.
bool isPlain(const SourceMap &map, const LineOrigin &line, const ReplacementList &replacements);

// What a range of the present line comes from.
struct Origin {
  Place place;  // in the composer's text; of what a macro or constant brought, the reference
  Place body;   // then, in the definition that brought it; otherwise line 0
};

Origin originOf(const SourceMap &map, const LineOrigin &line, const ReplacementList &replacements,
                std::int32_t from, std::int32_t to);

// The spot of one position of the present line. Line 0 when it is not known.
Spot spotOf(const SourceMap &map, const LineOrigin &line, const ReplacementList &replacements,
            std::int32_t position);

// What messages call a file.
const char *fileName(const SourceMap &map, int file);

// A place at a spot, `width` columns wide.
Place placeAt(const SourceMap &map, const Spot &spot, std::int32_t width);

}  // namespace korvo
