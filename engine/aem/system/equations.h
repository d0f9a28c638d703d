// The conditions at control points and the linear system that their moments make.
#pragma once

#include <vector>

#include "aem/system/system.h"

namespace aem::detail {

/// a * field + b * strength = r at a control point, from the present iterate.
struct Linearised {
  double a = 1.0, b = 0.0, r = 0.0;
  int coupled = -1;    ///< a limited reach: the flow carried there enters too, index in System::carried_terms
  double scale = 0.0;  ///< with this factor
};

/// Field: what FieldKind says.  Strength: density, jump, or the discharge of a well.
Linearised Linearise(const System& system, const Control& control, double field, double strength);

/// Whether the condition changes with the head, so that one solution is not enough.
bool DependsOnHead(const System& system, const Control& control);

/// Strength at a control point as a sum over unknowns, and the test functions of the point.
struct LocalRow {
  int count = 0;
  std::array<int, 2 * kMaxBasis> unknown{};
  std::array<double, 2 * kMaxBasis> value{};
  std::array<double, 2 * kMaxBasis> test{};
};
LocalRow LocalValues(const System& system, const Control& control);

/// What every unknown gives to the field at a control point: a row of `unknowns` values.
void InfluenceRow(const System& system, const Control& control, double* row);

/// What the coefficients of a piece give to the field at a control point: size values.
void PieceInfluence(const System& system, const Control& control, int piece, double* seen);
/// The same per unit discharge of a well, or rate of a disk.
double PointInfluence(const Control& control, const WellSource& well);
double PointInfluence(const Control& control, const DiskSource& disk);

/// The same field from what is given: everything but pieces with unknowns.  Pre: other unknowns are 0.
double GivenField(const System& system, const Control& control);

/// Sum of absolute weights of a loop, squared: the scale of its condition.
double LoopScale(const std::vector<std::pair<int, double>>& loop);

/// Width of a bed in force at a point (contract of the deck's location code): w, 2 L tanh(w/2L) along the
/// centreline or L tanh(w/L) along the water's edge, L = sqrt(T c).
double EffectiveWidth(const LineSinkString& string, double transmissivity);

/// Head loss over the screen of a partially penetrating well per unit discharge, in terms of potential.
double ScreenFactor(const PartialWell& well, const Zone& zone, double potential);

}  // namespace aem::detail
