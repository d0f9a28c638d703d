// The one renderer of forms: any form model as a modal dialog.
#pragma once

#include <QDialog>
#include <exception>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "core/form.h"
#include "ormel/form_controls.h"
#include "ormel/form_page.h"

class QPixmap;
class QTabWidget;
class QVBoxLayout;

namespace ormel {

/// Enter presses the form's accept button, Escape and the window's close button its reject button, F1 asks
/// for help.  After each action of the user the dialog shows the form's state again and closes when the form
/// has hidden itself.
class FormDialog : public QDialog {
  Q_OBJECT
 public:
  FormDialog(Form& form, QWidget* parent);

  /// A picture beside the controls.
  void SetPicture(const QPixmap& picture);
  /// Without a title bar, and accepted by itself after a while.
  void MakeSplash(int milliseconds);

  /// Runs modally until the form hides itself.  A failure inside one of the form's reactions closes the
  /// dialog and is thrown from here, out of the toolkit's event loop.
  void Show();

  /// One action of the user on the form.  Ignored while another one runs.
  void Do(const std::function<void(Form&)>& action);
  /// Presses the accept button, if there is one that is offered.
  void PressAccept();
  /// Makes room for a table that has come into view; never less than there is.
  void Grow();

  void reject() override;

 signals:
  void HelpAsked(const QString& topic);

 private:
  void Build();
  bool HasTable() const;
  QSize Room() const;
  void AddButtonRow(const std::vector<const ControlSpec*>& buttons);
  void MarkDefault();
  QWidget* Page(const ControlSpec& spec);
  ControlView& AddView(const ControlSpec& spec, bool at_foot);
  void ShowStates();
  void ShowTabs();
  void TakeFocusRequest();
  const ControlSpec* ButtonOf(ButtonRole role) const;

  Form& form_;
  std::vector<ControlView> views_;
  std::map<QWidget*, FormPage> pages_;
  QLabel* picture_;
  QVBoxLayout* column_;
  QTabWidget* tabs_ = nullptr;
  long shown_revision_ = -1;
  bool busy_ = false;
  std::exception_ptr failure_;
};

}  // namespace ormel
