// ormel_pictures: makes the pictures of README and guide with the real window.
//
// Opens a project, works the window through its own commands and writes what is seen.  Runs without a display
// (QT_QPA_PLATFORM=offscreen).
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <array>
#include <cstdio>
#include <functional>

#include "ormel/application.h"
#include "ormel/form_dialog.h"
#include "ormel/program.h"
#include "platform/file_settings.h"
#include "platform/posix_processes.h"
#include "platform/system_clock.h"
#include "shell/menus.h"

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
    DialogShot{"dialog-project-settings", "FILE_CMDS", 4, 0},
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
};

void Settle(int milliseconds) {
  QElapsedTimer time;
  time.start();
  while (time.elapsed() < milliseconds) QApplication::processEvents(QEventLoop::AllEvents, 10);
}

/// Answers the boxes that nobody is there to answer, and says what they asked.
void AnswerBox() {
  auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
  if (box == nullptr) return;
  std::printf("[%s] %s\n", qPrintable(box->windowTitle()), qPrintable(box->text()));
  box->reject();
}

class Photographer {
 public:
  Photographer(Program& program, const QString& folder) : program_(program), folder_(folder) {}

  void Window(const QString& name) {
    Settle(250);
    Save(program_.window.grab(), name);
  }

  /// Runs a command and takes the picture of the dialog it opens, which is then closed by Escape.
  void Dialog(const DialogShot& shot) {
    const QString name = QString::fromLatin1(shot.file);
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] { CloseFront(name, shot.page); });
    watch.start(150);
    if (!Dispatch(program_.ormel, shot.control, shot.index)) std::printf("%s: not offered\n", shot.file);
    Settle(50);
  }

 private:
  void CloseFront(const QString& name, int page) {
    auto* front = qobject_cast<QDialog*>(QApplication::activeModalWidget());
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

void TakeAll(Program& program, const QString& folder) {
  Photographer photographer(program, folder);
  photographer.Window(QStringLiteral("window"));
  Dispatch(program.ormel, "ZOOM_CMDS", 1);
  photographer.Window(QStringLiteral("window-zoomed"));
  Dispatch(program.ormel, "ZOOM_CMDS", 3);
  for (const DialogShot& shot : kDialogs) photographer.Dialog(shot);
}

}  // namespace
}  // namespace ormel

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: ormel_pictures <folder for the pictures> <project.orm>\n", stderr);
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
  QTimer boxes;
  QObject::connect(&boxes, &QTimer::timeout, ormel::AnswerBox);
  boxes.start(400);
  program.Start(argv[2]);
  program.window.resize(1240, 800);
  QDir().mkpath(QString::fromLocal8Bit(argv[1]));
  ormel::TakeAll(program, QString::fromLocal8Bit(argv[1]));
  app.SetController(nullptr);
  return 0;
}
