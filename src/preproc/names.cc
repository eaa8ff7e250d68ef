// Text comes in, a name goes out.
#include "preproc/names.h"

#include "preproc/source_reader.h"

namespace korvo {

bool matchesLoosely(const char *text, std::string_view keyword) {
  for (std::size_t i = 0; i < keyword.size() && text[i] != '\0'; ++i) {
    if (text[i] == keyword[i]) {
      return true;
    }
  }
  return false;
}

ErrorCode unknownName(SourceReader &source, const char *kind, std::string_view name) {
  sayError(source, "\n\nERROR: Line %d: There is no %s \"%s\" in your input file!\n",
           {source.lineCounter, kind, name});
  return kContextOnly;
}

}  // namespace korvo
