// A position goes back the way the text has come: out of the replacements of the line, the last one
// first, to the line as it was read, and from there by its stretch to a file.
#include "preproc/origins.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "base/growing_array.h"

namespace korvo {

namespace {

// The column that lies so many bytes behind another; of a line of gigabytes the last that there is.
std::int32_t behind(std::int32_t column, std::int64_t bytes) {
  return static_cast<std::int32_t>(
      std::min<std::int64_t>(column + bytes, std::numeric_limits<std::int32_t>::max() - 1));
}

struct Range {
  std::int32_t from;
  std::int32_t to;
};

// The range before a replacement was made. False when it lies in what was inserted: the range is
// then that of the reference.
bool undo(const Replacement &replacement, Range &range) {
  std::int32_t end = replacement.from + replacement.inserted;
  std::int32_t growth = replacement.inserted - (replacement.to - replacement.from);
  if (range.from >= end) {
    range.from -= growth;
    range.to -= growth;
    return true;
  }
  if (range.to <= replacement.from) {
    return true;
  }
  bool inside = range.from >= replacement.from;
  range.from = std::min(range.from, replacement.from);
  range.to = std::max(range.to, end) - growth;
  return !inside;
}

// The spot of a character of a definition's text.
Spot spotInBody(const BodyOrigin &body, std::int32_t offset) {
  Spot spot = body.spot;
  std::string_view before = body.text.substr(0, static_cast<std::size_t>(offset));
  std::size_t lineFeed = before.rfind('\n');
  if (lineFeed == std::string_view::npos) {
    spot.column += offset;
  } else {
    spot.line += std::count(before.begin(), before.end(), '\n');
    spot.column = static_cast<std::int32_t>(before.size() - lineFeed);
  }
  return spot;
}

// Where in a definition the range lies, counted from the beginning of what replacement `index`
// inserted: in that of the innermost reference that has one.
Place bodyPlace(const SourceMap &map, const ReplacementList &list, std::uint32_t index,
                Range range) {
  const Replacement &outer = list.items[index];
  for (std::uint32_t i = index; i-- > outer.inner;) {
    const Replacement &inner = list.items[i];
    if (inner.depth != outer.depth + 1) {
      continue;
    }
    Range inInner = {range.from - inner.from, range.to - inner.from};
    if (!undo(inner, range) && inner.body.spot.line > 0) {
      return bodyPlace(map, list, i, inInner);
    }
  }
  if (outer.body.spot.line == 0) {
    return {};
  }
  std::int32_t length = static_cast<std::int32_t>(outer.body.text.size());
  if (outer.whole) {
    range = {0, length};
  }
  std::int32_t from = std::clamp(range.from, 0, length);
  return placeAt(map, spotInBody(outer.body, from),
                 std::max(1, std::clamp(range.to, 0, length) - from));
}

// The last stretch that begins at or before a byte of the joined text, looked for from `first` on.
std::uint32_t stretchAt(const SourceMap &map, std::uint32_t first, std::int64_t byte) {
  while (first + 1 < map.count && map.stretches[first + 1].begin <= byte) {
    ++first;
  }
  return first;
}

// The spot of a character of the line as it was read.
Spot spotInLine(const SourceMap &map, const LineOrigin &line, std::int32_t position) {
  std::int64_t byte = line.begin + position;
  std::uint32_t stretch = stretchAt(map, line.stretch, byte);
  if (stretch == line.stretch) {
    Spot spot = line.spot;
    spot.column = behind(spot.column, position);
    return spot;
  }
  Spot spot = map.stretches[stretch].spot;
  spot.column = behind(spot.column, byte - map.stretches[stretch].begin);
  return spot;
}

// Takes the range of the line back to the line as it was read. The body is that of the last
// replacement that it lies in, which is the innermost one.
void undoAll(const SourceMap &map, const ReplacementList &list, Range &range, Place &body) {
  for (std::uint32_t i = list.count; i-- > 0;) {
    const Replacement &replacement = list.items[i];
    if (replacement.depth > 1) {
      continue;
    }
    Range inserted = {range.from - replacement.from, range.to - replacement.from};
    if (!undo(replacement, range) && body.line == 0) {
      body = bodyPlace(map, list, i, inserted);
    }
  }
}

}  // namespace

int addFile(SourceMap &map, const char *name) {
  if (map.fileCount == 0) {
    map.mainName = name;
    return map.fileCount++;
  }
  std::size_t length = std::min(std::strlen(name), sizeof map.names[0] - 1);
  std::memcpy(map.names[map.fileCount], name, length);
  map.names[map.fileCount][length] = '\0';
  return map.fileCount++;
}

void beginStretch(SourceMap &map, std::int64_t begin, const Spot &spot) {
  if (map.count > 0 && map.stretches[map.count - 1].begin == begin) {
    --map.count;  // nothing of it has been copied
  }
  map.complete = map.complete && map.count < kMaxStretches &&
                 makeRoom(map.stretches, map.capacity, map.count + 1);
  if (map.complete) {
    map.stretches[map.count++] = {begin, spot};
  }
}

void freeSourceMap(SourceMap &map) {
  std::free(map.stretches);
  map = SourceMap{};
}

void nextLine(LineOrigin &origin, const SourceMap &map, std::int64_t length, bool endsLine) {
  if (map.complete && map.count > 0) {
    std::int64_t begin = origin.begin + origin.length;
    std::uint32_t stretch = stretchAt(map, origin.stretch, begin);
    const Stretch &at = map.stretches[stretch];
    bool begins = stretch > origin.stretch || origin.spot.line == 0;
    std::int64_t passed = begins ? begin - at.begin : origin.length;
    origin.spot = begins ? at.spot : origin.spot;
    if (passed > 0 && origin.endsLine) {
      ++origin.spot.line;
      origin.spot.column = 1;
    } else {
      origin.spot.column = behind(origin.spot.column, passed);
    }
    origin.stretch = stretch;
    origin.begin = begin;
  }
  origin.length = length;
  origin.endsLine = endsLine;
}

void addReplacement(ReplacementList &list, const Replacement &replacement) {
  list.complete = list.complete && list.count < kMaxReplacements &&
                  makeRoom(list.items, list.capacity, list.count + 1);
  if (list.complete) {
    list.items[list.count++] = replacement;
  }
}

void clearReplacements(ReplacementList &list) {
  list.count = 0;
  list.complete = true;
}

void forgetBodies(ReplacementList &list) {
  for (std::uint32_t i = 0; i < list.count; ++i) {
    list.items[i].body = BodyOrigin{};
  }
}

void freeReplacements(ReplacementList &list) {
  std::free(list.items);
  list = ReplacementList{};
}

const char *fileName(const SourceMap &map, int file) {
  return file == 0 ? map.mainName : map.names[file];
}

Place placeAt(const SourceMap &map, const Spot &spot, std::int32_t width) {
  return {fileName(map, spot.file), spot.line, spot.column, behind(spot.column, width)};
}

bool isPlain(const SourceMap &map, const LineOrigin &line, const ReplacementList &replacements) {
  std::int64_t last = line.begin + line.length - 1;
  return replacements.count == 0 && line.spot.line > 0 &&
         stretchAt(map, line.stretch, last) == line.stretch;
}

Origin originOf(const SourceMap &map, const LineOrigin &line, const ReplacementList &replacements,
                std::int32_t from, std::int32_t to) {
  if (!map.complete || !replacements.complete || line.spot.line == 0) {
    return {};
  }
  Range range = {from, to};
  Origin origin;
  undoAll(map, replacements, range, origin.body);
  Spot first = spotInLine(map, line, range.from);
  Spot last = spotInLine(map, line, std::max(range.from, range.to - 1));
  bool together = last.file == first.file && last.line == first.line;
  origin.place = placeAt(map, first, together ? last.column - first.column + 1 : 1);
  return origin;
}

Spot spotOf(const SourceMap &map, const LineOrigin &line, const ReplacementList &replacements,
            std::int32_t position) {
  if (!map.complete || !replacements.complete || line.spot.line == 0) {
    return {};
  }
  Range range = {position, position + 1};
  Place ignored;
  undoAll(map, replacements, range, ignored);
  return spotInLine(map, line, range.from);
}

}  // namespace korvo
