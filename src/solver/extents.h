// The rectangle that the solver works in, the origin of its coordinates, and the size of the model.
//
// All rectangles here are in map coordinates; heads are in computation units.
#pragma once

namespace ormel {

struct Ormel;

/// Fixes the extents of the model (`window.model`), its reference head, and the map extents, and stores the
/// origin in `Model`.  With uniform flow, and with fewer than two vertices, the extents are the display
/// window. `StartFromEmpty` says that the extents keep nothing of earlier ones; they never do, since what is
/// found replaces them.  `ReplaceMapExtents`: the map extents become the model's; otherwise they only grow.
void ModelCheckExtents(Ormel& ormel, bool StartFromEmpty, bool ReplaceMapExtents);

/// Stores the origin of the present extents as that of the solve.  ModelCheckExtents does so only while no
/// valid solution depends on the stored one: a zoom between a solve and a trace must not move what the solver
/// says.
void StoreModelOrigin(Ormel& ormel);

/// The model's origin as the last solve stored it, so that coordinates stay those of the saved solution.
void ModelRestoreModelOrigin(Ormel& ormel);

/// Widens the map extents (`window.full`) to hold the base maps that are shown.
void ModelCheckMapExtents(Ormel& ormel);

/// What there is to see, found afresh: the maps that are shown, all vertices, and the circles of the
/// protection areas while these are shown.  The map extents become that, so that they come back after a
/// window that was large.  Without anything that has a size they stay.
void FindMapExtents(Ormel& ormel);

/// What the model consists of.  A "line doublet" is one side of a domain or barrier.
struct ModelSize {
  int wells = 0;  ///< two-dimensional, steady
  int partially_penetrating_wells = 0;
  int transient_wells = 0;
  int well_equations = 0;
  int linesink_strings = 0;
  int linesinks = 0;
  int inhomogeneities = 0;
  int inhomogeneity_elements = 0;
  int equation_elements = 0;  ///< sides of domains that change conductivity or base
  int barriers = 0;
  int barrier_elements = 0;

  /// Upper bound on the solver's equations, at least 61.
  int SizeNumber() const;
};

ModelSize CountModel(Ormel& ormel);

/// The size number for the solver's command line; keeps it in `solution.size_number`.  `ShowBox` tells the
/// user the counts and the solver's limits.
int ModelGetSize(Ormel& ormel, bool ShowBox);

}  // namespace ormel
