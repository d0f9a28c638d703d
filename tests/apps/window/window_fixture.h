// The whole desktop program on the offscreen platform, with a small project and the outside world faked.
#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <functional>
#include <memory>
#include <vector>

#include "core/project.h"
#include "model/inhomogeneities.h"
#include "model/wells.h"
#include "ormel/menu_actions.h"
#include "ormel/program.h"
#include "ormel/tool_buttons.h"
#include "store/database.h"
#include "support/test_project.h"

namespace ormel::test {

/// A project file with two wells and a zone of gravel, seen through the window 0 to 1000, 0 to 800.
inline void MakeTown(const TempDir& folder, const std::string& path) {
  TestController controller;
  NewDatabaseOptions options;
  options.file_title = "town.orm";
  options.working_directory = folder.path().string();
  DBNewDatabase(path, options);
  AttachProject(controller.ormel, path);
  LoadDataControls(controller.ormel);
  StoreWell(controller.ormel, {.Label = "North", .Head = 1200.0, .Radius = 0.3}, {400.0, 600.0});
  StoreWell(controller.ormel, {.Label = "South", .HeadSpecified = true, .Head = 20.0, .Radius = 0.3},
            {500.0, 300.0});
  const std::vector<MapPoint> corners{{600, 300}, {800, 330}, {830, 520}, {680, 560}};
  StoreInhomogeneity(controller.ormel, {.Label = "Gravel", .HydCond = 40.0, .ChangeK = true}, corners);
  controller.ormel.db().Execute("update Model set WINDOWX1=0, WINDOWX2=1000, WINDOWY1=800, WINDOWY2=0");
  DetachProject(controller.ormel);
}

class WindowTest : public testing::Test {
 protected:
  WindowTest() : town(dir / "town.orm") {
    MakeTown(dir, town);
    processes.program_folder = dir.path().string();
    processes.current_directory = dir.path().string();
    settings.values["WelcomeBox"] = "1";
    program = std::make_unique<Program>(Surroundings{settings, processes, clock});
    program->ui.SetSplashTime(0);
    // A box that no test expects would wait for ever.
    QObject::connect(&watchdog_, &QTimer::timeout, [] {
      auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      if (box == nullptr) return;
      ADD_FAILURE() << "nobody answers: " << box->text().toStdString();
      box->reject();
    });
    watchdog_.start(1500);
  }

  void Start(const std::string& project) {
    program->Start(project);
    program->window.resize(900, 700);
    Settle(250);
  }
  static void Settle(int milliseconds) {
    QElapsedTimer time;
    time.start();
    while (time.elapsed() < milliseconds) QApplication::processEvents(QEventLoop::AllEvents, 5);
  }
  /// Does something with the next modal dialog that comes up.
  void WithNextDialog(std::function<void(QDialog&)> act) {
    auto* timer = new QTimer(&program->window);
    QObject::connect(timer, &QTimer::timeout, [timer, act] {
      auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      if (dialog == nullptr) return;
      timer->deleteLater();
      timer->stop();
      act(*dialog);
    });
    timer->start(20);
  }
  QAction* Item(const char* control, int index = 0) { return program->window.menus().Find(control, index); }
  MapWidget& Map() { return program->window.map(); }
  /// The world under a position of the map widget.
  MapPoint WorldAt(QPoint at) {
    const double ratio = Map().devicePixelRatioF();
    VgGdi& vg = program->view.vg();
    return {vg.vgGDIDeviceToWorldX(at.x() * ratio, false), vg.vgGDIDeviceToWorldY(at.y() * ratio, false)};
  }
  QPoint PixelOf(MapPoint world) {
    const DevicePoint at = program->view.vg().vgGDIWorldToDevice(world.x, world.y);
    return QPoint(at.x, at.y) / Map().devicePixelRatioF();
  }

  TempDir dir;
  std::string town;
  FakeProcesses processes;
  FakeSettings settings;
  FakeClock clock;
  std::unique_ptr<Program> program;

 private:
  QTimer watchdog_;
};

}  // namespace ormel::test
