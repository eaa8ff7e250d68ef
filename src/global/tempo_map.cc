// A definition gives the tempo between two beats along a curve. The one that is in force at a beat
// is found by walking the definitions in the order in which they were made and stopping at the
// first that starts later: one given out of order hides those behind it.
#include "global/tempo_map.h"

#include "base/characters.h"
#include "base/numbers.h"
#include "global/curve.h"
#include "preproc/source_reader.h"
#include "reader/lexical.h"

namespace korvo {

namespace {

constexpr float kLatestTime = 10000.0F;   // beats
constexpr float kFastestTempo = 4000.0F;  // beats per minute
constexpr float kSlowestTempo = 1.0F;
constexpr float kLateTime = 600.0F;  // from here on the user is asked whether that is meant
constexpr float kQuiteFast = 300.0F;
constexpr float kQuiteSlow = 30.0F;
constexpr char kListingLetters[] = "FELUSX";

bool timeIsOutOfRange(float time) { return time > kLatestTime || time < 0.0F; }

bool tempoIsOutOfRange(float tempo) { return tempo > kFastestTempo || tempo < kSlowestTempo; }

void warnOfTempo(SourceReader &source, float tempo, WarningCode fast, WarningCode slow) {
  if (tempo > kQuiteFast) {
    warn(source, fast);
  } else if (tempo < kQuiteSlow) {
    warn(source, slow);
  }
}

ErrorCode readTerm(SourceReader &source, ErrorCode missing, float &term) {
  return read_float(term, source.line, source.position) ? skip_separator(source) : missing;
}

// The curve letter at the position. A letter that names no curve means a straight line and is left
// where it is.
ErrorCode readCurve(SourceReader &source, TempoDef &def) {
  CurveType type = kLine;
  if (!readCurveLetter(source.line, source.position, type, def.Vcurve)) {
    return kBadCurve;
  }
  def.curveType = static_cast<float>(type);
  RETURN_IF_ERROR(skip_blanks(source));
  if (current(source) == '*') {
    return kBeatMoveNotAllowed;
  }
  return skip_separator(source);
}

ErrorCode checkRanges(const TempoDef &def) {
  if (timeIsOutOfRange(def.startTime)) {
    return kTempoStartTimeRange;
  }
  if (timeIsOutOfRange(def.endTime)) {
    return kTempoEndTimeRange;
  }
  if (tempoIsOutOfRange(def.startTempo)) {
    return kStartTempoRange;
  }
  if (tempoIsOutOfRange(def.endTempo)) {
    return kEndTempoRange;
  }
  return def.startTime > def.endTime ? kTempoTimesBackwards : kOk;
}

void warnOfDefinition(SourceReader &source, const TempoDef &def) {
  if (def.startTime > kLateTime) {
    warn(source, kTempoStartsLate);
  }
  if (def.endTime > kLateTime) {  // the end is looked at, not the length
    warn(source, kTempoChangeLong);
  }
  warnOfTempo(source, def.startTempo, kTempo1Fast, kTempo1Slow);
  warnOfTempo(source, def.endTempo, kTempo2Fast, kTempo2Slow);
}

// A definition that starts at beat 0 replaces the first one.
ErrorCode store(TempoMap &map, const TempoDef &def) {
  if (def.startTime == 0.0F) {
    map.defs[0] = def;
    return kOk;
  }
  if (map.count == kMaxTempoDefs) {
    return kOutOfMemory;
  }
  map.defs[map.count++] = def;
  return kOk;
}

// te(tempo): one tempo for the whole piece.
ErrorCode defineConstantTempo(SourceReader &source, TempoMap &map, float tempo) {
  ++source.position;
  if (tempoIsOutOfRange(tempo)) {
    return kTempoOutOfRange;
  }
  TempoDef &def = map.defs[0];
  def.startTime = 0.0F;
  def.endTime = 1000.0F;
  def.startTempo = tempo;
  def.endTempo = tempo;
  def.curveType = static_cast<float>(kLine);
  warnOfTempo(source, tempo, kTempo1Fast, kTempo1Slow);
  return kOk;
}

// te(start, end, start tempo, end tempo, curve): a change between two beats.
ErrorCode defineTempoChange(SourceReader &source, TempoMap &map, float startTime) {
  TempoDef def;
  def.startTime = startTime;
  RETURN_IF_ERROR(readTerm(source, kBadTempoTerm2, def.endTime));
  RETURN_IF_ERROR(readTerm(source, kBadTempoTerm3, def.startTempo));
  RETURN_IF_ERROR(readTerm(source, kBadTempoTerm4, def.endTempo));
  def.curveType = static_cast<float>(kPower);
  def.Vcurve = 1.0F;
  if (isLetter(current(source))) {
    RETURN_IF_ERROR(readCurve(source, def));
  }
  RETURN_IF_ERROR(checkRanges(def));
  warnOfDefinition(source, def);
  RETURN_IF_ERROR(store(map, def));
  if (current(source) != ')') {
    return kMissingParenthesis;
  }
  ++source.position;
  return kOk;
}

// Tells of every definition that starts before its predecessor has ended. All are looked at behind
// every statement, so a conflict is told again; it is no warning of the catalogue, and -s does not
// silence it.
void tellConflicts(const TempoMap &map, Messages &messages) {
  float previousEnd = 0.0F;
  for (int i = 0; i < map.count; ++i) {
    if (previousEnd > map.defs[i].startTime) {
      compose(messages, "\nWARNING: Tempo #%d conflicts with previous tempo's end time!", {i + 1});
      Message message;
      message.severity = Severity::kWarning;
      tell(messages, message);
    }
    previousEnd = map.defs[i].endTime;
  }
}

const TempoDef &findDefinition(const TempoMap &map, float beat) {
  int i = 0;
  while (!(beat < map.defs[i].startTime) && i + 1 < map.count &&
         map.defs[i + 1].startTime <= beat) {
    ++i;
  }
  return map.defs[i];
}

}  // namespace

ErrorCode DefineTempo(SourceReader &source, TempoMap &map) {
  RETURN_IF_ERROR(openStatement(source));
  float first = 0.0F;
  RETURN_IF_ERROR(readTerm(source, kBadTempoTerm1, first));
  bool isConstant = current(source) == ')';
  RETURN_IF_ERROR(isConstant ? defineConstantTempo(source, map, first)
                             : defineTempoChange(source, map, first));
  tellConflicts(map, *source.messages);
  return kOk;
}

float TempoAtBeat(const TempoMap &map, float beat) {
  const TempoDef &def = findDefinition(map, beat);
  return CurveValue(def.curveType, beat - def.startTime, def.endTime - def.startTime,
                    def.startTempo, def.endTempo, def.Vcurve);
}

float BeatsToSeconds(TempoMap &map, Messages &messages, float beats) {
  float tempo = TempoAtBeat(map, map.beat);
  map.current = tempo;
  float seconds = 60.0F / tempo * beats;
  if (messages.tempoVerbose) {
    say(messages, "\n  > Beat %f Tempo = %f Val = %f (bts) %f (secs)",
        {map.beat, tempo, beats, seconds});
  }
  return seconds;
}

void ListTempos(const TempoMap &map, Messages &messages) {
  say(messages, "\n  Stored Tempos (There are %d defs):", {map.count});
  for (int i = 0; i < map.count; ++i) {
    const TempoDef &def = map.defs[i];
    compose(messages, "\n\t%d: Stime %f, Etime %f, Stempo %f, Etempo %f, Type %c",
            {i + 1, def.startTime, def.endTime, def.startTempo, def.endTempo,
             kListingLetters[static_cast<int>(def.curveType)]});
    if (def.curveType == static_cast<float>(kUserPower)) {
      compose(messages, ", Vcurve = %f", {def.Vcurve});
    }
    tell(messages, {});
  }
  say(messages, "\n");
}

}  // namespace korvo
