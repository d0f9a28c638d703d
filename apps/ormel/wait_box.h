// The box of a long command: what it does, how far it is, how long it has run, and Cancel.
#pragma once

#include <QDialog>
#include <QElapsedTimer>

class QLabel;
class QProgressBar;
class QPushButton;

namespace ormel {

class WaitBox : public QDialog {
  Q_OBJECT
 public:
  explicit WaitBox(QWidget* parent);

  void SetText(const QString& text);
  /// `fraction` 0 to 1; below 0 the bar only shows that the program is alive.
  void SetProgress(double fraction, const QString& step);
  /// Shows the time since the command began, and what the progress so far says of the rest.
  void SetElapsed(qint64 milliseconds);

  /// Cancel and Escape ask; they close nothing.
  void reject() override;

 signals:
  void CancelPressed();

 private:
  QLabel* text_;
  QLabel* step_;
  QLabel* elapsed_;
  QProgressBar* bar_;
  QPushButton* cancel_;
  double fraction_ = -1.0;
};

}  // namespace ormel
