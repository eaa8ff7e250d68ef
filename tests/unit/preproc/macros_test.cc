#include "preproc/macros.h"

#include <gtest/gtest.h>

#include "support/piece.h"

namespace korvo {

namespace {

TEST(Macros, FreeingEmptiesTheTable) {
  Piece piece("#define m #1#\n#define n(a, b) #2#\n");
  EXPECT_EQ(piece.define(2), kOk);
  freeMacros(piece.source.macros);
  EXPECT_EQ(piece.source.macros.count, 0U);
  EXPECT_EQ(findName(piece.source.macros, "m"), nullptr);
}

}  // namespace

}  // namespace korvo
