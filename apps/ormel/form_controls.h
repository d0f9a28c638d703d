// The controls of a form as widgets: one table row a kind.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QWidget>

#include "core/form.h"

namespace ormel {

class FormDialog;

/// How a control takes its place on a page.
enum class ControlPlace {
  kField,   ///< caption, editor, unit in one row
  kWide,    ///< the whole width; the widget shows its caption itself
  kTall,    ///< caption above an editor that grows
  kInline,  ///< stands beside its neighbours of the same placement
  kBeside,  ///< to the right of all others of its page, as high as they are together
};

/// One control on the screen.
struct ControlView {
  const ControlSpec* spec = nullptr;
  ControlPlace place = ControlPlace::kField;
  QLabel* caption = nullptr;  ///< null for kinds that carry their caption themselves
  QWidget* editor = nullptr;
  QLabel* unit = nullptr;   ///< null for kinds without one
  QWidget* page = nullptr;  ///< page of the tabs; null outside them
};

/// Makes the widgets of a control and connects what the user does with them to `dialog`.  A button in the
/// body of a form that explains itself by a tip becomes one of the ways on that the form offers, tip in view.
ControlView MakeControl(const ControlSpec& spec, bool at_foot, FormDialog& dialog);
/// Shows the state.  Emits nothing that would reach the form again.
void UpdateControl(const ControlView& view, const ControlState& state);
/// Gives the control the focus with its text selected.
void FocusControl(const ControlView& view);

/// A line of text that selects all of itself with the focus and tells when the user leaves it.
class FieldEdit : public QLineEdit {
  Q_OBJECT
 public:
  explicit FieldEdit(QWidget* parent) : QLineEdit(parent) {}

 signals:
  void Left();

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
};

}  // namespace ormel
