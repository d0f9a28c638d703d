// Integrity check and repair of a project.
#pragma once

namespace ormel {

struct Ormel;

/// Runs silently at the end of every open: removes vertices that no well, test point or particle claims and
/// reference points of uniform flows that are gone, and brings an older True of `UNIFLOWCompute` to 1.
void DBIntegrity(Ormel& ormel);

/// Asks, then removes test points, text labels and wells outside the present map window.  A point on a side
/// of the window is inside.
void DBRepair(Ormel& ormel);
void RemoveStrayTestPoints(Ormel& ormel);
void RemoveStrayTextLabels(Ormel& ormel);
void RemoveStrayWells(Ormel& ormel);

}  // namespace ormel
