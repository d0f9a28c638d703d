// The charts of a calibration.
#pragma once

#include <vector>

#include "analysis/calibration.h"
#include "core/chart.h"

namespace ormel {

/// Modelled against observed head, in the order of the data, with the line of perfect fit.
Chart FitChart(const Ormel& ormel, const CalibrationData& data);
/// The differences in their order: (d[i], (Max - Min) i / ((N - 1) / 4)).  The upward axis tells the share of
/// points up to there.
Chart OrderChart(const Ormel& ormel, const CalibrationData& data);
/// Difference against observed head.
Chart ResidualChart(const Ormel& ormel, const CalibrationData& data);
/// Modelled against observed discharge of the strings and lines that have both.
Chart FlowChart(const Ormel& ormel, const std::vector<ObservedFlow>& flows);

/// Of those that have both, in their order: what the points of FlowChart stand for.
std::vector<ObservedFlow> WithBoth(const std::vector<ObservedFlow>& flows);

}  // namespace ormel
