// Truncated series of clusters of sources (Greengard and Rokhlin, 1987).
//
// A cluster about c that fits a radius R gives, outside of it,
//   omega = net ln(z - c) + sum over k = 1 ... kTerms of a_k (R/(z - c))^k,      w = -d omega/dz,
// and far clusters together give, within the radius r around a place p,
//   omega = sum over n = 0 ... kTerms of l_n ((z - p)/r)^n.
// Cutting at kTerms leaves an error below S q^(kTerms+1)/(1 - q), S the sum of the absolute strengths and
// q = max(R/(d - r), r/(d - R)) with d the distance of the centres.
#pragma once

#include <array>

#include "aem/kernel/piece.h"

namespace aem::detail {

inline constexpr int kTerms = 24;

/// Element 0 of an outer series is its net (real); of a local one the value at the centre.
using Series = std::array<Complex, kTerms + 1>;

/// Where a series is centred and the radius that its variable is measured by.
struct Disc {
  Complex centre;
  double radius = 1.0;
};

/// Adds what one coefficient of a piece gives to the outer series of the disc around it.
void AddPieceSeries(const Piece& piece, int coefficient, double value, const Disc& disc, Series* outer);
/// Adds a point source of the given discharge [L3/d].
void AddPointSeries(Complex at, double discharge, const Disc& disc, Series* outer);

/// Adds an outer series to that of a larger disc around it.
void Lift(const Series& inner, const Disc& from, const Disc& to, Series* outer);
/// Adds an outer series to the local series of a disc that is well separated.
void Transfer(const Series& outer, const Disc& from, const Disc& to, Series* local);
/// Adds a local series to that of a smaller disc inside.
void Inherit(const Series& local, const Disc& from, const Disc& to, Series* inner);

Flow EvaluateOuter(const Series& outer, const Disc& disc, Complex at);
Flow EvaluateLocal(const Series& local, const Disc& disc, Complex at);

/// Whether series of this order hold between two discs: q at most 1/2.
bool Separated(const Disc& a, const Disc& b);

}  // namespace aem::detail
