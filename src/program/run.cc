// What the program adds to a run of the library: options, files and their protection, the banner,
// the screen. The library asks for text and includes and tells what it makes; here all of that
// becomes files and streams.
#include "program/run.h"

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <new>

#include "korvo/korvo.h"
#include "program/arguments.h"
#include "program/files.h"
#include "program/progress.h"
#include "program/screen.h"
#include "program/version.h"
#include "program/written_file.h"

namespace {

constexpr int kSuccess = 0;
constexpr int kFailure = 1;
constexpr int kOutOfMemory = 32;  // the number of its error

struct Program {
  Arguments arguments;
  Screen screen;
  ProgressLine progress;
  WrittenFile output;     // the score or the MIDI file
  WrittenFile expansion;  // of -x; without a file when there is no -x
  std::FILE *input = nullptr;
  // The input with its includes; read in place of it after the include pass.
  std::FILE *temporary = nullptr;
};

// An include that is being read, no further than it reached when it was opened.
struct Include {
  std::FILE *file;
  std::int64_t left;
};

// ---- Opening and closing

bool cannotOpen(const char *name) {
  std::fprintf(stderr, "\nERROR: Can't open \"%s\".\n\n", name);
  return false;
}

bool cannotWrite(const char *name) {
  std::fprintf(stderr, "\nERROR: Can't write \"%s\".\n\n", name);
  return false;
}

// Opens a file to be written, which must not be one that the run has opened already.
bool openWritten(const Program &program, const char *name, WrittenFile &written) {
  std::FILE *opened = openForWriting(name);
  if (opened == nullptr) {
    return cannotOpen(name);
  }
  if (isOpenIn(opened, {program.input, program.output.file, program.expansion.file})) {
    std::fclose(opened);
    return cannotOpen(name);
  }
  written.file = opened;
  return true;
}

// Opens all files in their fixed order; the first that cannot be opened ends the run at once. A
// name or link that leads to the input is refused before anything is opened for writing.
bool openFiles(Program &program) {
  const Arguments &arguments = program.arguments;
  program.input = openForReading(arguments.inputName);
  if (program.input == nullptr) {
    return cannotOpen(arguments.inputName);
  }
  for (const char *name : {arguments.outputName, arguments.expansionName, arguments.logName}) {
    if (name != nullptr && isSameFile(name, program.input)) {
      return cannotOpen(name);
    }
  }
  if (!openWritten(program, arguments.outputName, program.output)) {
    return false;
  }
  if (arguments.expansionName != nullptr &&
      !openWritten(program, arguments.expansionName, program.expansion)) {
    return false;
  }
  program.temporary = openTemporary();
  if (program.temporary == nullptr) {
    std::fputs("\nERROR: Can't open temporary file\n\n", stderr);
    return false;
  }
  return arguments.logName == nullptr ||
         openWritten(program, arguments.logName, program.screen.log);
}

// Closes everything. False when something written has not reached its file; a log, which only
// repeats what the screen says, is passed over.
bool closeFiles(Program &program, bool endedWell) {
  flushScreen(program.screen);
  std::fclose(program.input);
  std::fclose(program.temporary);
  bool complete =
      closeWritten(program.output, endedWell) || cannotWrite(program.arguments.outputName);
  bool expanded =
      closeWritten(program.expansion, endedWell) || cannotWrite(program.arguments.expansionName);
  closeWritten(program.screen.log, endedWell);
  return complete && expanded;
}

// ---- What the library asks for

std::ptrdiff_t readFile(void *context, char *bytes, std::size_t size) {
  auto *file = static_cast<std::FILE *>(context);
  std::size_t count = std::fread(bytes, 1, size, file);
  return std::ferror(file) == 0 ? static_cast<std::ptrdiff_t>(count) : -1;
}

std::ptrdiff_t readInclude(void *context, char *bytes, std::size_t size) {
  auto *include = static_cast<Include *>(context);
  auto left = static_cast<std::uint64_t>(include->left);
  std::ptrdiff_t count =
      readFile(include->file, bytes, left < size ? static_cast<std::size_t>(left) : size);
  include->left -= count > 0 ? count : 0;
  return count;
}

// Opens the file, or gives null. A file that the run writes is none to be included: what stands in
// it may be the only copy of the composer's text. So a log that is such a file gets nothing.
std::FILE *openPart(const Program &program, const char *name, std::int64_t &size) {
  std::FILE *file = openIncluded(name, size);
  std::FILE *log = program.screen.log.file;
  if (!isOpenIn(file, {log, program.output.file, program.expansion.file, program.temporary})) {
    return file;
  }
  if (isOpenIn(file, {log})) {
    abandonFile(log);
  }
  std::fclose(file);
  return nullptr;
}

bool openInclude(void *context, const char *name, korvo::TextInput &input) {
  std::int64_t size = 0;
  std::FILE *file = openPart(*static_cast<Program *>(context), name, size);
  if (file == nullptr) {
    return false;
  }
  auto *include = new (std::nothrow) Include{file, size};
  if (include == nullptr) {
    std::fclose(file);
    return false;
  }
  input = {include, readInclude};
  return true;
}

void closeInclude(void * /*context*/, korvo::TextInput &input) {
  auto *include = static_cast<Include *>(input.context);
  std::fclose(include->file);
  delete include;
}

bool writeText(void *context, const char *bytes, std::size_t size) {
  return std::fwrite(bytes, 1, size, static_cast<Program *>(context)->temporary) == size;
}

bool rewindText(void *context) {
  std::FILE *file = static_cast<Program *>(context)->temporary;
  bool complete = std::fflush(file) == 0 && std::ferror(file) == 0;
  return complete && std::fseek(file, 0, SEEK_SET) == 0;
}

std::ptrdiff_t readText(void *context, char *bytes, std::size_t size) {
  return readFile(static_cast<Program *>(context)->temporary, bytes, size);
}

// ---- What the library tells

void tellMessage(void *context, const korvo::Message &message) {
  Screen &screen = static_cast<Program *>(context)->screen;
  auto put = message.onStandardOutput ? showOnStandardOutput : show;
  put(screen, message.printed.data(), message.printed.size());
}

void tellOutput(void *context, const char *bytes, std::size_t size) {
  writeBytes(static_cast<Program *>(context)->output, bytes, size);
}

void tellExpanded(void *context, const char *line, std::size_t size) {
  WrittenFile &expansion = static_cast<Program *>(context)->expansion;
  writeBytes(expansion, line, size);
  writeBytes(expansion, "\n", 1);
}

void tellProgress(void *context, const korvo::Progress &progress) {
  auto *program = static_cast<Program *>(context);
  drawProgress(program->progress, program->screen, progress);
}

void say(Screen &screen, const char *text) { show(screen, text, std::strlen(text)); }

void sayName(Screen &screen, const char *label, const char *name, const char *end) {
  say(screen, label);
  say(screen, "\"");
  say(screen, name);
  say(screen, end);
}

void sayBanner(Program &program) {
  const Arguments &arguments = program.arguments;
  Screen &screen = program.screen;
  say(screen, kNameLine);
  say(screen, kAuthorshipLine);
  say(screen, kCreditLines);
  sayName(screen, "\n\nInput\t= ", arguments.inputName, "\"\n");
  sayName(screen, "Output\t= ", arguments.outputName, "\" ");
  say(screen, arguments.midi ? "[MIDI file (type 1)]\n" : "[Csound score-file]\n");
  if (arguments.logName != nullptr) {
    sayName(screen, "Log \t= ", arguments.logName, "\"\n");
  }
  if (arguments.expansionName != nullptr) {
    sayName(screen, "MExp\t= ", arguments.expansionName, "\"\n");
  }
}

// ---- The run

bool performPiece(Program &program, korvo::Run &run) {
  const Arguments &arguments = program.arguments;
  korvo::Options options;
  options.midi = arguments.midi;
  options.silent = arguments.silent;
  options.tempoVerbose = arguments.tempoVerbose;
  options.alreadySaid = program.screen.shown;
  korvo::Host host{&program, openInclude, closeInclude, writeText, rewindText, readText};
  korvo::Listener listener;
  listener.context = &program;
  listener.message = tellMessage;
  listener.output = tellOutput;
  listener.expanded = arguments.expansionName != nullptr ? tellExpanded : nullptr;
  listener.progress = program.screen.isTerminal && !arguments.silent ? tellProgress : nullptr;
  return korvo::perform(run, options, arguments.inputName, {program.input, readFile}, host,
                        listener);
}

int runWith(Program &program, korvo::Run &run) {
  if (!openFiles(program)) {
    return kFailure;
  }
  program.screen.isTerminal = isatty(fileno(stderr)) != 0;
  sayBanner(program);
  bool complete = performPiece(program, run);
  if (!closeFiles(program, complete) || !complete) {
    return kFailure;
  }
  say(program.screen, "\n");
  flushScreen(program.screen);
  return kSuccess;
}

}  // namespace

int runProgram(int argc, const char *const *argv) {
  holdStandardStreams();
  Arguments arguments;
  if (!parseArguments(argc, argv, arguments)) {
    return kFailure;
  }
  if (!namesAreUnique(arguments)) {
    std::fputs("\nERROR: You can't use a filename multiple times!\n\n", stderr);
    return kFailure;
  }
  // A closed pipe and a file that may not grow cannot be written, and are told like a full disk.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  auto *program = new (std::nothrow) Program;
  korvo::Run *run = korvo::newRun();
  int status = kFailure;
  if (program != nullptr && run != nullptr) {
    program->arguments = arguments;
    status = runWith(*program, *run);
  } else {
    std::fprintf(stderr, "\nERROR: %s\n\n", korvo::errorText(kOutOfMemory));
  }
  korvo::freeRun(run);
  delete program;
  return status;
}
