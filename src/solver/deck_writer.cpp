#include "solver/deck_writer.h"

#include <array>
#include <cmath>
#include <filesystem>
#include <numbers>
#include <system_error>

#include "core/command.h"
#include "core/coordinates.h"
#include "core/directory_memory.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/validity.h"
#include "solver/deck_sections.h"
#include "solver/extents.h"
#include "store/database.h"
#include "text/numbers.h"

namespace ormel {
namespace {

constexpr double kPi = 3.14159265358979;  // the digits that decks have always been written with

/// The aquifer's row of `Model`.
struct Aquifer {
  double base = 0.0, conductivity = 0.0, thickness = 0.0, porosity = 0.0;
  bool uniform_flow = false;
  double gradient = 0.0, orientation = 0.0;  ///< [-], [degrees]
  double reference_head = 0.0;
  MapPoint reference;
};

Aquifer ReadAquifer(Database& db) {
  RowReader row(db,
                "select AQBase,AQHydCond,AQThickness,AQPorosity,UNIFLOWCompute,UNIFLOWGradient,"
                "UNIFLOWOrientation,UNIFLOWRefHead,UNIFLOWRefX,UNIFLOWRefY from Model");
  Aquifer a;
  if (!row.Next()) return a;
  a.base = row.Double(0);
  a.conductivity = row.Double(1);
  a.thickness = row.Get(2).AsDouble();  // kept as text
  a.porosity = row.Double(3);
  a.uniform_flow = row.Bool(4);
  a.gradient = row.Double(5);
  a.orientation = row.Double(6);
  a.reference_head = row.Double(7);
  a.reference = {row.Double(8), row.Double(9)};
  return a;
}

const char* UnitsText(double basemap_convert) {
  if (basemap_convert == 1.0) return " 2 ";
  return basemap_convert < 1.0 ? " 0 " : " 1 ";
}

void WriteReference(DeckContext& context, ModelPoint at, double head) {
  const NumberMask& mask = context.masks.seven_blank;
  context.Line(DeckLine(" reference    ").Number(mask, at.x).Number(mask, at.y).Number(mask, head));
}

/// The uniform flow and the point whose head is known.
void WriteRegionalFlow(DeckContext& context, const Aquifer& aquifer) {
  const MapWindow& window = context.ormel.window;
  if (aquifer.uniform_flow) {
    const double saturated = std::min(aquifer.reference_head - aquifer.base, aquifer.thickness);
    const double discharge = aquifer.gradient * aquifer.conductivity * saturated;
    const double angle = aquifer.orientation * kPi / 180.0;
    const NumberMask& mask = context.masks.seven_blank;
    context.Line(DeckLine(" uniflow      ")
                     .Number(mask, discharge * std::cos(angle))
                     .Number(mask, discharge * std::sin(angle)));
    WriteReference(context, WToM(context.ormel, aquifer.reference), aquifer.reference_head);
    return;
  }
  // Far to the upper right of the model, where its elements are hardly felt.
  const Extents& model = window.model;
  const double far = 10.0 * 0.5 * std::hypot(model.x_max - model.x_min, model.y_max - model.y_min);
  const MapPoint at{0.5 * (model.x_min + model.x_max) + far, 0.5 * (model.y_min + model.y_max) + far};
  WriteReference(context, WToM(context.ormel, at), window.ReferenceHead);
}

void WriteAquifer(DeckContext& context) {
  const Aquifer aquifer = ReadAquifer(context.db);
  const DeckMasks& masks = context.masks;
  context.deck.Line(" aquifer");
  context.Line(DeckLine(" base ").Number(masks.five, aquifer.base));
  context.Line(DeckLine(" permeability ").Number(masks.seven, aquifer.conductivity));
  context.Line(DeckLine(" thickness ").Number(masks.seven, aquifer.thickness));
  context.Line(DeckLine(" porosity ").Number(masks.seven, aquifer.porosity));
  WriteRegionalFlow(context, aquifer);
  context.deck.Line(" quit ");
}

void WriteOriginAndTitle(DeckContext& context) {
  const Ormel& ormel = context.ormel;
  context.deck.Line(" modelorigin " + RawNumber(ormel.window.model.x_min) + " " +
                    RawNumber(ormel.window.model.y_min) + " " + UnitsText(BasemapConvert(ormel)));
  context.deck.Line(" title " + ormel.project.OrmelBaseName);
}

void EmptyResults(Database& db) {
  for (const char* sql : {"DELETE * FROM WLResults;", "DELETE * FROM LSResults;", "DELETE * FROM INResults;",
                          "DELETE * FROM NFResults;"})
    db.Execute(sql);
}

constexpr std::string_view kExportPathKey = "Default Export Vadox path";

std::optional<std::string> AskForDeckName(Ormel& ormel) {
  FileDialog dialog;
  dialog.save = true;
  dialog.title = "Write Vadox Input File";
  dialog.default_extension = "DAT";
  dialog.filter = "Vadox Input Files|*.DAT";
  dialog.directory = ReadDefaultDirectory(ormel, kExportPathKey);
  auto path = ormel.ui().Ask(dialog);
  if (path && !path->empty()) WriteDefaultDirectory(ormel, kExportPathKey, GetPathFromFile(*path));
  return path;
}

}  // namespace

std::string VertexLabel(std::string_view prefix, std::int64_t id) {
  static const NumberMask mask("000000");
  std::string label(prefix);
  mask.AppendTo(label, static_cast<double>(id));
  return label;
}

std::string SegmentLabel(std::string_view prefix, std::int64_t pid, std::int64_t seq) {
  static const NumberMask mask("0000");
  std::string label = VertexLabel(prefix, pid) + "_";
  mask.AppendTo(label, static_cast<double>(seq));
  return label;
}

std::string DeckHeadLine() {
  return "* Written by Ormel " + VersionText();
}

std::string DeckWindowLine(const Ormel& ormel) {
  static const NumberMask mask("######0.00 ");
  const MapRect& window = ormel.window.SolveWindow;
  return DeckLine(" window ")
      .Number(mask, WToM_X(ormel, window.x1))
      .Number(mask, WToM_Y(ormel, window.y2))
      .Number(mask, WToM_X(ormel, window.x2))
      .Number(mask, WToM_Y(ormel, window.y1))
      .str();
}

void WriteLayout(const Ormel& ormel, TextFileWriter& deck) {
  deck.Line(" layout ");
  deck.Line(DeckWindowLine(ormel));
  deck.Line(" quit ");
}

int ToolsWriteVadoxElements(Ormel& ormel, TextFileWriter& deck, bool WriteResultRows, bool ForExport) {
  const Named named(ormel, "ToolsWriteVadoxElements");
  const PleaseWait wait(ormel, "Writing Data to Solver...");
  Database& db = ormel.db();
  Transaction transaction(db);
  if (!ForExport) EmptyResults(db);
  const VertexTable vertices(db);
  ResultRows rows(db, WriteResultRows);
  DeckContext context{
      .ormel = ormel, .db = db, .deck = deck, .vertices = vertices, .rows = rows, .for_export = ForExport};
  WriteOriginAndTitle(context);
  WriteAquifer(context);
  WriteLayout(ormel, deck);
  WriteInhomogeneities(context);
  WriteBarriers(context);
  WriteWells(context);
  WriteLinesinks(context);
  transaction.Commit();
  return context.recommended_iterations;
}

void ToolsExportVadox(Ormel& ormel, const std::string& FileName) {
  const Named named(ormel, "ToolsExportVadox");
  std::string path = FileName;
  if (path.empty()) path = AskForDeckName(ormel).value_or("");
  if (path.empty()) return;
  if (FileExists(path) &&
      !AskYesNo(ormel, "File Exists",
                Lines({"File " + path + " already exists.", "Do you want to overwrite it?"}),
                Icon::kQuestion))
    return;
  ModelCheckExtents(ormel, false, false);
  InvalidateSolution(ormel, false, true);
  TextFileWriter deck(path);  // an old file stands until the new one is complete
  for (const std::string& line :
       {DeckHeadLine(), std::string(" Error Error.Log"), std::string(" yes"), std::string(" Message nul"),
        std::string(" echo con"), std::string(" quit")})
    deck.Line(line);
  ToolsWriteVadoxElements(ormel, deck, false, true);
  for (const char* line : {" switch", " error con", " message con", " echo off", " input con"})
    deck.Line(line);
  deck.Commit();
}

}  // namespace ormel
