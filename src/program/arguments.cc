// Arguments come first, each in an argument of its own, then exactly two file names. -l and -x take
// a name, in the same argument or in the next one; of the other options only the letter is looked
// at, so "-mfoo" means -m.
#include "program/arguments.h"

#include <cstdio>
#include <cstring>

#include "program/version.h"

namespace {

constexpr const char *kUsage =
    "  Usage: korvo [options] infile outfile\n"
    "  Options:\n"
    "  -l <logfile>  screen ouput (text)\n"
    "  -m            outfile is a MIDI file (format 1)\n"
    "  -s            suppress non-error messages\n"
    "  -t            verbose tempo information\n"
    "  -x <expfile>  macro expansions (text)\n\n";

bool refuseWithUsage() {
  std::fputs(kNameLine, stderr);
  std::fputs(kCreditLines, stderr);
  std::fputs(kUsage, stderr);
  return false;
}

// The name that belongs to -l or -x at argument `i`: the rest of that argument, or the next one,
// which `i` is moved to. Null when there is none or when the next argument is an option.
const char *attachedName(int argc, const char *const *argv, int &i) {
  const char *rest = argv[i] + 2;
  if (*rest != '\0') {
    return rest;
  }
  if (i + 1 >= argc || argv[i + 1][0] == '-') {
    return nullptr;
  }
  return argv[++i];
}

bool takeName(int argc, const char *const *argv, int &i, const char *complaint, const char *&name) {
  name = attachedName(argc, argv, i);
  if (name == nullptr) {
    std::puts(complaint);
    return false;
  }
  return true;
}

bool sameName(const char *a, const char *b) {
  return a != nullptr && b != nullptr && std::strcmp(a, b) == 0;
}

}  // namespace

bool parseArguments(int argc, const char *const *argv, Arguments &arguments) {
  for (int i = 1; i < argc; ++i) {
    if (argv[i][0] != '-') {
      if (i != argc - 2 || argv[i + 1][0] == '-') {
        break;
      }
      arguments.inputName = argv[i];
      arguments.outputName = argv[i + 1];
      return true;
    }
    switch (argv[i][1]) {
      case 'l':
        if (!takeName(argc, argv, i, "\nError: No logfile name\n", arguments.logName)) {
          return false;
        }
        break;
      case 'x':
        if (!takeName(argc, argv, i, "\nError: No macro-expansion file name\n",
                      arguments.expansionName)) {
          return false;
        }
        break;
      case 'm':
        arguments.midi = true;
        break;
      case 's':
        arguments.silent = true;
        break;
      case 't':
        arguments.tempoVerbose = true;
        break;
      default:
        return refuseWithUsage();
    }
  }
  return refuseWithUsage();
}

bool namesAreUnique(const Arguments &arguments) {
  const char *input = arguments.inputName;
  const char *output = arguments.outputName;
  const char *log = arguments.logName;
  const char *expansion = arguments.expansionName;
  return !(sameName(input, output) || sameName(log, output) || sameName(log, input) ||
           sameName(expansion, output) || sameName(expansion, input) || sameName(log, expansion));
}
