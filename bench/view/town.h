// The map of a town: 2,000 wells, 2,000 strings of line-sinks, 500 domains, 300 contours and 1,000 pathlines.
#pragma once

#include <cmath>
#include <cstdio>
#include <string>

#include "core/layers.h"
#include "core/ormel.h"
#include "core/project.h"
#include "quiet_interface.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/schema.h"
#include "support/temp_dir.h"
#include "view/map_view_impl.h"

namespace ormel {

inline constexpr int kWells = 2000, kStrings = 2000, kDomains = 500, kContours = 300, kPathlines = 1000;
inline constexpr int kStringPoints = 4, kDomainPoints = 12, kContourPoints = 300, kPathPoints = 200;
inline constexpr double kSide = 10000.0;  ///< of the map [m]

inline double Place(int i, int n) {
  return kSide * std::fmod(i * 0.6180339887, 1.0) * (n % 2 == 0 ? 1.0 : 0.999);
}

/// `Surface` is what the map is drawn on.
template <class Surface>
struct Town {
  test::TempDir folder;
  QuietInterface ui;
  Surface surface;
  Ormel ormel;
  MapViewImpl map{ormel, &surface};

  template <class... Args>
  explicit Town(Args... args) : surface(args...) {
    NewDatabaseOptions options;
    options.file_title = "town.orm";
    options.working_directory = folder.path().string();
    DBNewDatabase(folder / "town.orm", options);
    ormel.ports.ui = &ui;
    ormel.ports.view = &map;
    AttachProject(ormel, folder / "town.orm");
    LoadDataControls(ormel);
    Fill();
    WriteContours();
    WritePaths();
    ormel.project.ProjectOpen = true;
    ormel.solution = {.ValidSolution = true, .PathlinesValid = true, .ContoursValid = true};
    ormel.solution.TimeTicSpacing = 365.0;
    ormel.window.SolveWindow = {0.0, kSide, kSide, 0.0};
    map.SetUpLayers();
    for (const Layer layer : {Layer::kElements, Layer::kContours, Layer::kPathlines})
      TurnOnLayer(ormel, layer);
    ormel.layers.Switch(Layer::kTimeTics, true);
    ormel.layers.Switch(Layer::kEditorGrid, false);
    map.ZoomActions(Zoom::kRedraw);
  }
  ~Town() { DetachProject(ormel); }
  Town(const Town&) = delete;
  Town& operator=(const Town&) = delete;

  void Fill() {
    Database& db = ormel.db();
    Transaction command(db);
    db.Execute("update Model set CONTOURShow=1");
    BulkInsert vertices(db, "Vertices", {"PID", "Seq", "X", "Y"});
    BulkInsert polygons(db, "Polygons", {"Closed"});
    BulkInsert wells(db, "Wells", {"VID", "Label", "Radius", "Setback"});
    BulkInsert results(db, "WLResults",
                       {"VadoxLabel", "X", "Y", "Radius", "SpecifiedHead", "Discharge", "Head"});
    for (int i = 0; i < kWells; ++i) {
      vertices.Row(-1, 0, Place(i, 0), Place(i * 7, 1));
      const std::int64_t vid = vertices.LastNumber();
      wells.Row(vid, "Well " + std::to_string(i), 0.3, 50.0);
      char label[16];
      std::snprintf(label, sizeof label, "WL_%06d", static_cast<int>(vid));
      results.Row(label, 0.0, 0.0, 0.3, 0.0, 100.0, 50.0);
    }
    BulkInsert strings(db, "LinesinkStrings", {"PID", "Label"});
    BulkInsert domains(db, "Inhomogeneities", {"PID", "Label"});
    const auto polygon = [&](int i, int points, double size) {
      polygons.Row(0);
      const std::int64_t pid = polygons.LastNumber();
      for (int k = 0; k < points; ++k)
        vertices.Row(pid, 1 + 100 * k, Place(i, 0) + size * std::cos(k * 6.28 / points),
                     Place(i * 3, 1) + size * std::sin(k * 6.28 / points));
      return pid;
    };
    for (int i = 0; i < kStrings; ++i)
      strings.Row(polygon(i, kStringPoints, 100.0), "LS " + std::to_string(i));
    for (int i = 0; i < kDomains; ++i)
      domains.Row(polygon(i, kDomainPoints, 200.0), "IN " + std::to_string(i));
  }

  void WriteContours() {
    std::string text;
    char line[80];
    for (int i = 0; i < kContours; ++i) {
      text += "LEVEL " + std::to_string(i) + "\r\n";
      for (int k = 0; k < kContourPoints; ++k) {
        std::snprintf(line, sizeof line, "      %14.3f%+14.3f\r\n", kSide * k / kContourPoints,
                      kSide * i / kContours + 100.0 * std::sin(k * 0.1));
        text += line;
      }
    }
    test::WriteAll(folder / "town.CTR", text);
  }

  void WritePaths() {
    std::string text;
    char line[120];
    for (int i = 0; i < kPathlines; ++i) {
      text += "START\r\n";
      for (int k = 0; k < kPathPoints; ++k) {
        std::snprintf(line, sizeof line, "      %13.4f %13.4f %13.4f %13.4f %13.4f\r\n",
                      Place(i, 0) + k * 5.0, Place(i * 5, 1) + 40.0 * std::sin(k * 0.05), 20.0, k * 18.25,
                      20.0);
        text += line;
      }
      text += "END\r\n";
    }
    test::WriteAll(folder / "town.PTH", text);
  }
};

}  // namespace ormel
