// The desktop program put together: controller, ports and window.
#pragma once

#include <string>

#include "core/ormel.h"
#include "document/document.h"
#include "ormel/main_window.h"
#include "ormel/qt_interface.h"
#include "publish/qt_publisher.h"
#include "solver/solver_bridge.h"
#include "view/map_view_impl.h"

namespace ormel {

/// What stands outside the window; tests give their own.
struct Surroundings {
  ormel::Settings& settings;
  ormel::Processes& processes;
  ormel::Clock& clock;
};

class Program {
 public:
  explicit Program(const Surroundings& surroundings);

  /// The start sequence; `project` is the whole command line.
  void Start(const std::string& project);

  Ormel ormel;
  Document document;
  QtInterface ui;
  SolverBridge solver;
  MainWindow window;
  MapViewImpl view;
  QtPublisher publisher;
};

}  // namespace ormel
