// Commands of the view menu that ask or store something.
#pragma once

namespace ormel {

struct Ormel;

/// "Results Overlay...": the dialog; OK redraws.
void ResultsOverlayCommand(Ormel& ormel);
/// The editor grid: item 0 shows or hides it, 1 switches snapping, 2 asks for its spacing [map units].
void EDITORGRID(Ormel& ormel, int index);

}  // namespace ormel
