#include "ormelcmd/session.h"

#include <signal.h>
#include <unistd.h>

#include <array>
#include <iostream>
#include <optional>

#include "core/command.h"
#include "core/project.h"
#include "geo/geo_data.h"
#include "model/vertices.h"
#include "publish/qt_publisher.h"
#include "shell/lifecycle.h"
#include "shell/open_steps.h"
#include "solver/extents.h"
#include "solver/solver_bridge.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/schema.h"
#include "text/files.h"
#include "view/map_view_impl.h"
#include "whpa/run.h"

namespace ormel {
namespace {

/// Whom an interrupt concerns; set only while a session lives.
BatchInterface* g_interrupted = nullptr;

/// Ctrl+C, a closed terminal, a logout.
constexpr std::array kEndings{SIGINT, SIGTERM, SIGHUP};

void HandleEndings(void (*handler)(int)) {
  for (const int number : kEndings) signal(number, handler);
}

/// The first one ends the outside program cleanly, the second one ends this program.
void OnInterrupt(int) {
  if (g_interrupted != nullptr) g_interrupted->RequestCancel();
  HandleEndings(SIG_DFL);
}

}  // namespace

BatchOptions MakeBatchOptions(const CommonOptions& common) {
  BatchOptions options;
  options.yes = common.yes;
  options.quiet = common.quiet;
  options.terminal = isatty(STDERR_FILENO) != 0;
  for (const std::string& text : common.answers) {
    BatchAnswer answer;
    if (!ParseBatchAnswer(text, answer))
      throw UserError("--answer takes \"Title=Answer\", not \"" + text + "\"");
    options.answers.push_back(answer);
  }
  for (const std::string& text : common.settings) {
    BatchSetting setting;
    if (!ParseBatchSetting(text, setting))
      throw UserError("--set takes \"Form.control=value\", not \"" + text + "\"");
    options.settings.push_back(setting);
  }
  // Boxes with a choice that changes nothing.
  options.answers.push_back({"No head-specified conditions exist", "OK", true});
  options.answers.push_back({"Small Window", "OK", true});
  options.answers.push_back({"Zoom to Element", "No", true});
  // The text is told; to change the model is for the caller to choose.
  options.answers.push_back({"Recharge Rate", "No", true});
  // A map that is missing stays in the project; only whoever looks can say where it is.
  options.answers.push_back({"Can't Open BBM Basemap File", "Cancel", true});
  // A wider window is for the caller to choose; the text says that there is a reason to.
  options.answers.push_back({"Pathlines Cut", "No", true});
  return options;
}

Session::Session(BatchOptions options) : ui_(std::move(options), std::cerr, "ormelcmd") {
  view_ = std::make_unique<MapViewImpl>(ormel_, nullptr);
  solver_ = std::make_unique<SolverBridge>(ormel_, [](Ormel& ormel) { ormel::ModelRunWHPAs(ormel); });
  publisher_ = std::make_unique<QtPublisher>(ormel_, *view_);
  UseGeoData(processes_.ProgramFolder() + kGeoData);
  ormel_.ports = {&ui_,    view_.get(), solver_.get(), &processes_,     &settings_,
                  &clock_, nullptr,     nullptr,       publisher_.get()};
  g_interrupted = &ui_;
  HandleEndings(OnInterrupt);
  signal(SIGXFSZ, SIG_IGN);  // a file that may not grow is a failed write, which is told
}

Session::~Session() {
  HandleEndings(SIG_DFL);
  g_interrupted = nullptr;
  try {
    DetachProject(ormel_);
  } catch (const std::exception& e) {
    ui_.Say(e.what());
  }
}

void Session::OpenProject(const std::string& path) {
  if (path.empty()) throw UserError("no project was named");
  RunCommand(ormel_, "FileOpenProject", [&] { FileOpenProject(ormel_, path); });
  if (!ormel_.project.ProjectOpen) throw UserError(path + " was not opened");
}

void Session::OpenForEdit(const std::string& path) {
  const std::string full = FullPath(ormel_, path);
  if (!FileExists(full))
    throw UserError(path + " does not exist; make it with: ormelcmd new \"" + path + "\"");
  if (!TestProjectFile(ormel_, full) || !OpenConnection(ormel_, full))
    throw UserError(path + " was not opened");
  LoadDataControls(ormel_);
  // Before the project counts as open: nobody has asked for a map or a solution.
  MapWindow& window = ormel_.window;
  RowReader stored(ormel_.db(), "select WINDOWX1,WINDOWX2,WINDOWY1,WINDOWY2 from Model");
  if (stored.Next() && stored.Double(0) < stored.Double(1))
    window.SolveWindow = {stored.Double(0), stored.Double(1), stored.Double(2), stored.Double(3)};
  FindMapExtents(ormel_);
  ormel_.gui.VertexTolerance = DefaultVertexTolerance(ormel_);
  ormel_.project.ProjectOpen = true;
}

void Session::OpenForReading(const std::string& path) {
  const std::string full = FullPath(ormel_, path);
  if (!FileExists(full)) throw UserError(path + " does not exist");
  bool view = true;
  if (!TestProjectVersion(ormel_, full, &view)) throw UserError(path + " was not opened");
  ormel_.project.db = std::make_unique<Database>(Database::Open(full, OpenMode::kView));
  ormel_.project.DBName = full;
  ReadProjectState(ormel_);
}

void Session::Edit(const std::function<void()>& body) {
  std::optional<UserError> refused;
  const bool done = RunCommand(ormel_, "ormelcmd", [&] {
    Transaction all(ormel_.db());
    try {
      body();
    } catch (const UserError& e) {
      refused = e;
      all.Rollback();
    } catch (...) {
      all.Rollback();
      throw;
    }
  });
  if (refused) throw UserError(*refused);
  if (!done) throw UserError("nothing was changed");
}

int Session::Finish() {
  for (const std::string& option : ui_.Unused()) ui_.Say("nothing asked for " + option);
  return ui_.unanswered() || ui_.failed() ? kExitRefused : kExitOk;
}

}  // namespace ormel
