// The one row of `Model`: aquifer, contours, tracing, uniform flow, solver, print margins, editor grid.
//
// Hydraulic values are in computation units and days, the uniform flow's reference point in map units.
#pragma once

#include <string>

namespace ormel {

struct Ormel;

struct ModelValues {
  double AQBase = 0.0;       ///< elevation of the aquifer's base
  double AQThickness = 1.0;  ///< the store keeps this one as a text
  double AQHydCond = 1.0;    ///< [length/d]
  double AQRecharge = 0.0;   ///< [length/d]
  double AQPorosity = 0.2;
  bool BasemapMeters = true;
  bool ComputeMeters = true;
  int CONTOURShow = 0;
  double CONTOURMinimum = 0.0;
  double CONTOURMaximum = 1.0;
  double CONTOURInterval = 1.0;
  int CONTOURLevel = 40;  ///< grid lines along the contour window
  int TRACECompute = 1;
  double TRACEStep = 1.0;
  double TRACEMaxTime = 3650.0;                 ///< [d]
  double UNIFLOWRefX = 0.0, UNIFLOWRefY = 0.0;  ///< map units
  double UNIFLOWRefHead = 0.0;
  double UNIFLOWGradient = 0.0;     ///< [-]
  double UNIFLOWOrientation = 0.0;  ///< direction of flow [degrees counter-clockwise from +x]
  int UNIFLOWCompute = 0;           ///< 1: a uniform flow is in force (older files: -1)
  double MARGINLeft = 1.0, MARGINRight = 1.0, MARGINTop = 1.0, MARGINBottom = 1.0;  ///< inches
  int MARGINDrawBox = 1;
  double EDITGRIDSpacing = 10.0;  ///< map units
  bool EDITGRIDShow = true, EDITGRIDSnap = false;
  int SOLVERIterations = 1;
  double SOLVERX0 = -100.0, SOLVERY0 = -100.0;  ///< origin of the last solve, map units
  int ViewErrorLog = 1, ViewMessageLog = 1;
  std::string DefaultFont = "Arial";
  int DefaultFontSize = 10;  ///< points
  bool DefaultFontBold = false, DefaultFontItalic = false;

  double AquiferTop() const { return AQBase + AQThickness; }
};

ModelValues ReadModel(Ormel& ormel);
/// Writes the fields that differ from what is stored.  Throws StoreError.
void WriteModel(Ormel& ormel, const ModelValues& values);

}  // namespace ormel
