// Whole runs by the library in WebAssembly, all of them in one module, one after the other.
// runs_test.py prepares them and compares.
//
//   node korvo_wasm_runs.js FOLDER COUNT
//
// Run N happens in FOLDER/N, where the piece and its includes are; FOLDER/N.run holds its option
// letters and, on the second line, the name of the piece. What it makes and says becomes
// FOLDER/N.output, .expanded, .stdout and .stderr; FOLDER/N.status is there once it is complete.
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "korvo/korvo.h"

namespace {

struct Files {
  std::FILE *output, *expanded, *standardOutput, *standardError;
};

struct Joined {
  std::string text;
  std::size_t next = 0;
};

std::FILE *openFile(const std::string &name, const char *mode) {
  std::FILE *file = std::fopen(name.c_str(), mode);
  if (file == nullptr) {
    std::perror(name.c_str());
  }
  return file;
}

std::ptrdiff_t readFile(void *context, char *bytes, std::size_t size) {
  auto *file = static_cast<std::FILE *>(context);
  std::size_t count = std::fread(bytes, 1, size, file);
  return std::ferror(file) != 0 ? -1 : static_cast<std::ptrdiff_t>(count);
}

bool openInclude(void * /*context*/, const char *name, korvo::TextInput &input) {
  struct stat status {};
  if (stat(name, &status) != 0 || !S_ISREG(status.st_mode)) {
    return false;
  }
  input = {std::fopen(name, "rb"), readFile};
  return input.context != nullptr;
}

void closeInclude(void * /*context*/, korvo::TextInput &input) {
  std::fclose(static_cast<std::FILE *>(input.context));
}

bool writeText(void *context, const char *bytes, std::size_t size) {
  static_cast<Joined *>(context)->text.append(bytes, size);
  return true;
}

bool rewindText(void *context) {
  static_cast<Joined *>(context)->next = 0;
  return true;
}

std::ptrdiff_t readText(void *context, char *bytes, std::size_t size) {
  auto *joined = static_cast<Joined *>(context);
  std::size_t count = joined->text.copy(bytes, size, joined->next);
  joined->next += count;
  return static_cast<std::ptrdiff_t>(count);
}

void tellMessage(void *context, const korvo::Message &message) {
  auto *files = static_cast<Files *>(context);
  std::fwrite(message.printed.data(), 1, message.printed.size(),
              message.onStandardOutput ? files->standardOutput : files->standardError);
}

void tellOutput(void *context, const char *bytes, std::size_t size) {
  std::fwrite(bytes, 1, size, static_cast<Files *>(context)->output);
}

void tellExpanded(void *context, const char *line, std::size_t size) {
  auto *files = static_cast<Files *>(context);
  std::fwrite(line, 1, size, files->expanded);
  std::fputc('\n', files->expanded);
}

bool performPiece(const std::string &letters, const std::string &name, Files &files) {
  korvo::Options options;
  options.midi = letters.find('m') != std::string::npos;
  options.silent = letters.find('s') != std::string::npos;
  options.tempoVerbose = letters.find('t') != std::string::npos;
  Joined joined;
  korvo::Host host{&joined, openInclude, closeInclude, writeText, rewindText, readText};
  korvo::Listener listener;
  listener.context = &files;
  listener.message = tellMessage;
  listener.output = tellOutput;
  listener.expanded = letters.find('x') != std::string::npos ? tellExpanded : nullptr;
  std::FILE *piece = openFile(name, "rb");
  korvo::Run *run = korvo::newRun();
  bool ok = piece != nullptr && run != nullptr &&
            korvo::perform(*run, options, name.c_str(), {piece, readFile}, host, listener);
  korvo::freeRun(run);
  if (piece != nullptr) {
    std::fclose(piece);
  }
  return ok;
}

// A line of a file without its line feed.
std::string readLine(std::FILE *file) {
  std::string line;
  for (int c = std::fgetc(file); c != EOF && c != '\n'; c = std::fgetc(file)) {
    line += static_cast<char>(c);
  }
  return line;
}

bool makeRun(const std::string &folder) {
  std::FILE *instructions = openFile(folder + ".run", "rb");
  if (instructions == nullptr || chdir(folder.c_str()) != 0) {
    return false;
  }
  std::string letters = readLine(instructions);
  std::string name = readLine(instructions);
  std::fclose(instructions);
  Files files{openFile(folder + ".output", "wb"), openFile(folder + ".expanded", "wb"),
              openFile(folder + ".stdout", "wb"), openFile(folder + ".stderr", "wb")};
  bool ok = performPiece(letters, name, files);
  for (std::FILE *file :
       {files.output, files.expanded, files.standardOutput, files.standardError}) {
    std::fclose(file);
  }
  std::FILE *status = openFile(folder + ".status", "wb");
  return status != nullptr && std::fputs(ok ? "0" : "1", status) >= 0 && std::fclose(status) == 0;
}

}  // namespace

int main(int argc, char **argv) {
  int count = argc == 3 ? std::stoi(argv[2]) : 0;
  for (int i = 0; i < count; ++i) {
    if (!makeRun(std::string(argv[1]) + "/" + std::to_string(i))) {
      std::fprintf(stderr, "run %d cannot be made\n", i);
      return 1;
    }
  }
  return count > 0 ? 0 : 1;
}
