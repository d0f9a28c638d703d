#include "whpa/delineation.h"

#include <cmath>
#include <stdexcept>

namespace ormel {
namespace {

constexpr double kPi = 3.14159265358979;

}  // namespace

double DimensionlessTime(const WhpaInput& in) {
  if (in.Qo == 0.0) return 0.0;
  return 2.0 * kPi * in.t * in.Qo * in.Qo / (in.n * in.H * in.Q);
}

WhpaShape ShapeFor(double T) {
  if (T <= 0.1) return WhpaShape::kCentricCircle;
  return T <= 1.0 ? WhpaShape::kEccentricCircle : WhpaShape::kPathlines;
}

double CentricRadius(const WhpaInput& in) {
  const double reduced = 2.0 * kPi * in.t / (in.n * in.H * in.Q);
  if (reduced < 0.0)
    throw std::domain_error(
        "A well that injects water has no circle of travel time. Choose a well with a "
        "positive discharge and a time of travel that is not negative.");
  return in.Q / (2.0 * kPi) * 1.1543 * std::sqrt(2.0 * reduced);
}

double AmbientLength(double Q, double Qo) {
  return Qo > 0.0 ? Q / (2.0 * kPi * Qo) : 0.0;
}

double EccentricRadius(double L, double T) {
  return L * (1.161 + std::log(0.39 + T));
}

double EccentricShift(double L, double T) {
  return L * (0.652 * T + 0.00278);
}

}  // namespace ormel
