#include "ormel/qt_interface.h"

#include <QApplication>
#include <QClipboard>
#include <QColorDialog>
#include <QCoreApplication>
#include <QEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QWidget>
#include <algorithm>
#include <array>

#include "core/settings.h"
#include "ormel/file_filter.h"
#include "ormel/form_dialog.h"
#include "ormel/help_viewer.h"
#include "ormel/icons.h"
#include "ormel/qt_text.h"
#include "ormel/text_viewer.h"
#include "ormel/wait_box.h"
#include "publish/chart_picture.h"
#include "qtdevice/fonts.h"
#include "qtdevice/painter_device.h"
#include "shell/about.h"

namespace ormel {
namespace {

constexpr int kShowAfter = 400;  ///< milliseconds a command may take before the wait box comes up
constexpr int kPumpEvery = 25;   ///< milliseconds
constexpr int kLogo = 64;        ///< pixels
constexpr int kPumpFor = 10;     ///< milliseconds

std::string FolderKey(const QString& dialog) {
  return "Folder of " + dialog.toStdString();
}

struct ButtonsRow {
  Buttons buttons;
  QMessageBox::StandardButtons shown;
  QMessageBox::StandardButton enter, escape;
};
constexpr std::array kButtons = {
    ButtonsRow{Buttons::kOk, QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok},
    ButtonsRow{Buttons::kOkCancel, QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok,
               QMessageBox::Cancel},
    ButtonsRow{Buttons::kYesNo, QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes, QMessageBox::No},
    ButtonsRow{Buttons::kYesNoCancel, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel,
               QMessageBox::Yes, QMessageBox::Cancel},
};

Answer AnswerOf(int button) {
  switch (button) {
    case QMessageBox::Yes:
      return Answer::kYes;
    case QMessageBox::No:
      return Answer::kNo;
    case QMessageBox::Ok:
      return Answer::kOk;
    default:
      return Answer::kCancel;
  }
}

QMessageBox::Icon IconOf(Icon icon) {
  switch (icon) {
    case Icon::kInformation:
      return QMessageBox::Information;
    case Icon::kQuestion:
      return QMessageBox::Question;
    case Icon::kWarning:
      return QMessageBox::Warning;
    case Icon::kStop:
      return QMessageBox::Critical;
    case Icon::kNone:
      break;
  }
  return QMessageBox::NoIcon;
}

/// What a user does, as against what the system tells a widget.
bool IsInput(QEvent::Type type) {
  constexpr std::array kInput = {QEvent::MouseButtonPress,
                                 QEvent::MouseButtonRelease,
                                 QEvent::MouseButtonDblClick,
                                 QEvent::MouseMove,
                                 QEvent::Wheel,
                                 QEvent::KeyPress,
                                 QEvent::KeyRelease,
                                 QEvent::Shortcut,
                                 QEvent::ShortcutOverride,
                                 QEvent::ContextMenu,
                                 QEvent::DragEnter,
                                 QEvent::DragMove,
                                 QEvent::Drop,
                                 QEvent::TouchBegin,
                                 QEvent::TouchUpdate,
                                 QEvent::TouchEnd,
                                 QEvent::TabletPress,
                                 QEvent::TabletRelease};
  return std::find(kInput.begin(), kInput.end(), type) != kInput.end();
}

}  // namespace

/// A question in the middle of a wait: the arrow comes back, and the question may be answered.
class QtInterface::Asking {
 public:
  explicit Asking(QtInterface& ui) : ui_(ui) {
    ++ui_.asking_;
    if (ui_.waiting_) QApplication::setOverrideCursor(Qt::ArrowCursor);
    cursor_set_ = ui_.waiting_;
  }
  ~Asking() {
    --ui_.asking_;
    if (cursor_set_) QApplication::restoreOverrideCursor();
  }
  Asking(const Asking&) = delete;
  Asking& operator=(const Asking&) = delete;

 private:
  QtInterface& ui_;
  bool cursor_set_ = false;
};

QtInterface::QtInterface() {
  last_pump_.start();
}

QtInterface::~QtInterface() {
  if (waiting_) QApplication::restoreOverrideCursor();
}

QWidget* QtInterface::Front() const {
  if (QWidget* modal = QApplication::activeModalWidget()) return modal;
  return window_;
}

Answer QtInterface::Ask(const Box& box) {
  const Asking asking(*this);
  const auto row = std::find_if(kButtons.begin(), kButtons.end(),
                                [&](const ButtonsRow& r) { return r.buttons == box.buttons; });
  QMessageBox dialog(Front());
  dialog.setWindowTitle(ToQString(box.title));
  dialog.setTextFormat(Qt::PlainText);
  dialog.setTextInteractionFlags(Qt::TextSelectableByMouse);
  dialog.setText(ToQString(box.text));
  dialog.setIcon(IconOf(box.icon));
  dialog.setStandardButtons(row->shown);
  dialog.setDefaultButton(box.safe_default ? row->escape : row->enter);
  dialog.setEscapeButton(row->escape);
  return AnswerOf(dialog.exec());
}

std::optional<std::string> QtInterface::Ask(const InputBox& box) {
  const Asking asking(*this);
  QInputDialog dialog(Front());
  dialog.setWindowTitle(ToQString(box.title));
  dialog.setLabelText(ToQString(box.text));
  dialog.setTextValue(ToQString(box.initial));
  dialog.setMinimumWidth(360);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.textValue().toStdString();
}

QString QtInterface::RememberedFolder(const QString& dialog) const {
  if (const QString folder = folders_.value(dialog); !folder.isEmpty()) return folder;
  if (settings_ == nullptr) return {};
  const QString stored = ToQString(settings_->GetSetting(FolderKey(dialog), ""));
  return QFileInfo(stored).isDir() ? stored : QString();
}

void QtInterface::RememberFolder(const QString& dialog, const QString& folder) {
  folders_[dialog] = folder;
  try {
    if (settings_ != nullptr) settings_->SaveSetting(FolderKey(dialog), folder.toStdString());
  } catch (const std::exception&) {
    // The memory is a convenience: it then lasts for this run.
  }
}

std::optional<std::string> QtInterface::Ask(const FileDialog& request) {
  const Asking asking(*this);
  const QString title = ToQString(request.title);
  QString folder = ToQString(request.directory);
  if (folder.isEmpty()) folder = RememberedFolder(title);
  QFileDialog dialog(Front(), title, folder);
  dialog.setAcceptMode(request.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog.setFileMode(request.save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  // The command asks before it overwrites, in its own words.
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  dialog.setNameFilters(NameFilters(request.filter));
  dialog.setDefaultSuffix(ToQString(request.default_extension));
  // A name without an extension gets that of the kind of file chosen.
  connect(&dialog, &QFileDialog::filterSelected, &dialog,
          [&dialog](const QString& filter) { dialog.setDefaultSuffix(SuffixOf(filter)); });
  if (!request.file_name.empty()) dialog.selectFile(ToQString(request.file_name));
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  RememberFolder(title, dialog.directory().absolutePath());
  return dialog.selectedFiles().constFirst().toStdString();
}

std::optional<Color> QtInterface::ChooseColor(Color initial) {
  const Asking asking(*this);
  const QColor chosen = QColorDialog::getColor(ToQColor(initial), Front());
  if (!chosen.isValid()) return std::nullopt;
  return FromQColor(chosen);
}

std::optional<FontChoice> QtInterface::ChooseFont(const FontChoice& initial) {
  const Asking asking(*this);
  QFont font = MapFont(initial.name, initial.bold, initial.italic);
  font.setPointSize(std::max(1, initial.size));
  bool chosen = false;
  const QFont result = QFontDialog::getFont(&chosen, font, Front());
  if (!chosen) return std::nullopt;
  return FontChoice{result.family().toStdString(), std::max(1, result.pointSize()), result.bold(),
                    result.italic()};
}

void QtInterface::ShowForm(Form& form) {
  const auto* about = dynamic_cast<const About*>(&form);
  const bool splash = about != nullptr && about->splash();
  if (splash && splash_time_ <= 0) return;
  const Asking asking(*this);
  FormDialog dialog(form, Front());
  connect(&dialog, &FormDialog::HelpAsked, this,
          [this](const QString& topic) { ShowHelp(topic.toStdString()); });
  if (about != nullptr || form.Name() == "Welcome") dialog.SetPicture(ProgramIcon().pixmap(kLogo, kLogo));
  if (splash) dialog.MakeSplash(splash_time_);
  dialog.Show();
}

void QtInterface::SetPanel(Panel panel, std::string_view text) {
  emit PanelChanged(static_cast<int>(panel), ToQString(text));
}

void QtInterface::SetCaption(std::string_view caption) {
  emit CaptionChanged(ToQString(caption));
}

void QtInterface::MenusChanged() {
  emit MenuStateChanged();
}

void QtInterface::PleaseWaitShow(std::string_view text) {
  wait_text_ = ToQString(text);
  if (wait_box_ != nullptr) wait_box_->SetText(wait_text_);
  if (waiting_) return;
  waiting_ = true;
  asked_before_wait_ = asking_;
  cancel_ = false;
  fraction_ = -1.0;
  step_.clear();
  wait_time_.start();
  QApplication::setOverrideCursor(Qt::WaitCursor);
  qApp->installEventFilter(this);
}

void QtInterface::PleaseWaitHide() {
  if (!waiting_) return;
  waiting_ = false;
  qApp->removeEventFilter(this);
  QApplication::restoreOverrideCursor();
  delete wait_box_;
  emit WaitEnded();
}

void QtInterface::ShowWaitBox() {
  wait_box_ = new WaitBox(Front());
  wait_box_->SetText(wait_text_);
  wait_box_->SetProgress(fraction_, step_);
  connect(wait_box_, &WaitBox::CancelPressed, this, &QtInterface::RequestCancel);
  wait_box_->show();
}

void QtInterface::Progress(double fraction, std::string_view text) {
  fraction_ = fraction;
  step_ = ToQString(text);
  if (wait_box_ != nullptr) wait_box_->SetProgress(fraction_, step_);
  Pump();
}

bool QtInterface::CancelRequested() {
  Pump();
  return cancel_;
}

void QtInterface::Pump() {
  if (!waiting_ || pumping_ || Answering() || last_pump_.elapsed() < kPumpEvery) return;
  pumping_ = true;
  if (wait_box_ == nullptr && wait_time_.elapsed() > kShowAfter) ShowWaitBox();
  if (wait_box_ != nullptr) wait_box_->SetElapsed(wait_time_.elapsed());
  QCoreApplication::processEvents(QEventLoop::AllEvents, kPumpFor);
  last_pump_.restart();
  pumping_ = false;
}

bool QtInterface::eventFilter(QObject* target, QEvent* event) {
  if (!pumping_ || Answering() || !IsInput(event->type())) return false;
  const auto* widget = qobject_cast<QWidget*>(target);
  if (widget == nullptr) return event->type() == QEvent::Shortcut;
  return wait_box_ == nullptr || widget->window() != wait_box_;
}

void QtInterface::CopyText(std::string_view text) {
  QApplication::clipboard()->setText(ToQString(text));
}

void QtInterface::CopyChart(const Chart& chart) {
  QApplication::clipboard()->setImage(ChartImage(chart, QSize(900, 650), 2.0));
}

void QtInterface::ViewTextFile(const std::string& path) {
  ShowTextFile(ToQString(path), window_);
}

void QtInterface::ShowHelp(std::string_view topic) {
  ShowHelpTopic(ToQString(topic), Front());
}

}  // namespace ormel
