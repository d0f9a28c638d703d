// Editing the properties of the selected element.
#pragma once

namespace ormel {

struct Ormel;

/// The dialog of the selected element, loaded from the store and written back; what the edit touched decides
/// what becomes invalid.  Image wells and flux inspection lines have no dialog.
void ElemSetProperties(Ormel& ormel);

}  // namespace ormel
