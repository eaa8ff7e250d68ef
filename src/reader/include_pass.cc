// Characters go straight through, and three things are watched on their way: block comments (which
// nest here), comments and literal lines that last to the line's end (";" and ">"), and a "#"
// outside both, which may begin `#include |name|`.
#include "reader/include_pass.h"

#include <cstring>

#include "driver/files.h"
#include "driver/messages.h"
#include "reader/characters.h"

namespace {

constexpr int kMostFiles = 12;
constexpr int kMostNameCharacters = 255;

struct Pass {
  Screen &screen;
  std::FILE *copy;
  int &counter;
};

// What one level knows about the text it is in.
struct Level {
  std::FILE *input;
  int depth = 0;        // open block comments
  bool inLine = false;  // behind ";" or ">" on this line
  int previous = ' ';
};

ErrorCode copyFile(Pass &pass, std::FILE *input);

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
ErrorCode readName(Pass &pass, std::FILE *input, char *name, bool &openable) {
  int count = 0;
  openable = true;
  for (int c = std::getc(input); c != '|' && c != EOF; c = std::getc(input)) {
    if (++count > kMostNameCharacters) {
      say(pass.screen, "\nERROR: Include filename has exceeded maximum");
      say(pass.screen, "\nlength of %d characters.\n\n", {kMostNameCharacters});
      return kAlreadyReported;
    }
    if (c == '\0') {
      openable = false;  // no file has such a name, and a shorter one was not meant
    }
    if (c != '\n') {
      *name++ = static_cast<char>(c);
    }
  }
  *name = '\0';
  return kOk;
}

ErrorCode includeFile(Pass &pass, std::FILE *input) {
  int c = std::getc(input);
  while (c != EOF && isSpace(static_cast<char>(c))) {
    c = std::getc(input);
  }
  if (c != '|') {
    say(pass.screen, "\n\nInclude filename must be preceeded by a |.\n");
    return kIncludeFailed;
  }
  char name[kMostNameCharacters + 1];
  bool openable = true;
  ErrorCode error = readName(pass, input, name, openable);
  if (error > 0) {
    return error;
  }
  std::FILE *included = openable ? openIncluded(name) : nullptr;
  if (included == nullptr) {
    say(pass.screen, "\nBad include file name: \"%s\"\n\n", {name});
    return kAlreadyReported;
  }
  say(pass.screen, "\n\tOpening include file \"%s\"...", {name});
  error = copyFile(pass, included);
  std::fclose(included);
  return error;
}

// A "#" has been read. `#include` is carried out; "#" with another letter behind it is copied; what
// only begins like
// `#include` is lost, from the "#" to the first character that differs. The loss is of old and
// kept.
ErrorCode followDirective(Pass &pass, Level &level) {
  int c = std::getc(level.input);
  if (c != 'i') {
    std::putc('#', pass.copy);
    if (c != EOF) {
      std::putc(c, pass.copy);
    }
    level.previous = c;
    return kOk;
  }
  c = std::getc(level.input);
  if (c != 'n') {
    std::fputs("#i", pass.copy);
    if (c != EOF) {
      std::putc(c, pass.copy);
    }
    level.previous = c;
    return kOk;
  }
  for (const char *rest = "clude"; *rest != '\0'; ++rest) {
    c = std::getc(level.input);
    if (c != *rest) {
      level.previous = c;
      return kOk;
    }
  }
  level.previous = '|';
  return includeFile(pass, level.input);
}

ErrorCode copyFile(Pass &pass, std::FILE *input) {
  if (pass.counter++ >= kMostFiles) {
    say(pass.screen, "\n\nToo many embedded include files! (Max = %d)\n", {kMostFiles});
    return kIncludeFailed;
  }
  Level level{input};
  for (int c = std::getc(input); c != EOF; c = std::getc(input)) {
    if (c == '#' && !level.inLine && level.depth == 0) {
      ErrorCode error = followDirective(pass, level);
      if (error > 0) {
        return error;
      }
    } else {
      std::putc(c, pass.copy);
      follow(level, c);
      level.previous = c;
    }
  }
  if (std::ferror(input) != 0) {
    say(pass.screen, "\nERROR: Can't read an input file.\n\n");
    return kAlreadyReported;
  }
  return kOk;
}

}  // namespace

ErrorCode include_pass(Screen &screen, std::FILE *input, std::FILE *copy, int &counter) {
  Pass pass{screen, copy, counter};
  return copyFile(pass, input);
}
