// The solve, for procedures that stand below the solver bridge.
#pragma once

namespace ormel {

/// The five switches of a run, in their order.
struct SolveRequest {
  bool KeepSolution = false;   ///< never start a new solution
  bool ContinueSolve = false;  ///< load the solution and iterate further
  bool AskFirst = false;       ///< with a valid solution, ask whether to solve anew
  bool ZoomAfter = false;      ///< passed on to the redraw after the run
  bool ViewLogs = false;       ///< allow the logs to be opened after the run
};

class Solver {
 public:
  virtual ~Solver() = default;
  virtual void ModelRunVadox(const SolveRequest& request) = 0;
  virtual void ModelRunWHPAs() = 0;
  /// CONTOUR.EXE on the grid that stands, with the levels of the settings.
  virtual void RunContour() = 0;
};

}  // namespace ormel
