// Selecting from a list by number, in the three modes of SE and S2.
#pragma once

#include <cstdint>

#include "base/error_code.h"
#include "ddf/segment_table.h"

namespace korvo {

struct Random;
struct SegmentTable;

// Makes a selection ready for a list of `count` items; one item is always selected freely.
// Error 32.
ErrorCode beginSelection(SegmentTable &table, Selection &selection, std::uint32_t count);

// The next item's number. One draw; in the modes "*" and "x" drawn again until an item comes that
// may be taken.
std::uint32_t selectIndex(SegmentTable &table, Random &random, Selection &selection,
                          std::uint32_t count);

}  // namespace korvo
