#include "ormel/program.h"

#include "model/edit.h"
#include "model/move.h"
#include "model/selection.h"
#include "shell/start.h"
#include "whpa/run.h"

namespace ormel {
namespace {

/// What the pointer's actions ask of the rooms beside the view.
void ConnectMap(MapViewImpl& view, Ormel& ormel) {
  MapHooks& hooks = view.hooks();
  hooks.select = [&ormel] { ElemSelectElement(ormel); };
  hooks.properties = [&ormel] { ElemSetProperties(ormel); };
  hooks.end_move = [&ormel](MapPoint to) { ElemEndMove(ormel, to); };
}

}  // namespace

Program::Program(const Surroundings& surroundings)
    : solver(ormel, ModelRunWHPAs), window(ormel, ui), view(ormel, &window.map()) {
  ormel.ports = {&ui,    &view, &solver, &surroundings.processes, &surroundings.settings, &surroundings.clock,
                 &window};
  ConnectMap(view, ormel);
  window.SetView(view);
}

void Program::Start(const std::string& project) {
  StartSteps steps;
  steps.place = [this](const Placement& placement) { window.Place(placement); };
  steps.show = [this] {
    window.show();
    window.raise();
    window.activateWindow();
  };
  Form_Load(ormel, project, steps);
  window.Refresh();
}

}  // namespace ormel
