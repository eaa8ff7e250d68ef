// A macro is one block of memory: the record, its parameter names and its texts.
#include "preproc/macros.h"

#include <cstdlib>

namespace korvo {

void freeMacros(NameTable &table) {
  freeNames(table, [](NamedRecord *record) { std::free(static_cast<Macro *>(record)); });
}

}  // namespace korvo
