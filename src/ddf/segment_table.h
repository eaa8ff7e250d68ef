// The arguments of one data function call: its span and up to 128 segments. Values of lists lie one
// behind the other in one pool that is kept from call to call.
#pragma once

#include <cstdint>

namespace korvo {

inline constexpr int kMaxSegments = 128;
// In one list of MS and SE, and values or groups of S2.
inline constexpr std::uint32_t kMaxListValues = 65536;

// A range to draw from; the type is that of its distribution.
struct Range {
  int distribution = 0;
  float low = 0.0F;
  float high = 0.0F;
};

// A curve as it is written behind a percentage; "*" (measured in beats) adds kBeatMove to its type.
struct CurveSpec {
  float type = 0.0F;
  float exponent = 1.0F;
};
inline constexpr float kBeatMove = 100.0F;

// A piece of the pool.
struct ListSlice {
  std::uint32_t first = 0;
  std::uint32_t count = 0;
};

// How a list is selected from (SE, S2): freely, all before any again, or never the same twice in a
// row.
enum SelectionMode : int { kFree = 0, kExhaustive = 1, kNoRepeat = 2 };

struct Selection {
  SelectionMode mode = kFree;
  std::uint32_t flags = 0;  // where the used-flags of this segment begin
  std::uint32_t used = 0;   // how many of them are set
  std::int64_t lastIndex = -1;
};

// The arguments of a segment, a record for each kind of function.

struct RandomArguments {  // RA
  Range range;
};

struct WalkArguments {  // RW
  Range range;
  float window = 0.0F;    // 0 to 1
  float position = 0.0F;  // of the walk, 0 to 1
};

struct MoveArguments {  // MO
  CurveSpec curve;
  Range from;
  Range to;
};

struct SelectArguments {  // SE, S2
  ListSlice items;        // values, or groups
  Selection selection;
};

struct TwoListArguments {  // MS
  CurveSpec curve;
  ListSlice first;
  ListSlice second;
};

struct ExpressionArguments {  // EX
  ListSlice terms;
  bool integerResult = false;
};

struct HoldArguments {  // HO
  float value = 0.0F;
};

// One of them: that of the function whose call is read. Each function begins its own.
union SegmentArguments {
  SegmentArguments() : hold() {}
  HoldArguments hold;
  RandomArguments random;
  WalkArguments walk;
  MoveArguments move;
  SelectArguments select;
  TwoListArguments twoLists;
  ExpressionArguments expression;
};

struct Segment {
  float percentage = 0.0F;
  SegmentArguments arguments;
};

// One growing array of plain items, kept from call to call.
template <typename Item>
struct Pool {
  Item *items = nullptr;
  std::uint32_t count = 0;
  std::uint32_t capacity = 0;
};

// A group of S2: values that start together.
struct Group {
  ListSlice values;
};

// A term of an EX equation with the operator before it.
struct Term {
  char operation;    // '+', '-', '*', '/' or '%'; of the first term '+'
  bool isReference;  // to a p-field
  int pfield;
  float number;
};

struct SegmentTable {
  float span = 0.0F;  // beats when 0 or more, minus a number of events otherwise
  int count = 0;
  bool referenceSeen = false;  // EX: some equation of this call has named a p-field
  Segment segments[kMaxSegments];
  Pool<float> values;
  Pool<Group> groups;
  Pool<Term> terms;
  Pool<unsigned char> usedFlags;
};

// Appends an item to a pool; false when memory is refused.
bool addValue(Pool<float> &pool, float value);
bool addGroup(Pool<Group> &pool, const Group &group);
bool addTerm(Pool<Term> &pool, const Term &term);

// Appends `count` cleared flags; false when memory is refused.
bool addFlags(Pool<unsigned char> &pool, std::uint32_t count);

// Empties the table for the next call; its memory is kept.
void clearSegments(SegmentTable &table);

// Releases the pools.
void freeSegments(SegmentTable &table);

}  // namespace korvo
