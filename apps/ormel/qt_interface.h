// The user in front of the window: boxes, dialogs, the wait box and the viewers.
#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>

#include "core/user_interface.h"

class QWidget;

namespace ormel {

class Settings;
class WaitBox;

/// Long commands call Progress() and CancelRequested(); each call lets the toolkit work for a moment, so that
/// the window repaints and Cancel is heard.  Until the command ends the user can press nothing else.
class QtInterface final : public QObject, public UserInterface {
  Q_OBJECT
 public:
  QtInterface();
  ~QtInterface() override;

  /// The window that dialogs stand before.
  void SetWindow(QWidget* window) { window_ = window; }
  /// Where folders of file dialogs are remembered from run to run; null keeps them for this run.
  void SetSettings(Settings* settings) { settings_ = settings; }
  /// How long the splash box stays; 0 leaves it out.
  void SetSplashTime(int milliseconds) { splash_time_ = milliseconds; }
  /// A command has asked for patience and has not yet let go.
  bool Waiting() const { return waiting_; }
  /// As if the user had pressed Cancel in the wait box.
  void RequestCancel() { cancel_ = true; }

  Answer Ask(const Box& box) override;
  std::optional<std::string> Ask(const InputBox& box) override;
  std::optional<std::string> Ask(const FileDialog& dialog) override;
  std::optional<Color> ChooseColor(Color initial) override;
  std::optional<FontChoice> ChooseFont(const FontChoice& initial) override;
  void ShowForm(Form& form) override;
  void SetPanel(Panel panel, std::string_view text) override;
  void SetCaption(std::string_view caption) override;
  void PleaseWaitShow(std::string_view text) override;
  void PleaseWaitHide() override;
  void Progress(double fraction, std::string_view text) override;
  bool CancelRequested() override;
  void CopyText(std::string_view text) override;
  void CopyChart(const Chart& chart) override;
  void ViewTextFile(const std::string& path) override;
  void ShowHelp(std::string_view topic) override;
  void MenusChanged() override;

 signals:
  void PanelChanged(int panel, const QString& text);
  void CaptionChanged(const QString& caption);
  void MenuStateChanged();
  /// The wait has ended and the user may go on.
  void WaitEnded();

 protected:
  bool eventFilter(QObject* target, QEvent* event) override;

 private:
  /// The widget a new dialog belongs to.
  QWidget* Front() const;
  /// A dialog has come up since the wait began.
  bool Answering() const { return asking_ > asked_before_wait_; }
  void Pump();
  void ShowWaitBox();
  class Asking;

  QString RememberedFolder(const QString& dialog) const;
  void RememberFolder(const QString& dialog, const QString& folder);

  QPointer<QWidget> window_;
  Settings* settings_ = nullptr;
  QPointer<WaitBox> wait_box_;
  QString wait_text_;
  double fraction_ = -1.0;
  QString step_;
  QElapsedTimer wait_time_;
  QElapsedTimer last_pump_;
  bool waiting_ = false;
  bool cancel_ = false;
  bool pumping_ = false;
  int asking_ = 0;             ///< open dialogs
  int asked_before_wait_ = 0;  ///< of them, those from whose buttons the waiting command was started
  int splash_time_ = 1800;
  QHash<QString, QString> folders_;  ///< where each kind of file dialog was last used
};

}  // namespace ormel
