// The program of the tests has a `rand` of its own, which stands before that of the library.
#include "support/scripted_draws.h"

#include <dlfcn.h>

#include <cstdlib>
#include <vector>

namespace {

bool scripted = false;
std::vector<int> script;
std::size_t next = 0;

}  // namespace

extern "C" int rand() noexcept {
  using Rand = int (*)();
  static const Rand kLibraryRand = reinterpret_cast<Rand>(dlsym(RTLD_NEXT, "rand"));
  if (!scripted) {
    return kLibraryRand();
  }
  std::size_t index = next++;
  if (index > script.size() + 1000000) {
    std::abort();  // somebody draws forever
  }
  return index < script.size() ? script[index] : 0;
}

ScriptedDraws::ScriptedDraws(std::initializer_list<int> draws) {
  script = draws;
  next = 0;
  scripted = true;
}

ScriptedDraws::~ScriptedDraws() { scripted = false; }

std::size_t ScriptedDraws::taken() const { return next; }
