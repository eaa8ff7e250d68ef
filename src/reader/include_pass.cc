// Characters go straight through, and three things are watched on their way: block comments (which
// nest here), comments and literal lines that last to the line's end (";" and ">"), and a "#"
// outside both, which may begin `#include |name|`. What stands between these is copied as a piece.
#include "reader/include_pass.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "base/characters.h"

namespace korvo {

namespace {

constexpr int kMostNameCharacters = 255;
constexpr int kEnd = -1;                    // of a text: no character
constexpr std::size_t kGathered = 1 << 14;  // bytes that go to the host at once
constexpr CharacterSet kWatched("#>;*/\n");

struct Pass {
  Messages &messages;
  const Host &host;
  SourceMap &map;
  bool wantsPlaces;
  char *bytes;               // of the joined text, gathered: room for kGathered
  std::size_t used = 0;      // so many
  std::int64_t flushed = 0;  // those before them, which the host has
  bool refused = false;      // it could not keep all of them
};

// What one level knows about the text it is in.
struct Level {
  TextInput input;
  int depth = 0;        // open block comments
  bool inLine = false;  // behind ";" or ">" on this line
  int previous = ' ';
  bool failed = false;  // it cannot be read
  Spot spot;            // of the character at `counted`
  std::size_t counted = 0;
  std::size_t next = 0;
  std::size_t end = 0;
  char bytes[1 << 12];
};

ErrorCode copyText(Pass &pass, Level &level, TextInput input, const char *name);

// Of a line of gigabytes the last column that there is.
std::int32_t columnBehind(std::int32_t column, std::size_t bytes) {
  constexpr std::int32_t kLast = std::numeric_limits<std::int32_t>::max() - 1;
  auto left = static_cast<std::size_t>(kLast - column);
  return bytes < left ? column + static_cast<std::int32_t>(bytes) : kLast;
}

// Where the next character stands. Lines are counted only when somebody asks, or when the
// characters go.
Spot spotOfNext(Level &level) {
  while (level.counted < level.next) {
    const char *from = level.bytes + level.counted;
    const void *found = std::memchr(from, '\n', level.next - level.counted);
    if (found == nullptr) {
      level.spot.column = columnBehind(level.spot.column, level.next - level.counted);
      level.counted = level.next;
    } else {
      level.counted += static_cast<std::size_t>(static_cast<const char *>(found) - from) + 1;
      ++level.spot.line;
      level.spot.column = 1;
    }
  }
  return level.spot;
}

// The next character of the text, or kEnd.
int take(Level &level) {
  if (level.next == level.end) {
    spotOfNext(level);
    level.counted = 0;
    std::ptrdiff_t count = level.input.read(level.input.context, level.bytes, sizeof level.bytes);
    level.failed = level.failed || count < 0;
    level.next = 0;
    level.end = count > 0 ? static_cast<std::size_t>(count) : 0;
    if (level.end == 0) {
      return kEnd;
    }
  }
  return static_cast<unsigned char>(level.bytes[level.next++]);
}

void flush(Pass &pass) {
  pass.refused = !pass.host.writeText(pass.host.context, pass.bytes, pass.used) || pass.refused;
  pass.flushed += static_cast<std::int64_t>(pass.used);
  pass.used = 0;
}

// Appends a character to the joined text; kEnd is none.
void put(Pass &pass, int c) {
  if (c == kEnd) {
    return;
  }
  if (pass.used == kGathered) {
    flush(pass);
  }
  pass.bytes[pass.used++] = static_cast<char>(c);
}

void putPiece(Pass &pass, const char *piece, std::size_t size) {
  while (size > 0) {
    if (pass.used == kGathered) {
      flush(pass);
    }
    std::size_t part = std::min(size, kGathered - pass.used);
    std::memcpy(pass.bytes + pass.used, piece, part);
    pass.used += part;
    piece += part;
    size -= part;
  }
}

// Copies what is at hand before the next character that is watched.
void copyUnwatched(Pass &pass, Level &level) {
  const char *from = level.bytes + level.next;
  const char *to = findIn(kWatched, from, level.bytes + level.end);
  if (to != from) {
    auto size = static_cast<std::size_t>(to - from);
    putPiece(pass, from, size);
    level.next += size;
    level.previous = static_cast<unsigned char>(to[-1]);
  }
}

// What is copied from here on is the text at `spot`.
void goOnAt(Pass &pass, const Spot &spot) {
  beginStretch(pass.map, pass.flushed + static_cast<std::int64_t>(pass.used), spot);
}

// Prints an error in what has just been read and gives the code for it.
ErrorCode fail(Pass &pass, Level &level, ErrorCode code, const char *format,
               std::initializer_list<MessageArgument> arguments = {}) {
  compose(pass.messages, format, arguments);
  Message message;
  message.severity = Severity::kError;
  message.text = withoutLead({pass.messages.text, pass.messages.used});
  if (pass.wantsPlaces) {
    Spot spot = spotOfNext(level);  // what is wrong has just been read
    spot.column -= spot.column > 1 ? 1 : 0;
    message.place = placeAt(pass.map, spot, 1);
  }
  tell(pass.messages, message);
  return code;
}

void follow(Level &level, int c) {
  if (c == '>' || c == ';') {
    level.inLine = level.previous != '/';
  } else if (c == '*' && level.previous == '/') {
    ++level.depth;
  } else if (c == '/' && level.previous == '*') {
    level.depth -= level.depth > 0 ? 1 : 0;
  } else if (c == '\n') {
    level.inLine = false;
  }
}

// The name between the bars, the first bar already read. Line feeds in it count but are left out.
// `openable` becomes false for a name that no text has.
ErrorCode readName(Pass &pass, Level &level, char *name, bool &openable) {
  int count = 0;
  for (int c = take(level); c != '|' && c != kEnd; c = take(level)) {
    if (++count > kMostNameCharacters) {
      return fail(pass, level, kAlreadyReported,
                  "\nERROR: Include filename has exceeded maximum\nlength of %d characters.\n\n",
                  {kMostNameCharacters});
    }
    if (c == '\0') {
      openable = false;  // no file has such a name, and a shorter one was not meant
    }
    if (c != '\n') {
      *name++ = static_cast<char>(c);
    }
  }
  *name = '\0';
  openable = openable && !level.failed;  // the rest of the name could not be read
  return kOk;
}

ErrorCode includeText(Pass &pass, Level &level) {
  int c = take(level);
  while (c != kEnd && isSpace(static_cast<char>(c))) {
    c = take(level);
  }
  if (c != '|') {
    return fail(pass, level, kIncludeFailed, "\n\nInclude filename must be preceeded by a |.\n");
  }
  char name[kMostNameCharacters + 1];
  bool openable = true;
  RETURN_IF_ERROR(readName(pass, level, name, openable));
  TextInput included;
  if (!openable || pass.host.openInclude == nullptr ||
      !pass.host.openInclude(pass.host.context, name, included)) {
    return fail(pass, level, kAlreadyReported, "\nBad include file name: \"%s\"\n\n", {name});
  }
  say(pass.messages, "\n\tOpening include file \"%s\"...", {name});
  ErrorCode error = copyText(pass, level, included, name);
  goOnAt(pass, spotOfNext(level));
  if (pass.host.closeInclude != nullptr) {
    pass.host.closeInclude(pass.host.context, included);
  }
  return error;
}

// A "#" has been read. `#include` is carried out; "#" with another letter behind it is copied; what
// only begins like `#include` is lost, from the "#" to the first character that differs. The loss
// is of old and kept.
ErrorCode followDirective(Pass &pass, Level &level) {
  int c = take(level);
  if (c != 'i') {
    put(pass, '#');
    put(pass, c);
    level.previous = c;
    return kOk;
  }
  c = take(level);
  if (c != 'n') {
    put(pass, '#');
    put(pass, 'i');
    put(pass, c);
    level.previous = c;
    return kOk;
  }
  for (const char *rest = "clude"; *rest != '\0'; ++rest) {
    c = take(level);
    if (c != *rest) {
      level.previous = c;
      goOnAt(pass, spotOfNext(level));
      return kOk;
    }
  }
  level.previous = '|';
  return includeText(pass, level);
}

// Copies a text that is called `name`, included by that of `outer`.
ErrorCode copyText(Pass &pass, Level &outer, TextInput input, const char *name) {
  if (pass.map.fileCount == kMaxFiles) {
    return fail(pass, outer, kIncludeFailed, "\n\nToo many embedded include files! (Max = %d)\n",
                {kMaxFiles});
  }
  Level level;
  level.input = input;
  level.spot = {addFile(pass.map, name), 1, 1};
  goOnAt(pass, level.spot);
  for (;;) {
    copyUnwatched(pass, level);
    int c = take(level);
    if (c == kEnd) {
      break;
    }
    if (c == '#' && !level.inLine && level.depth == 0) {
      RETURN_IF_ERROR(followDirective(pass, level));
    } else {
      put(pass, c);
      follow(level, c);
      level.previous = c;
    }
  }
  return level.failed
             ? fail(pass, level, kAlreadyReported, "\nERROR: Can't read an input file.\n\n")
             : kOk;
}

}  // namespace

ErrorCode include_pass(Messages &messages, const Host &host, const char *name, TextInput input,
                       SourceMap &map, bool wantsPlaces) {
  char bytes[kGathered];
  Pass pass{messages, host, map, wantsPlaces, bytes};
  Level nothing;
  RETURN_IF_ERROR(copyText(pass, nothing, input, name));
  flush(pass);
  return pass.refused ? kTemporaryFileLost : kOk;
}

}  // namespace korvo
