// A moment and a curve come in, a value between two ends goes out.
#include "ddf/moment.h"

#include "base/number_format.h"
#include "ddf/generation.h"
#include "global/curve.h"

namespace korvo {

namespace {

float followEvents(const CurveSpec &curve, const Moment &moment, float from, float to) {
  if (moment.count <= 1 || moment.index >= moment.count) {
    return moment.index == 0 ? from : to;
  }
  double u = static_cast<double>(moment.index) / static_cast<double>(moment.count - 1);
  return interpolate(static_cast<int>(curve.type), u, from, to, curve.exponent);
}

}  // namespace

void announceBeatMove(Generation &making, const CurveSpec &curve, const Moment &moment) {
  if (moment.event == nullptr || !isBeatMove(curve)) {
    return;
  }
  constexpr char kLead[] = {'\n', 't', 'i', 'm', 'e', ' ', '=', ' '};
  char text[sizeof kLead + kLongestNumber];
  char *end = text;
  for (char c : kLead) {
    *end++ = c;
  }
  end = writeFixed(end, static_cast<double>(moment.elapsed), 0, 6);
  sayOnStandardOutput(*making.messages, {text, static_cast<std::size_t>(end - text)});
}

float followCurve(const CurveSpec &curve, const Moment &moment, float from, float to) {
  if (moment.inBeats) {
    return CurveValue(curve.type, moment.elapsed, moment.length, from, to, curve.exponent);
  }
  if (isBeatMove(curve)) {
    return CurveValue(curve.type - kBeatMove, moment.elapsed, moment.length, from, to,
                      curve.exponent);
  }
  return followEvents(curve, moment, from, to);
}

}  // namespace korvo
