// The files of the runs that protection areas were traced by.  A run is named by the stem of its files, which
// the areas carry (`WHPAs.WHPAText`).
//
// Files are a cache of what was computed.  An edit that outdates a run gives its areas another stem, so that
// nothing old is drawn, and leaves the files alone: when the edit is taken back they are right again.  They
// go with the next run, or when the project closes.
#pragma once

#include <string>

namespace ormel {

struct Ormel;
struct ClockTime;

/// From the clock: month, day, year, hour, minute and half seconds, the places above 9 as small letters (base
/// 36), year and minute in plain decimals.
std::string StemFromClock(const ClockTime& now);
/// A stem of which no file stands, for the next run: `present` when it is one.
std::string FreshStem(const Ormel& ormel, const std::string& present);

/// The areas of this run have changed.  Nothing for "" and "NONE", the stems of areas without a run.
void OutdateAreaRun(Ormel& ormel, const std::string& stem);
/// The areas of this run were deleted or replaced.
void LeaveAreaRun(Ormel& ormel, const std::string& stem);
/// Deletes the files of runs that were outdated or left and that no area names, but for those of `keep`.
void DeleteOutdatedRuns(Ormel& ormel, const std::string& keep = {});

}  // namespace ormel
