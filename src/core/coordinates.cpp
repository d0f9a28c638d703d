#include "core/coordinates.h"

#include <cmath>

#include "core/ormel.h"

namespace ormel {
namespace {

double RoundTo4(double value) {
  const double scaled = value * 1e4;
  // Beyond 2^53 the number holds no fourth decimal to round.
  return std::abs(scaled) < 9e15 ? std::round(scaled) / 1e4 : value;
}

}  // namespace

double BasemapConvert(bool compute_meters, bool basemap_meters) {
  if (compute_meters == basemap_meters) return 1.0;
  return compute_meters ? 0.3048 : 1.0 / 0.3048;
}

double BasemapConvert(const Ormel& ormel) {
  return BasemapConvert(ormel.project.ComputeMeters, ormel.project.BasemapMeters);
}

double WToM_X(const Ormel& ormel, double x) {
  return (x - ormel.window.model.x_min) * BasemapConvert(ormel);
}
double WToM_Y(const Ormel& ormel, double y) {
  return (y - ormel.window.model.y_min) * BasemapConvert(ormel);
}
ModelPoint WToM(const Ormel& ormel, MapPoint at) {
  return {WToM_X(ormel, at.x), WToM_Y(ormel, at.y)};
}

double MToW_X(const Ormel& ormel, double x) {
  return RoundTo4(x / BasemapConvert(ormel) + ormel.window.solved.x_min);
}
double MToW_Y(const Ormel& ormel, double y) {
  return RoundTo4(y / BasemapConvert(ormel) + ormel.window.solved.y_min);
}
MapPoint MToW(const Ormel& ormel, ModelPoint at) {
  return {MToW_X(ormel, at.x), MToW_Y(ormel, at.y)};
}

double ComputeToMapLength(const Ormel& ormel, double length) {
  if (ormel.project.ComputeMeters == ormel.project.BasemapMeters) return length;
  return ormel.project.ComputeMeters ? length * kFeetPerMetre : length / kFeetPerMetre;
}

const char* MapLengthUnit(const Ormel& ormel) {
  return ormel.project.BasemapMeters ? "meters" : "feet";
}
const char* ComputeLengthUnit(const Ormel& ormel) {
  return ormel.project.ComputeMeters ? "meters" : "feet";
}

}  // namespace ormel
