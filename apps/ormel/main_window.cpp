#include "ormel/main_window.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMenuBar>
#include <QMimeData>
#include <QScreen>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <cmath>

#include "core/command.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "core/processes.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "ormel/icons.h"
#include "ormel/map_export.h"
#include "ormel/menu_actions.h"
#include "ormel/panels.h"
#include "ormel/qt_interface.h"
#include "ormel/qt_text.h"
#include "ormel/status_panels.h"
#include "ormel/tool_buttons.h"
#include "shell/lifecycle.h"
#include "shell/menus.h"
#include "text/files.h"

namespace ormel {
namespace {

constexpr double kTwipsPerInch = 1440.0;
constexpr int kTitleBar = 30;  ///< pixels

/// The one local project file of a drop, or nothing.
QString DroppedProject(const QMimeData& data) {
  const QList<QUrl> urls = data.urls();
  if (urls.size() != 1 || !urls.constFirst().isLocalFile()) return {};
  const QString path = urls.constFirst().toLocalFile();
  return path.endsWith(QStringLiteral(".orm"), Qt::CaseInsensitive) ? path : QString();
}

}  // namespace

MainWindow::MainWindow(Ormel& ormel, QtInterface& ui)
    : ormel_(ormel),
      ui_(ui),
      map_(new MapWidget(ormel, this)),
      panels_(new StatusPanels(this)),
      output_(std::make_unique<MapExport>(ormel, *this)) {
  setWindowIcon(ProgramIcon());
  setAcceptDrops(true);
  setMinimumSize(640, 440);
  setCentralWidget(map_);
  setStatusBar(panels_);
  menu_actions_ = new MenuActions(ormel, *menuBar(), [this](std::string_view control, int index) {
    if (!Busy()) Dispatch(ormel_, control, index);
    ShowAll();
  });
  toolbar_ = new ToolButtons(ormel, this, [this](std::string_view key) {
    if (!Busy()) DispatchButton(ormel_, key);
    ShowAll();
  });
  addToolBar(toolbar_);
  const auto idle = [this] {
    const MouseState& mouse = ormel_.mouse;
    return !Busy() && mouse.MouseMode == MouseMode::kSelect && !mouse.MovePending && !mouse.MenusOff;
  };
  beside_ = new Panels({ormel, idle, [this] { ShowAll(); }}, *this);
  connect(beside_, &Panels::Changed, this, &MainWindow::Refresh);
  map_->SetBusyTest([this] { return Busy(); });
  connect(map_, &MapWidget::Touched, this, &MainWindow::Refresh);
  connect(&ui, &QtInterface::PanelChanged, panels_, &StatusPanels::SetPanel);
  connect(&ui, &QtInterface::CaptionChanged, this, &QWidget::setWindowTitle);
  connect(&ui, &QtInterface::MenuStateChanged, this, &MainWindow::Refresh);
  ui.SetWindow(this);
}

MainWindow::~MainWindow() {
  ui_.SetWindow(nullptr);
  map_->SetView(nullptr);
}

void MainWindow::SetView(MapViewImpl& view) {
  view_ = &view;
  map_->SetView(&view);
  ShowAll();
}

bool MainWindow::Busy() const {
  return ormel_.command.depth > 0 || ui_.Waiting();
}

MainWindow::Shown MainWindow::Present() const {
  return {ormel_.menus.revision(), ormel_.layers, ormel_.project.ProjectOpen, ormel_.solution.ValidSolution};
}

void MainWindow::Refresh() {
  if (shown_ != Present()) return ShowAll();
  beside_->Refresh();
}

void MainWindow::ShowAll() {
  shown_ = Present();
  menu_actions_->Refresh();
  toolbar_->Refresh();
  beside_->Refresh();
}

void MainWindow::Place(const Placement& placement) {
  const double pixel = kTwipsPerInch / logicalDpiX();
  const auto pixels = [pixel](double twips) { return static_cast<int>(std::lround(twips / pixel)); };
  if (placement.Maximized) setWindowState(windowState() | Qt::WindowMaximized);
  if (placement.First && screen() != nullptr) {
    constexpr double kShare = 0.85;
    const QRect whole = screen()->availableGeometry();
    resize(QSizeF(whole.size() * kShare).toSize());
    move(whole.center() - rect().center());
    return;
  }
  move(pixels(placement.Left), pixels(placement.Top));
  resize(pixels(placement.Width), pixels(placement.Height));
  // A screen of the last run may be gone: the title bar has to be within reach.
  const QRect title(pos(), QSize(width(), kTitleBar));
  const QList<QScreen*> screens = QGuiApplication::screens();
  const bool reachable = std::any_of(screens.begin(), screens.end(), [&](const QScreen* screen) {
    const QRect seen = screen->availableGeometry().intersected(title);
    return seen.width() >= kTitleBar && seen.height() >= kTitleBar / 2;
  });
  if (!reachable && screen() != nullptr) move(screen()->availableGeometry().topLeft());
}

std::optional<Placement> MainWindow::PresentPlacement() const {
  if (isMinimized()) return std::nullopt;
  const double pixel = kTwipsPerInch / logicalDpiX();
  Placement placement;
  placement.Maximized = isMaximized();
  const QRect place = isMaximized() ? normalGeometry() : QRect(pos(), size());
  placement.Top = place.y() * pixel;
  placement.Left = place.x() * pixel;
  placement.Width = place.width() * pixel;
  placement.Height = place.height() * pixel;
  placement.Toolbar = ormel_.layers.On(Layer::kToolbar);
  return placement;
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (Busy()) {
    event->ignore();
    AskWhileBusy();
    return;
  }
  beside_->Save();
  Form_Unload(ormel_, PresentPlacement());
  event->accept();
}

void MainWindow::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  beside_->Fit(width());
}

void MainWindow::PlacePanels() {
  beside_->Restore();
}

void MainWindow::TogglePanel(int index) {
  beside_->Toggle(index);
}

void MainWindow::AskWhileBusy() {
  if (!ui_.Waiting() || close_after_wait_) return;
  const Box box{kProgramTitle, "A run is still going on.\nStop it and close Ormel?", Buttons::kYesNo,
                Icon::kQuestion};
  if (ui_.Ask(box) == Answer::kYes) StopAndClose();
}

void MainWindow::EndByRequest() {
  if (ui_.Waiting()) {
    if (!close_after_wait_) StopAndClose();
  } else if (QWidget* asking = QApplication::activeModalWidget()) {
    asking->close();  // as by Escape; whoever asks comes again for the box or the window behind it
  } else {
    close();
  }
}

void MainWindow::StopAndClose() {
  close_after_wait_ = true;
  ui_.RequestCancel();
  // The command first comes to its end, in the loop that this event interrupts.
  auto* retry = new QTimer(this);
  connect(retry, &QTimer::timeout, this, [this, retry] {
    if (Busy()) return;
    retry->deleteLater();
    close();
  });
  retry->start(50);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (!Busy() && !DroppedProject(*event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  const QString path = DroppedProject(*event->mimeData());
  if (path.isEmpty()) return;
  event->acceptProposedAction();
  // After the drop has ended: the other program waits for its answer, and opening may ask questions.
  QTimer::singleShot(0, this, [this, path] { OpenDropped(path); });
}

void MainWindow::OpenDropped(const QString& path) {
  if (Busy()) return;
  RunCommand(ormel_, "FileOpenProject", [&] { FileOpenProject(ormel_, path.toStdString()); });
  ShowAll();
}

void MainWindow::Exit() {
  QTimer::singleShot(0, this, &QWidget::close);
}

void MainWindow::FilePrintSetup() {
  output_->PrintSetup();
}

void MainWindow::FilePrint() {
  output_->Print();
}

std::string MainWindow::ClipboardText() {
  return QGuiApplication::clipboard()->text().toStdString();
}

void MainWindow::CopyImage() {
  output_->Copy();
}

void MainWindow::SaveMapAs() {
  output_->SaveAs();
}

void MainWindow::ShowReleaseNotes() {
  const std::string folder = ormel_.processes().ProgramFolder();
  for (const char* place : {"/RELEASE.TXT", "/../share/doc/ormel/RELEASE.TXT", "/../../../RELEASE.TXT"})
    if (FileExists(folder + place)) return ui_.ViewTextFile(folder + place);
  Inform(ormel_, kProgramTitle, "The file RELEASE.TXT is not in the program's folder " + folder + ".");
}

}  // namespace ormel
