#include "exchange/dxf_writer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "exchange/dxf_skeleton.h"
#include "text/files.h"
#include "text/masks.h"

namespace ormel {
namespace {

/// Columns of whole numbers by group code, and of the codes themselves.
constexpr std::size_t kCodeColumns = 3, kShortColumns = 6, kLongColumns = 9;

std::size_t ColumnsOf(int code) {
  const bool is_short = (code >= 60 && code <= 79) || (code >= 170 && code <= 179) ||
                        (code >= 270 && code <= 299) || (code >= 370 && code <= 389);
  if (code == 62) return kShortColumns;
  return is_short ? kShortColumns : code == 90 || code == 1071 ? kLongColumns : 0;
}

void AppendRight(std::string& out, std::string_view text, std::size_t columns) {
  out.append(columns - std::min(columns, text.size()), ' ');
  out += text;
}

struct DxfLayer {
  std::string_view kind, name, color, handle;
  std::string_view plot_style = "0";
};
constexpr std::array kLayers{DxfLayer{"Contours", "Contours", "5", "2F"},
                             DxfLayer{"Elements", "Horizontal Barriers", "7", "34653cd3", "1F"},
                             DxfLayer{"Elements", "Inhomogeneities", "2", "2F", "1F"},
                             DxfLayer{"Elements", "Line-sinks (discharge)", "190", "2E11", "1F"},
                             DxfLayer{"Elements", "Line-sinks (drains)", "33", "2E9", "1F"},
                             DxfLayer{"Elements", "Line-sinks (farfield)", "3", "2E8", "1F"},
                             DxfLayer{"Elements", "Line-sinks (galleries)", "70", "2E10", "1F"},
                             DxfLayer{"Elements", "Line-sinks (near field)", "164", "2E6", "1F"},
                             DxfLayer{"Elements", "Line-sinks (streams and lakes)", "6", "2E7", "1F"},
                             DxfLayer{"Elements", "Wells", "5", "2D1", "1F"},
                             DxfLayer{"Pathlines", "Pathlines", "1", "2D1"},
                             DxfLayer{"Pathlines", "Time Ticmarks", "1", "2E1"},
                             DxfLayer{"Pathlines", "Vertical Ticmarks Up", "3", "2F"},
                             DxfLayer{"Pathlines", "Vertical Ticmarks Down", "5", "30EF"},
                             DxfLayer{"Capture Zones", "Capture Zones", "164", "2D1"}};

/// As the pattern has them: that of the elements tells fewer layers than follow, and readers count for
/// themselves.
struct LayerCount {
  std::string_view kind, count;
};
constexpr std::array kLayerCounts{LayerCount{"Contours", "2"}, LayerCount{"Elements", "4"},
                                  LayerCount{"Pathlines", "5"}, LayerCount{"Capture Zones", "2"}};

/// The largest of the fixed handles.
constexpr std::uint64_t kLargestFixed = 0x34653cd3;

const NumberMask& Coordinates() {
  static const NumberMask mask("0.0");
  return mask;
}

}  // namespace

std::string HandleSeed(std::uint64_t entities) {
  // The decimal digits of a handle are read as hexadecimal ones.
  const std::string last = std::to_string(kFirstHandle + entities);
  std::uint64_t value = 0;
  std::from_chars(last.data(), last.data() + last.size(), value, 16);
  std::array<char, 17> digits{};
  const auto end =
      std::to_chars(digits.data(), digits.data() + digits.size(), std::max(value, kLargestFixed) + 1, 16).ptr;
  std::string seed(digits.data(), end);
  for (char& c : seed)
    if (c >= 'a') c = static_cast<char>(c - 'a' + 'A');
  return seed;
}

void DxfWriter::Group(int code, std::string_view value) {
  text_.clear();
  AppendRight(text_, std::to_string(code), kCodeColumns);
  text_ += "\r\n";
  AppendRight(text_, value, ColumnsOf(code));
  text_ += "\r\n";
  file_.Write(text_);
}

void DxfWriter::Number(int code, double value) {
  text_.clear();
  AppendRight(text_, std::to_string(code), kCodeColumns);
  text_ += "\r\n";
  Coordinates().AppendTo(text_, value);
  text_ += "\r\n";
  file_.Write(text_);
}

/// Lines "<code> <value>".
void DxfWriter::Fixed(std::string_view groups) {
  while (!groups.empty()) {
    const std::size_t end = groups.find('\n');
    const std::string_view line = groups.substr(0, end);
    const std::size_t blank = line.find(' ');
    int code = 0;
    std::from_chars(line.data(), line.data() + blank, code);
    Group(code, line.substr(blank + 1));
    groups.remove_prefix(end + 1);
  }
}

void DxfWriter::Section(std::string_view name, std::string_view groups) {
  Group(0, "SECTION");
  Group(2, name);
  Fixed(groups);
}

void DxfWriter::WriteHeader(const Extents& extents, std::string_view seed) {
  Section("HEADER", dxf::kHeaderHead);
  struct Corner {
    std::string_view name;
    double x, y;
  };
  for (const Corner& corner :
       {Corner{"$EXTMIN", extents.x_min, extents.y_min}, Corner{"$EXTMAX", extents.x_max, extents.y_max}}) {
    Group(9, corner.name);
    Number(10, corner.x);
    Number(20, corner.y);
    Group(30, "0.0");
  }
  Fixed(dxf::kHeaderTail);
  Group(9, "$HANDSEED");
  Group(5, seed);
  Fixed(dxf::kHeaderEnd);
  Group(0, "ENDSEC");
}

void DxfWriter::WriteClasses() {
  Section("CLASSES", dxf::kClasses);
  Group(0, "ENDSEC");
}

void DxfWriter::Layers(std::string_view kind) {
  const auto layer = [this](const DxfLayer& row) {
    Group(0, "LAYER");
    Group(5, row.handle);
    Group(100, "AcDbSymbolTableRecord");
    Group(100, "AcDbLayerTableRecord");
    Group(2, row.name);
    Group(70, "0");
    Group(62, row.color);
    Group(6, "Continuous");
    Group(290, "1");
    Group(370, "0");
    Group(390, row.plot_style);
    Fixed("1001 TCAD\n1000 TCW_LAYER_ORDER\n1002 {\n1071 0\n1002 }\n");
  };
  const auto* count = std::find_if(kLayerCounts.begin(), kLayerCounts.end(),
                                   [kind](const LayerCount& row) { return row.kind == kind; });
  Fixed("0 TABLE\n2 LAYER\n5 2\n100 AcDbSymbolTable\n");
  Group(70, count == kLayerCounts.end() ? "1" : count->count);
  layer({kind, "0", "7", "14"});
  for (const DxfLayer& row : kLayers)
    if (row.kind == kind) layer(row);
  Group(0, "ENDTAB");
}

void DxfWriter::WriteTables(std::string_view layers) {
  Section("TABLES", dxf::kTablesHead);
  Layers(layers);
  Fixed(dxf::kTablesTail);
  Group(0, "ENDSEC");
}

void DxfWriter::WriteBlocks() {
  Section("BLOCKS", dxf::kBlocks);
  Group(0, "ENDSEC");
}

void DxfWriter::WriteEntity(std::string_view subclass, std::string_view name, std::string_view layer,
                            std::uint64_t handle, std::size_t vertices) {
  if (name == "Section Header") return Section("ENTITIES", {});
  Group(0, name);
  Group(5, std::to_string(handle));
  Group(100, "AcDbEntity");
  Group(8, layer);
  Group(6, "Continuous");
  Group(100, subclass);
  if (name != "LWPOLYLINE") return;
  Group(90, std::to_string(vertices));
  Group(70, "0");
}

void DxfWriter::WriteCircle(MapPoint centre, double radius) {
  constexpr int kMostDecimals = 12;
  Number(10, centre.x);
  Number(20, centre.y);
  Group(30, "0.0");
  // One decimal, or as many as two digits of a smaller radius need: a circle without radius is no circle.
  int decimals = 1;
  if (radius > 0.0 && radius < 1.0)
    decimals = std::clamp(1 - static_cast<int>(std::floor(std::log10(radius))), 1, kMostDecimals);
  Group(40, FormatMask(radius, "0." + std::string(static_cast<std::size_t>(decimals), '0')));
}

void DxfWriter::WriteVertex(MapPoint at) {
  Number(10, at.x);
  Number(20, at.y);
}

void DxfWriter::WriteEntityEnd(std::string_view kind, std::string_view layer, std::uint64_t handle) {
  if (kind == "Section End") return Group(0, "ENDSEC");
  Group(0, "SEQEND");
  Group(5, std::to_string(handle));
  Group(100, "AcDbEntity");
  Group(8, layer);
  Group(6, "Continuous");
}

void DxfWriter::WriteObjects() {
  Section("OBJECTS", dxf::kObjects);
  Group(0, "ENDSEC");
}

void DxfWriter::WriteEndOfFile() {
  Group(0, "EOF");
}

}  // namespace ormel
