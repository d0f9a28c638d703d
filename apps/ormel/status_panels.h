// The status bar: activity, feedback, note and the position of the pointer.
#pragma once

#include <QStatusBar>
#include <array>

class QLabel;

namespace ormel {

class StatusPanels : public QStatusBar {
  Q_OBJECT
 public:
  explicit StatusPanels(QWidget* parent);

  /// `panel` is a number of the enumeration Panel.
  void SetPanel(int panel, const QString& text);
  QString Text(int panel) const;

 private:
  std::array<QLabel*, 5> labels_{};
};

}  // namespace ormel
