// ormel_pictures: makes the pictures of README and guide with the real window.
//
// Solves a copy of a project, works the window through its own commands and writes what is seen.  Runs
// without a display (QT_QPA_PLATFORM=offscreen).
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <array>
#include <cstdio>
#include <functional>

#include "core/command.h"
#include "core/layers.h"
#include "document/elements.h"
#include "model/selection.h"
#include "ormel/application.h"
#include "ormel/form_dialog.h"
#include "ormel/help_viewer.h"
#include "ormel/panels.h"
#include "ormel/program.h"
#include "platform/file_settings.h"
#include "platform/posix_processes.h"
#include "platform/system_clock.h"
#include "shell/lifecycle.h"
#include "shell/menus.h"
#include "shell/welcome.h"
#include "store/database.h"
#include "whpa/commands.h"
#include "whpa/outline_command.h"
#include "whpa/rows.h"
#include "whpa/run.h"

namespace ormel {
namespace {

/// A command that opens a dialog, the page to show, and the picture's name.
struct DialogShot {
  const char* file;
  const char* control;
  int index;
  int page;
};
constexpr std::array kDialogs = {
    DialogShot{"dialog-about", "Help_CMDS", 5, 0},
    DialogShot{"dialog-print-setup", "FILE_CMDS", 5, 0},
    DialogShot{"dialog-save-map", "SAVEMAPAS", 0, 0},
    DialogShot{"dialog-model-settings", "MODEL_CMDS", 1, 0},
    DialogShot{"dialog-model-settings-contours", "MODEL_CMDS", 1, 1},
    DialogShot{"dialog-model-settings-tracing", "MODEL_CMDS", 1, 2},
    DialogShot{"dialog-linesink", "ELEM_NEW", 2, 0},
    DialogShot{"dialog-barrier", "ELEM_NEW", 3, 0},
    DialogShot{"dialog-inhomogeneity", "ELEM_NEW", 4, 0},
    DialogShot{"dialog-uniform-flow", "ELEM_CMDS", 3, 0},
    DialogShot{"dialog-interface-options", "TOOLS_CMDS", 0, 0},
    DialogShot{"dialog-saved-windows", "ZOOM_CMDS", 8, 0},
    DialogShot{"dialog-whpa-arbitrary", "WHPA", 0, 0},
    DialogShot{"dialog-whpa-calculated", "WHPA", 1, 0},
    DialogShot{"dialog-whpa-multiple", "WHPA", 2, 0},
    DialogShot{"dialog-results-overlay", "layermenu", kLayerResultsOverlay, 0},
    DialogShot{"dialog-inspector", "INSPECTORMENU", 0, 0},
    DialogShot{"dialog-results-table", "RESULTS_TABLE", 0, 0},
    DialogShot{"dialog-calibration", "CALIBRATION_STATS", 0, 0},
    DialogShot{"dialog-report", "REPORT", 0, 0},
    DialogShot{"dialog-solve-prompt", "MODEL_CMDS", 2, 0},
    DialogShot{"dialog-database-viewer", "TOOLS_CMDS", 5, 0},
};

void Settle(int milliseconds) {
  QElapsedTimer time;
  time.start();
  while (time.elapsed() < milliseconds) QApplication::processEvents(QEventLoop::AllEvents, 10);
}

/// Takes the answer that Enter gives wherever nobody is there to answer, and says what was asked.
void AnswerQuestion() {
  QWidget* front = QApplication::activeModalWidget();
  if (front == nullptr || qobject_cast<FormDialog*>(front) != nullptr) return;
  if (const auto* box = qobject_cast<QMessageBox*>(front))
    std::printf("[%s] %s\n", qPrintable(box->windowTitle()), qPrintable(box->text()));
  QTest::keyClick(front, Qt::Key_Return);
}

class Photographer {
 public:
  Photographer(Program& program, const QString& folder) : program_(program), folder_(folder) {}

  void Window(const QString& name) {
    Settle(250);
    Save(program_.window.grab(), name);
  }

  /// A viewer that the window has opened; it is closed afterwards.
  template <class Viewer>
  void Child(const char* file) {
    Settle(250);
    auto* viewer = program_.window.findChild<Viewer*>();
    if (viewer == nullptr) {
      std::printf("%s: not opened\n", file);
      return;
    }
    Save(viewer->grab(), QString::fromLatin1(file));
    viewer->close();
  }

  /// Does something that opens a dialog and takes its picture; Escape then closes it.
  void OnDialog(const char* file, int page, const std::function<void()>& open) {
    const QString name = QString::fromLatin1(file);
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] { CloseFront(name, page); });
    watch.start(150);
    open();
    Settle(50);
    watch.stop();
    // A command that waits for a click is left.
    QTest::keyClick(&program_.window.map(), Qt::Key_Escape);
  }

 private:
  void CloseFront(const QString& name, int page) {
    auto* front = qobject_cast<FormDialog*>(QApplication::activeModalWidget());
    if (front == nullptr) return;
    if (auto* tabs = front->findChild<QTabWidget*>()) tabs->setCurrentIndex(page);
    QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    if (!taken_.contains(name)) Save(front->grab(), name);
    front->reject();
  }

  void Save(const QPixmap& picture, const QString& name) {
    const QString path = folder_ + QLatin1Char('/') + name + QStringLiteral(".png");
    if (!picture.save(path)) {
      std::fprintf(stderr, "%s could not be written\n", qPrintable(path));
      std::exit(1);
    }
    taken_ << name;
    std::printf("%s %dx%d\n", qPrintable(path), picture.width(), picture.height());
  }

  Program& program_;
  QString folder_;
  QStringList taken_;
};

/// The dialog of a new well, as a click on the map brings it up.
void TakeWell(Program& program, Photographer& photographer) {
  Dispatch(program.ormel, "ELEM_NEW", 1);
  MapWidget& map = program.window.map();
  photographer.OnDialog("dialog-well", 0,
                        [&] { QTest::mouseClick(&map, Qt::LeftButton, {}, map.rect().center()); });
}

/// The guide as it stands beside the map.
void TakeGuide(Program& program, Photographer& photographer) {
  program.ui.ShowHelp("drawing");
  photographer.Child<HelpViewer>("viewer-guide");
}

void TakeWelcome(Program& program, Photographer& photographer) {
  Welcome form(program.ormel);
  photographer.OnDialog("dialog-welcome", 0, [&] { program.ui.ShowForm(form); });
}

/// Paths of wells that compete for the water between them and a stream, with the wells' images behind it.
void TakeCompetingWells(Program& program, Photographer& photographer, const std::vector<WhpaWell>& wells) {
  Ormel& ormel = program.ormel;
  std::vector<WhpaRow> rows;
  for (const WhpaWell& well : wells)
    rows.push_back({.Well = well.label,
                    .Porosity = 0.22,
                    .Thickness = 25.0,
                    .AmbientFlow = 0.4,
                    .Direction = -80.0,
                    .FirstHead = 98.0,
                    .WHPAData = 20.0,
                    .Type = WhpaType::kMultiple});
  AddWhpaRows(ormel, rows);
  ormel.db().Execute(
      "update WHPAs set WHPAText='areas', Point1X=300, Point1Y=1150, Point2X=5000, Point2Y=600");
  ormel.StreamWell = kMultipleWells;
  RunCommand(ormel, "TakeCompetingWells", [&ormel] { MakeStreamImages(ormel); });
  ModelRunWHPAs(ormel);
  ormel.layers.Switch(Layer::kContours, false);
  program.view.ZoomActions(Zoom::kRedraw);
  photographer.Window(QStringLiteral("window-whpa-paths"));
  RemoveWhpaRows(ormel, "Type=3");
  ormel.layers.Switch(Layer::kContours, true);
}

/// Protection areas of the example's wells: circles, paths of competing wells, outlines of the solved model.
void TakeAreas(Program& program, Photographer& photographer) {
  const std::vector<WhpaWell> wells = EligibleWells(program.ormel);
  std::vector<WhpaRow> circles;
  for (const WhpaWell& well : wells) circles.push_back({.Well = well.label, .Radius = 200.0});
  AddWhpaRows(program.ormel, circles);
  Dispatch(program.ormel, "ShowWHPAs", 0);
  photographer.Window(QStringLiteral("window-whpa-circles"));
  program.ormel.db().Execute("delete from WHPAs");
  TakeCompetingWells(program, photographer, {wells.begin(), wells.begin() + 3});
  Dispatch(program.ormel, "ShowWHPAs", 0);
  RunCommand(program.ormel, "TakeAreas", [&] {
    OutlineRequest request;
    request.wells = CaptureWells(program.ormel);
    std::printf("%d capture zones outlined\n", OutlineCaptureZones(program.ormel, request));
  });
  program.ormel.layers.Switch(Layer::kCapzones, true);
  program.ormel.layers.Switch(Layer::kPathlines, false);
  program.view.ZoomActions(Zoom::kRedraw);
  photographer.Window(QStringLiteral("window-outlines"));
  program.ormel.layers.Switch(Layer::kPathlines, true);
  program.ormel.db().Execute("delete from Capzones");
  program.view.ZoomActions(Zoom::kRedraw);
}

/// Results at a point, two streamlines from clicks, and the panels of a river and a domain.
void TakeInspection(Program& program, Photographer& photographer) {
  Ormel& ormel = program.ormel;
  MapWidget& map = program.window.map();
  const auto pixel = [&](double x, double y) {
    const DevicePoint at = program.view.vg().vgGDIWorldToDevice(x, y);
    return QPoint(at.x, at.y) / map.devicePixelRatioF();
  };
  const MapRect& window = ormel.window.SolveWindow;
  const auto spot = [&](double right, double up) {
    return pixel(window.x1 + right * window.Width(), window.y2 + up * window.Height());
  };
  ormel.layers.Switch(Layer::kPathlines, false);
  program.view.ZoomActions(Zoom::kRedraw);
  for (const double up : {0.35, 0.5, 0.65})
    QTest::mouseClick(&map, Qt::LeftButton, Qt::ShiftModifier | Qt::ControlModifier, spot(0.3, up));
  photographer.Window(QStringLiteral("window-traced-lines"));
  Dispatch(ormel, "SolverIntegrityCheck");
  photographer.OnDialog("dialog-solver-integrity", 0,
                        [&] { QTest::mouseClick(&map, Qt::LeftButton, Qt::ShiftModifier, spot(0.35, 0.5)); });
  Dispatch(ormel, "SolverIntegrityCheck");
  Dispatch(ormel, "CLEARTRACES");
  ormel.layers.Switch(Layer::kPathlines, true);
  program.view.ZoomActions(Zoom::kRedraw);
  struct Panel {
    const char* file;
    const char* table;
  };
  for (const auto& [file, table] : {Panel{"dialog-linesink-info", "LinesinkStrings"},
                                    Panel{"dialog-inhomogeneity-info", "Inhomogeneities"}}) {
    const std::string from =
        std::string(" from Vertices where PID in (select PID from ") + table + ") order by VID";
    const double x = ormel.db().Scalar("select X" + from).AsDouble();
    const double y = ormel.db().Scalar("select Y" + from).AsDouble();
    for (const int page : {1, 0})
      photographer.OnDialog(page == 1 ? file : (std::string(file) + "-properties").c_str(), page,
                            [&] { QTest::mouseClick(&map, Qt::RightButton, {}, pixel(x, y)); });
  }
}

/// The panels beside the map, with an element selected.
void TakePanels(Program& program, Photographer& photographer) {
  Ormel& ormel = program.ormel;
  RunCommand(ormel, "SelectItems", [&] {
    const std::vector<ElementId> wells = ElementsOf(ormel, Element::kWell);
    if (!wells.empty()) SelectItems(ormel, {wells.front()});
  });
  program.window.Refresh();
  Panels& panels = program.window.beside();
  for (const PanelItem item : {kPanelProperties, kPanelResults}) panels.dock(item)->show();
  photographer.Window(QStringLiteral("window-panels"));
  panels.dock(kPanelLayers)->raise();
  photographer.Window(QStringLiteral("window-panels-layers"));
  for (const PanelItem item : {kPanelElements, kPanelLayers, kPanelProperties, kPanelResults})
    panels.dock(item)->hide();
}

void TakeAll(Program& program, const QString& folder) {
  Photographer photographer(program, folder);
  Dispatch(program.ormel, "MODEL_CMDS", 2);
  Dispatch(program.ormel, "ZOOM_CMDS", 3);
  TakePanels(program, photographer);
  Dispatch(program.ormel, "ShowWellLabels", 0);
  Dispatch(program.ormel, "TMARKS", kTimeMarks2Years);
  Dispatch(program.ormel, "ZOOM_CMDS", 3);
  photographer.Window(QStringLiteral("window"));
  Dispatch(program.ormel, "ZOOM_CMDS", 1);
  photographer.Window(QStringLiteral("window-zoomed"));
  Dispatch(program.ormel, "ZOOM_CMDS", 3);
  TakeAreas(program, photographer);
  TakeInspection(program, photographer);
  TakeWell(program, photographer);
  TakeWelcome(program, photographer);
  TakeGuide(program, photographer);
  for (const DialogShot& shot : kDialogs)
    photographer.OnDialog(shot.file, shot.page, [&] {
      if (!Dispatch(program.ormel, shot.control, shot.index)) std::printf("%s: not offered\n", shot.file);
    });
}

/// Another project, solved, in the window.
void TakeProject(Program& program, const QString& folder, const QString& project, const char* name) {
  Photographer photographer(program, folder);
  RunCommand(program.ormel, "FileOpenProject",
             [&] { FileOpenProject(program.ormel, project.toStdString()); });
  Dispatch(program.ormel, "MODEL_CMDS", 2);
  Dispatch(program.ormel, "TMARKS", kTimeMarks5Years);
  QTest::mouseMove(&program.window.map(), program.window.map().rect().center());
  photographer.Window(QString::fromLatin1(name));
}

/// A copy that may be changed, or nothing.
QString CopyOf(const QString& project, const QTemporaryDir& folder) {
  const QString copy = folder.filePath(QFileInfo(project).fileName());
  if (!QFile::copy(project, copy)) {
    std::fprintf(stderr, "%s cannot be copied\n", qPrintable(project));
    return {};
  }
  QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);
  return copy;
}

}  // namespace
}  // namespace ormel

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("usage: ormel_pictures <folder for the pictures> <example.orm> <second example.orm>\n",
               stderr);
    return 2;
  }
  ormel::Application app(argc, argv);
  const QTemporaryDir private_folder;
  ormel::FileSettings settings(private_folder.filePath("settings").toStdString());
  ormel::PosixProcesses processes;
  ormel::SystemClock clock;
  ormel::Program program({settings, processes, clock});
  app.SetController(&program.ormel);
  program.ui.SetSplashTime(0);
  QTimer questions;
  QObject::connect(&questions, &QTimer::timeout, ormel::AnswerQuestion);
  questions.start(300);
  const QString project = ormel::CopyOf(QString::fromLocal8Bit(argv[2]), private_folder);
  const QString second = ormel::CopyOf(QString::fromLocal8Bit(argv[3]), private_folder);
  if (project.isEmpty() || second.isEmpty()) return 1;
  program.Start(project.toStdString());
  program.window.resize(1240, 800);
  QDir().mkpath(QString::fromLocal8Bit(argv[1]));
  ormel::TakeAll(program, QString::fromLocal8Bit(argv[1]));
  ormel::TakeProject(program, QString::fromLocal8Bit(argv[1]), second, "window-basin");
  app.SetController(nullptr);
  return 0;
}
