// What a solved system says about its elements; declared for Solution, which documents it.
#pragma once

#include <array>

#include "aem/system/system.h"

namespace aem::detail {

class Stage;

double HeadRange(const System& s);
/// Adds the local flow of partially penetrating wells nearby.
void AddPartialWells(const System& s, Complex at, double elevation, PointState* state, double* vertical);

// places.cpp
SinkHit NearestSink(const System& s, Complex point, double distance);
Crossing FirstCrossing(const System& s, Complex from, Complex to);
double SinkDensity(const System& s, int string, int segment, double position);
bool Percolates(const System& s, int string, int segment, double position);

// answers.cpp
std::vector<WellResult> WellResults(const System& s);
std::vector<WellResult> PartialWellResults(const System& s);
std::vector<WellResult> TheisResults(const System& s);
std::vector<DiskResult> DiskResults(const System& s);
std::vector<StringResult> StringResults(const System& s);
double SegmentDischarge(const System& s, int string, int segment);
/// Largest difference between calculated head and stage at points of the piece that are no control points
/// [L].
double PieceHeadError(const System& s, int piece, const Stage& stage);
std::vector<DomainResult> DomainResults(const System& s);

// walls.cpp
std::vector<WallResult> WallResults(const System& s);
/// Flow per length that the wall lets through from left to right at a point of the edge [L2/d].
double AllowedLeakage(const System& s, const JumpEdge& edge, Complex at);
/// Edges of each wall's segments: [wall][segment], in order along it.
std::vector<std::vector<std::vector<int>>> WallEdges(const System& s);
/// Flow per length across a part of a wall's segment, a to b on its edges, beyond what the wall lets through;
/// from left to right [L2/d].
double ExcessLeakage(const System& s, const std::vector<int>& edges, Complex a, Complex b);

// flux.cpp
/// Flow across the straight line from its left to its right [L3/d].
double Flux(const System& s, Complex from, Complex to);

// check.cpp
/// Places on a piece, from -1 to 1, where conditions are checked: between control points, and towards the
/// ends, where errors are largest.
inline constexpr std::array<double, 5> kCheckPlaces{-0.9, -0.47, 0.03, 0.52, 0.91};
Checks Check(const System& s);
Balance WaterBalance(const System& s);

}  // namespace aem::detail
