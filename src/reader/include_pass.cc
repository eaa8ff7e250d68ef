// Characters go straight through, and three things are watched on their way: block comments (which
// nest here), comments and literal lines that last to the line's end (";" and ">"), and a "#"
// outside both, which may begin `#include |name|`.
#include "reader/include_pass.h"

#include <cstdint>
#include <limits>

#include "driver/files.h"
#include "driver/run_state.h"
#include "reader/characters.h"

namespace {

constexpr int kMostFiles = 12;
constexpr int kMostNameCharacters = 255;

struct Pass {
  RunState &run;
  std::FILE *copy;
  int &counter;
};

// What one level knows about the text it is in.
struct Level {
  std::FILE *input;
  std::int64_t left;    // bytes that are still read of the file
  int depth = 0;        // open block comments
  bool inLine = false;  // behind ";" or ">" on this line
  int previous = ' ';
};

ErrorCode copyFile(Pass &pass, std::FILE *input, std::int64_t size);

// The next character of the file, or EOF.
int take(Level &level) { return level.left-- > 0 ? std::getc(level.input) : EOF; }

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
ErrorCode readName(Pass &pass, Level &level, char *name, bool &openable) {
  int count = 0;
  openable = true;
  for (int c = take(level); c != '|' && c != EOF; c = take(level)) {
    if (++count > kMostNameCharacters) {
      say(pass.run.screen, "\nERROR: Include filename has exceeded maximum");
      say(pass.run.screen, "\nlength of %d characters.\n\n", {kMostNameCharacters});
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

// Opens the file, or gives null. A file that the run writes is none to be included: what stands in
// it may be the only copy of the composer's text. So a log that is such a file gets nothing.
std::FILE *openPart(const Pass &pass, const char *name, std::int64_t &size) {
  std::FILE *file = openIncluded(name, size);
  std::FILE *log = pass.run.screen.log.file;
  if (!isOpenIn(file, {log, pass.run.output.file, pass.run.expansion.file, pass.copy})) {
    return file;
  }
  if (isOpenIn(file, {log})) {
    abandonFile(log);
  }
  std::fclose(file);
  return nullptr;
}

ErrorCode includeFile(Pass &pass, Level &level) {
  int c = take(level);
  while (c != EOF && isSpace(static_cast<char>(c))) {
    c = take(level);
  }
  if (c != '|') {
    say(pass.run.screen, "\n\nInclude filename must be preceeded by a |.\n");
    return kIncludeFailed;
  }
  char name[kMostNameCharacters + 1];
  bool openable = true;
  ErrorCode error = readName(pass, level, name, openable);
  if (error > 0) {
    return error;
  }
  std::int64_t size = 0;
  std::FILE *included = openable ? openPart(pass, name, size) : nullptr;
  if (included == nullptr) {
    say(pass.run.screen, "\nBad include file name: \"%s\"\n\n", {name});
    return kAlreadyReported;
  }
  say(pass.run.screen, "\n\tOpening include file \"%s\"...", {name});
  error = copyFile(pass, included, size);
  std::fclose(included);
  return error;
}

// A "#" has been read. `#include` is carried out; "#" with another letter behind it is copied; what
// only begins like
// `#include` is lost, from the "#" to the first character that differs. The loss is of old and
// kept.
ErrorCode followDirective(Pass &pass, Level &level) {
  int c = take(level);
  if (c != 'i') {
    std::putc('#', pass.copy);
    if (c != EOF) {
      std::putc(c, pass.copy);
    }
    level.previous = c;
    return kOk;
  }
  c = take(level);
  if (c != 'n') {
    std::fputs("#i", pass.copy);
    if (c != EOF) {
      std::putc(c, pass.copy);
    }
    level.previous = c;
    return kOk;
  }
  for (const char *rest = "clude"; *rest != '\0'; ++rest) {
    c = take(level);
    if (c != *rest) {
      level.previous = c;
      return kOk;
    }
  }
  level.previous = '|';
  return includeFile(pass, level);
}

// Copies so many bytes of a file, or what there is of them.
ErrorCode copyFile(Pass &pass, std::FILE *input, std::int64_t size) {
  if (pass.counter++ >= kMostFiles) {
    say(pass.run.screen, "\n\nToo many embedded include files! (Max = %d)\n", {kMostFiles});
    return kIncludeFailed;
  }
  Level level{input, size};
  for (int c = take(level); c != EOF; c = take(level)) {
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
    say(pass.run.screen, "\nERROR: Can't read an input file.\n\n");
    return kAlreadyReported;
  }
  return kOk;
}

}  // namespace

ErrorCode include_pass(RunState &run, std::FILE *input, std::FILE *copy, int &counter) {
  Pass pass{run, copy, counter};
  return copyFile(pass, input, std::numeric_limits<std::int64_t>::max());
}
