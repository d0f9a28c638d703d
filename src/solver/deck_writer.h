// Writes the model as the element section of a solver deck.
//
// The deck is a wire format: line items are joined as they are, the blanks of keywords and masks included.
// Coordinates are model coordinates; elevations, heads, radii and rates are in computation units as stored.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ormel {

struct Ormel;
class TextFileWriter;

// Labels under which elements reach the solver and come back: "WL_000012", "LS_000345_0012".
std::string VertexLabel(std::string_view prefix, std::int64_t id);
std::string SegmentLabel(std::string_view prefix, std::int64_t pid, std::int64_t seq);

/// `LSResults.SpecifiedHead` of a line-sink that has none.
inline constexpr double kNoSpecifiedHead = -999.0;

/// "* Written by Ormel 1.0.0"
std::string DeckHeadLine();
/// " window " and the display window in model coordinates: left, bottom, right, top.
std::string DeckWindowLine(const Ormel& ormel);
/// " layout ", the window line, " quit ".
void WriteLayout(const Ormel& ormel, TextFileWriter& deck);

/// Writes the element section into an open deck and gives the recommended number of iterations.
/// `WriteResultRows`: adds the rows of `WLResults` and `LSResults` that the loader fills; those of
/// `INResults` and `NFResults` are added always.  `ForExport` false: empties these four tables first and
/// ignores scenario resistances.  Needs the extents of ModelCheckExtents.  Linear in the number of vertices.
int ToolsWriteVadoxElements(Ormel& ormel, TextFileWriter& deck, bool WriteResultRows, bool ForExport);

/// Writes a deck for the user; without a file name it asks for one.
void ToolsExportVadox(Ormel& ormel, const std::string& FileName);

}  // namespace ormel
