#include "ormelcmd/add.h"

#include "model/crossing.h"
#include "model/dialog.h"
#include "model/vertices.h"
#include "text/numbers.h"

namespace ormel {

void PassDialog(Form& form) {
  form.MarkShown();
  form.Click("OK");
  if (form.Hidden() && form.Result == OkCancelForm::kOk) return;
  throw UserError("nothing was added");
}

MapPoint OnePoint(const Given& given) {
  const std::vector<MapPoint> points = ParsePoints(given.points, "--at");
  if (points.size() != 1) throw UserError("--at takes one point x,y");
  return points.front();
}

std::vector<MapPoint> Chain(const Given& given, std::size_t least, const char* what) {
  std::vector<MapPoint> points = ParsePoints(given.points, "--points");
  if (points.size() < least)
    throw UserError(std::string(what) + " needs at least " + std::to_string(least) + " point(s)");
  return points;
}

void RefuseCrossing(const std::vector<MapPoint>& points, bool closed) {
  if (CrossesItself(points, closed))
    throw UserError("--points: the line crosses itself, and the solver could not use it; nothing was added");
}

MapPoint FreePlace(Session& session, MapPoint at) {
  const MapPoint free = ElemCheckVertices(session.ormel(), at);
  if (!(free == at))
    session.ui().Say("another vertex stands at " + NumberText(at.x) + "," + NumberText(at.y) +
                     "; the element was put at " + NumberText(free.x) + "," + NumberText(free.y));
  return free;
}

int AddTo(const CommonOptions& common, const Given& given, const std::function<void(Session&)>& body) {
  Session session(MakeBatchOptions(common));
  session.OpenForEdit(given.path);
  session.Edit([&] { body(session); });
  return session.Finish();
}

void PointOption(CLI::App* command, Given& given, const char* text) {
  command->add_option("--at", given.points, text)->required()->allow_extra_args(false);
}

void PointsOption(CLI::App* command, Given& given) {
  command->add_option("--points", given.points, "Vertices \"x,y x,y ...\" in map units")->required();
}

void ColorOption(CLI::App* command, Given& given, const char* text) {
  command->add_option("--color", given.color, text);
}

void AddElementCommands(CLI::App& app, Program& program) {
  CLI::App* add = app.add_subcommand("add", "Add an element to a project");
  add->require_subcommand(1);
  add->fallthrough();
  add->footer(
      "Positions are in map units; heads, radii, rates and other lengths in computation units; time in "
      "days.");
  DefineWell(*add, program);
  DefineBarrier(*add, program);
  DefineInhomogeneity(*add, program);
  DefineLinesink(*add, program);
  DefineUniformFlow(*add, program);
  DefineParticles(*add, program);
  DefineTestPoint(*add, program);
  DefineFluxLine(*add, program);
  DefineCaptureZone(*add, program);
  DefineText(*add, program);
}

}  // namespace ormel
