// Rows and frames of one page of a form.
#pragma once

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>
#include <QWidget>
#include <string>
#include <vector>

#include "ormel/form_controls.h"

namespace ormel {

/// Places controls in the order they come.  Controls of one group that follow one another share a frame.
class FormPage {
 public:
  explicit FormPage(QWidget* page);

  void Add(const ControlView& view);
  /// What keeps a page of tabs from being spread over its height.
  void AddStretch();
  /// Lines the fields outside frames up with one another; once the captions have their texts.
  void AlignColumns();

 private:
  void StartGroup(const std::string& group);
  void AddField(const ControlView& view);
  void AddWide(const ControlView& view);
  void AddTall(const ControlView& view);
  void AddInline(const ControlView& view);
  bool JoinsCheck(const ControlView& view) const;

  QHBoxLayout* page_;  ///< the column, and what stands beside it
  QVBoxLayout* column_;
  QGridLayout* grid_ = nullptr;
  QHBoxLayout* inline_row_ = nullptr;  ///< the row that a further inline control joins
  QWidget* check_ =
      nullptr;  ///< the check box or option added last; a field without caption stands beside it
  std::string group_;
  std::vector<QGridLayout*> open_grids_;  ///< those outside frames
};

}  // namespace ormel
