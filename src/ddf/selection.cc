// A list's length comes in, the number of an item goes out.
#include "ddf/selection.h"

#include <cstring>

#include "base/random.h"

namespace korvo {

ErrorCode beginSelection(SegmentTable &table, Selection &selection, std::uint32_t count) {
  if (count == 1) {
    selection.mode = kFree;
  }
  selection.used = 0;
  selection.lastIndex = -1;
  selection.flags = table.usedFlags.count;
  if (selection.mode != kExhaustive) {
    return kOk;
  }
  return addFlags(table.usedFlags, count) ? kOk : kOutOfMemory;
}

std::uint32_t selectIndex(SegmentTable &table, Random &random, Selection &selection,
                          std::uint32_t count) {
  std::uint32_t index = drawIndex(random, count);
  if (selection.mode == kNoRepeat) {
    while (index == selection.lastIndex) {
      index = drawIndex(random, count);
    }
  } else if (selection.mode == kExhaustive) {
    unsigned char *used = table.usedFlags.items + selection.flags;
    if (selection.used == count) {
      std::memset(used, 0, count);
      selection.used = 0;
    }
    while (used[index] != 0) {
      index = drawIndex(random, count);
    }
    used[index] = 1;
    ++selection.used;
  }
  selection.lastIndex = index;
  return index;
}

}  // namespace korvo
