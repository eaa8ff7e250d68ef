// A line comes in and goes out with one piece of it replaced.
#include "preproc/line_edit.h"

#include <cstring>

namespace korvo {

// The text before the replaced piece stays, the text behind it (its NUL included) moves, the new
// text goes between.
bool replaceInLine(char *line, std::int32_t from, std::int32_t to, std::string_view inserted) {
  std::size_t rest = std::strlen(line + to);
  std::size_t before = static_cast<std::size_t>(from);
  if (before + inserted.size() + rest > static_cast<std::size_t>(kMaxLineLength)) {
    return false;
  }
  std::memmove(line + before + inserted.size(), line + to, rest + 1);
  std::memcpy(line + before, inserted.data(), inserted.size());
  return true;
}

}  // namespace korvo
