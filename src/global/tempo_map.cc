// A definition gives the tempo between two beats along a curve. The one that is in force at a beat
// is found by walking the definitions in the order in which they were made and stopping at the
// first that starts later: one given out of order hides those behind it.
#include "global/tempo_map.h"

#include "driver/run_state.h"
#include "global/curve.h"
#include "reader/characters.h"
#include "reader/lexical.h"
#include "reader/numbers.h"

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

void warnOfTempo(RunState &run, const SourceReader &source, float tempo, WarningCode fast,
                 WarningCode slow) {
  if (tempo > kQuiteFast) {
    warn(run, source, fast);
  } else if (tempo < kQuiteSlow) {
    warn(run, source, slow);
  }
}

ErrorCode readTerm(RunState &run, SourceReader &source, ErrorCode missing, float &term) {
  return read_float(term, source.line, source.position) ? skip_separator(run, source) : missing;
}

// The curve letter at the position. A letter that names no curve means a straight line and is left
// where it is.
ErrorCode readCurve(RunState &run, SourceReader &source, TempoDef &def) {
  CurveType type = kLine;
  if (!readCurveLetter(source.line, source.position, type, def.Vcurve)) {
    return kBadCurve;
  }
  def.curveType = static_cast<float>(type);
  ErrorCode error = skip_blanks(run, source);
  if (error > 0) {
    return error;
  }
  if (current(source) == '*') {
    return kBeatMoveNotAllowed;
  }
  return skip_separator(run, source);
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

void warnOfDefinition(RunState &run, const SourceReader &source, const TempoDef &def) {
  if (def.startTime > kLateTime) {
    warn(run, source, kTempoStartsLate);
  }
  if (def.endTime > kLateTime) {  // the end is looked at, not the length
    warn(run, source, kTempoChangeLong);
  }
  warnOfTempo(run, source, def.startTempo, kTempo1Fast, kTempo1Slow);
  warnOfTempo(run, source, def.endTempo, kTempo2Fast, kTempo2Slow);
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
ErrorCode defineConstantTempo(RunState &run, SourceReader &source, float tempo) {
  ++source.position;
  if (tempoIsOutOfRange(tempo)) {
    return kTempoOutOfRange;
  }
  TempoDef &def = run.tempo.defs[0];
  def.startTime = 0.0F;
  def.endTime = 1000.0F;
  def.startTempo = tempo;
  def.endTempo = tempo;
  def.curveType = static_cast<float>(kLine);
  warnOfTempo(run, source, tempo, kTempo1Fast, kTempo1Slow);
  return kOk;
}

// te(start, end, start tempo, end tempo, curve): a change between two beats.
ErrorCode defineTempoChange(RunState &run, SourceReader &source, float startTime) {
  TempoDef def;
  def.startTime = startTime;
  ErrorCode error = readTerm(run, source, kBadTempoTerm2, def.endTime);
  if (error <= 0) {
    error = readTerm(run, source, kBadTempoTerm3, def.startTempo);
  }
  if (error <= 0) {
    error = readTerm(run, source, kBadTempoTerm4, def.endTempo);
  }
  if (error > 0) {
    return error;
  }
  def.curveType = static_cast<float>(kPower);
  def.Vcurve = 1.0F;
  if (isLetter(current(source))) {
    error = readCurve(run, source, def);
    if (error > 0) {
      return error;
    }
  }
  error = checkRanges(def);
  if (error > 0) {
    return error;
  }
  warnOfDefinition(run, source, def);
  error = store(run.tempo, def);
  if (error > 0) {
    return error;
  }
  if (current(source) != ')') {
    return kMissingParenthesis;
  }
  ++source.position;
  return kOk;
}

// Tells of every definition that starts before its predecessor has ended. All are looked at behind
// every statement, so a conflict is told again; it is no warning of the catalogue, and -s does not
// silence it.
void tellConflicts(RunState &run) {
  float previousEnd = 0.0F;
  for (int i = 0; i < run.tempo.count; ++i) {
    if (previousEnd > run.tempo.defs[i].startTime) {
      say(run.screen, "\nWARNING: Tempo #%d conflicts with previous tempo's end time!", {i + 1});
    }
    previousEnd = run.tempo.defs[i].endTime;
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

ErrorCode DefineTempo(RunState &run, SourceReader &source) {
  ErrorCode error = openStatement(run, source);
  if (error > 0) {
    return error;
  }
  float first = 0.0F;
  error = readTerm(run, source, kBadTempoTerm1, first);
  if (error > 0) {
    return error;
  }
  bool isConstant = current(source) == ')';
  error =
      isConstant ? defineConstantTempo(run, source, first) : defineTempoChange(run, source, first);
  if (error > 0) {
    return error;
  }
  tellConflicts(run);
  return kOk;
}

float TempoAtBeat(const TempoMap &map, float beat) {
  const TempoDef &def = findDefinition(map, beat);
  return CurveValue(def.curveType, beat - def.startTime, def.endTime - def.startTime,
                    def.startTempo, def.endTempo, def.Vcurve);
}

float BeatsToSeconds(RunState &run, float beats) {
  float tempo = TempoAtBeat(run.tempo, run.tempo.beat);
  run.tempo.current = tempo;
  float seconds = 60.0F / tempo * beats;
  if (run.options.tempoVerbose) {
    say(run.screen, "\n  > Beat %f Tempo = %f Val = %f (bts) %f (secs)",
        {run.tempo.beat, tempo, beats, seconds});
  }
  return seconds;
}

void ListTempos(RunState &run) {
  const TempoMap &map = run.tempo;
  say(run.screen, "\n  Stored Tempos (There are %d defs):", {map.count});
  for (int i = 0; i < map.count; ++i) {
    const TempoDef &def = map.defs[i];
    say(run.screen, "\n\t%d: Stime %f, Etime %f, Stempo %f, Etempo %f, Type %c",
        {i + 1, def.startTime, def.endTime, def.startTempo, def.endTempo,
         kListingLetters[static_cast<int>(def.curveType)]});
    if (def.curveType == static_cast<float>(kUserPower)) {
      say(run.screen, ", Vcurve = %f", {def.Vcurve});
    }
  }
  say(run.screen, "\n");
}
