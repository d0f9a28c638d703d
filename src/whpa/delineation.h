// Wellhead protection areas by formula.
//
// One well of steady discharge Q [L3/d] pumps for a time of travel t [d] from an aquifer of porosity n and
// thickness H [L] in an ambient flow Qo [L2/d].  Source of the forms: Ceric and Haitjema (2005), fits to the
// isochrones of a well in uniform flow.
#pragma once

namespace ormel {

struct WhpaInput {
  double Q = 0.0;   ///< discharge of the well [L3/d]
  double t = 0.0;   ///< time of travel [d]
  double n = 0.0;   ///< porosity
  double H = 0.0;   ///< thickness [L]
  double Qo = 0.0;  ///< ambient flow [L2/d]
};

enum class WhpaShape { kCentricCircle, kEccentricCircle, kPathlines };

/// T = 2 pi t Qo^2 / (n H Q); 0 without ambient flow.
double DimensionlessTime(const WhpaInput& input);
/// Up to 0.1 a centric circle, up to 1 an eccentric one, pathlines beyond.
WhpaShape ShapeFor(double T);
/// 1.1543 sqrt(Q t / (pi n H)) [L].  Throws std::domain_error for a well that injects: there is no such
/// circle.
double CentricRadius(const WhpaInput& input);
/// L = Q / (2 pi Qo) [L]; 0 without ambient flow.
double AmbientLength(double Q, double Qo);
/// L (1.161 + ln(0.39 + T)) [L].
double EccentricRadius(double L, double T);
/// Shift of the eccentric circle's centre against the flow, L (0.652 T + 0.00278) [L].
double EccentricShift(double L, double T);

}  // namespace ormel
