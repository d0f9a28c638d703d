// Transient wells (Theis, 1935), superposed on the steady solution.
#pragma once

#include "aem/kernel/piece.h"
#include "aem/model.h"

namespace aem::detail {

/// Exponential integral E1(u) for u > 0; relative error below 1e-14.
double ExpIntegral(double u);

/// What one record gives at a time: Phi = -rate/(4 pi) E1(u), u = r^2 S/(4 T t) with t since the record's
/// time. Storage is the specific storage times the saturated thickness, so S/T = SS/k.  omega is real.
Flow TheisInfluence(const TheisRecord& record, double conductivity, double time, Complex at);

}  // namespace aem::detail
