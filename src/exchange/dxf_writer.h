// Writer of drawing exchange files (DXF, text, AC1015), section by section.
//
// Every file carries the six sections of a whole drawing; extents, layers, handle seed and entities vary, the
// rest is that of one blank drawing.  Coordinates have one decimal [map units].
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/types.h"

namespace ormel {

class TextFileWriter;

/// Handle of the first entity; its decimal digits are its text.
inline constexpr std::uint64_t kFirstHandle = 100;

/// A handle seed above the fixed handles and above the texts of `entities` handles from kFirstHandle.
std::string HandleSeed(std::uint64_t entities);

/// Throws FileError, which names the section that could not be written.
class DxfWriter {
 public:
  explicit DxfWriter(TextFileWriter& file) : file_(file) {}

  void WriteHeader(const Extents& extents, std::string_view seed);
  void WriteClasses();
  /// `layers`: "Contours", "Elements", "Pathlines" or "Capture Zones".
  void WriteTables(std::string_view layers);
  void WriteBlocks();
  /// With the name "Section Header" the section of entities begins; otherwise an entity, whose vertices are
  /// counted when it is a "LWPOLYLINE".
  void WriteEntity(std::string_view subclass, std::string_view name, std::string_view layer = {},
                   std::uint64_t handle = 0, std::size_t vertices = 0);
  void WriteCircle(MapPoint centre, double radius);
  void WriteVertex(MapPoint at);
  /// "POLYLINE": the record that ends a polyline of vertex records; "Section End".
  void WriteEntityEnd(std::string_view kind, std::string_view layer = {}, std::uint64_t handle = 0);
  void WriteObjects();
  void WriteEndOfFile();

 private:
  void Group(int code, std::string_view value);
  void Section(std::string_view name, std::string_view groups);
  void Fixed(std::string_view groups);
  void Number(int code, double value);
  void Layers(std::string_view kind);

  TextFileWriter& file_;
  std::string text_;
};

}  // namespace ormel
