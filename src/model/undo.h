// Taking back what was done, and doing it again.
#pragma once

namespace ormel {

struct Ormel;

/// One step back, or forth: rows, solution, menus and picture.  Nothing when there is no step.
void EditUndo(Ormel& ormel);
void EditRedo(Ormel& ormel);

}  // namespace ormel
