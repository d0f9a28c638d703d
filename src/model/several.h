// Several elements at once: each command is one step of the history.
#pragma once

#include "core/types.h"

namespace ormel {

struct Ormel;

/// All elements of the project that can be selected with others.
void EditSelectAll(Ormel& ormel);
/// Those whose points all lie within a box on the map; with `add` what is selected already stays, and what is
/// selected and in the box is left out.
void SelectWithin(Ormel& ormel, const Extents& box, bool add);
/// The element at a place comes to the selection, or leaves it.
void ToggleSelected(Ormel& ormel, MapPoint at);

/// Moves the selected elements as a whole; corners that other domains share with a moved one go along, and
/// image wells follow their sources.
void MoveSelected(Ormel& ormel, MapPoint by);
/// Asks, then deletes the selected elements.
void DeleteSelected(Ormel& ormel);

/// Puts the selected elements on the clipboard as text.
void EditCopy(Ormel& ormel);
/// Adds the elements on the clipboard, where they were copied, or beside what stands there, and selects them.
/// Labels that must be the only ones get a number.  Elements that were copied in other units are refused, and
/// nothing is added.
void EditPaste(Ormel& ormel);

}  // namespace ormel
