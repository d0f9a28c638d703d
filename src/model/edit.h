// Editing the properties of elements: in the dialog of the selected one, or several by what a sheet of
// properties sets.
#pragma once

#include <functional>
#include <memory>
#include <span>

#include "document/elements.h"
#include "model/dialog.h"

namespace ormel {

struct Ormel;

/// The dialog of the selected element, loaded from the store and written back; what the edit touched decides
/// what becomes invalid.  Image wells and flux inspection lines have no dialog.
void ElemSetProperties(Ormel& ormel);

/// What of a solution an accepted form has touched.
struct Touches {
  bool solution = false;    ///< asks whether it stays
  bool paths = false;       ///< the particles start elsewhere
  bool test_point = false;  ///< its result comes with the next solve
  bool look = false;        ///< paths have another colour
  bool grid_or_trace = false;
};

/// The form of one element, filled from the store.
class ElementEdit {
 public:
  virtual ~ElementEdit() = default;
  virtual OkCancelForm& form() = 0;
  /// Of the accepted form.
  virtual Touches Touched() const = 0;
  virtual void Store() = 0;
};

/// Null for an element without properties of its own: an image well, the vertex of a stream boundary, one
/// that is gone.  Reads, and changes nothing.
std::unique_ptr<ElementEdit> EditOf(Ormel& ormel, const ElementId& id);

/// `change` sets controls of each element's form, which then checks them as by OK.  Only when all forms
/// accept is anything stored; then as one step.  False when one refused, which told the user why.
bool EditElements(Ormel& ormel, std::span<const ElementId> ids, const std::function<void(Form&)>& change);

}  // namespace ormel
