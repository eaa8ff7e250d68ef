// Following a curve through the events of a call: the curves of MO and MS, those with a "*" too.
// What a "*" curve runs over is measured in call.cc.
#pragma once

#include "ddf/generator.h"
#include "ddf/segment_table.h"

namespace korvo {

// Whether a curve is measured in beats along the events ("*").
inline bool isBeatMove(const CurveSpec &curve) { return curve.type >= kBeatMove; }

// Prints the elapsed beats on standard output, as is done before every event of a beat-related move
// from P3 on.
void announceBeatMove(Generation &making, const CurveSpec &curve, const Moment &moment);

// The value between `from` and `to` at this moment: by time in P2 with a span in beats (where "*"
// means that the end is reached at once) and for "*", by the number of the event otherwise.
float followCurve(const CurveSpec &curve, const Moment &moment, float from, float to);

}  // namespace korvo
