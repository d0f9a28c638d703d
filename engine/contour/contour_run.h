// The program CONTOUR.EXE as a function, and the text of a contour file.
#pragma once

#include <string>
#include <vector>

#include "contour/tracing.h"

namespace contour {

/// A line of more points is written as several, each beginning with the last point of the one before.
inline constexpr std::size_t kMostPoints = 1000;

/// Appends one contour line to the text of a contour file:
///   "LEVEL 12.5"
///   six blanks, x in 14 columns, y in 14 columns with its sign, both in fixed notation, at most six decimals
/// A blank stands before each number and y always has its sign, so that readers by columns and readers by
/// blanks find the same numbers.  Points that would be written like the one before are left out, and so is a
/// line of which one point remains.  Lines end with CR LF.  Throws ContourError for a coordinate too large
/// for its columns.
void AppendContour(std::string& text, double level, const Polyline& line);

/// `arguments` are <stem> <min> <interval> <max>.  Reads stem.GRD, writes stem.CTR and returns the exit
/// status: 0, or 1 after a message on standard error.  A contour file of an earlier grid never survives a
/// failure.
int RunContour(const std::vector<std::string>& arguments);

}  // namespace contour
