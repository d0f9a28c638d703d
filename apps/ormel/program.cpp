#include "ormel/program.h"

#include "core/processes.h"
#include "geo/geo_data.h"
#include "shell/start.h"
#include "whpa/run.h"

namespace ormel {
Program::Program(const Surroundings& surroundings)
    : document(ormel),
      solver(ormel, ModelRunWHPAs),
      window(ormel, ui),
      view(ormel, &window.map()),
      publisher(ormel, view) {
  UseGeoData(surroundings.processes.ProgramFolder() + kGeoData);
  ormel.ports = {
      &ui,     &view,     &solver,   &surroundings.processes, &surroundings.settings, &surroundings.clock,
      &window, &document, &publisher};
  ui.SetSettings(&surroundings.settings);
  ormel.solution.restore_on_open = true;
  window.SetView(view);
}

void Program::Start(const std::string& project) {
  StartSteps steps;
  steps.place = [this](const Placement& placement) { window.Place(placement); };
  steps.show = [this] {
    window.show();
    window.PlacePanels();
    window.raise();
    window.activateWindow();
    window.map().setFocus();
  };
  Form_Load(ormel, project, steps);
  window.Refresh();
}

}  // namespace ormel
