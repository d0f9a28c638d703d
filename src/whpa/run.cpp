#include "whpa/run.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

#include "core/command.h"
#include "core/coordinates.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/model_values.h"
#include "solver/deck_writer.h"
#include "solver/extents.h"
#include "solver/outside_programs.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/files.h"
#include "text/masks.h"
#include "text/numbers.h"

namespace ormel {
namespace {

constexpr double kDegree = 3.14159265358979 / 180.0;
constexpr int kLeastParticles = 15;
constexpr double kNoBoundaryConductivity = 1000000;  ///< so high that the water table stays level

/// Line items with their masks.
struct Masks {
  NumberMask base{"#.00000E+00"};
  NumberMask property{"#.0000000E+00"};
  NumberMask property_blank{"#.0000000E+00 "};
  NumberMask window{"######0.00 "};
  NumberMask well_x{"#0.000000E+00 "};
  NumberMask well_y{"0.000000E+00 "};
  NumberMask well_value{"0.00000E+00 "};
  NumberMask trace{"0.0000000E+00 "};
  NumberMask direction{"#0.0"};
};

/// What the first row says of the boundary that all rows share.
struct Boundary {
  bool exists = false;
  MapPoint first, second;
  double head = 0.0, conductivity = 0.0;
  double thickness = 0.0, porosity = 0.0, ambient_flow = 0.0, direction = 0.0;
};

Boundary ReadBoundary(Ormel& ormel) {
  Boundary b;
  RowReader row(ormel.db(),
                "select Point1X,Point1Y,Point2X,Point2Y,FirstHead,WHPAData,Thickness,Porosity,AmbientFlow,"
                "Direction from WHPAs where T>1 or Type=3");
  if (!row.Next()) return b;
  b.first = {row.Double(0), row.Double(1)};
  b.second = {row.Double(2), row.Double(3)};
  b.exists = b.first.x != 0 || b.first.y != 0 || b.second.x != 0 || b.second.y != 0;
  b.head = row.Double(4);
  b.conductivity = row.Double(5);
  b.thickness = row.Double(6);
  b.porosity = row.Double(7);
  b.ambient_flow = row.Double(8);
  b.direction = row.Double(9);
  return b;
}

/// Writes one deck; holds what its sections share.
class WhpaDeck {
 public:
  WhpaDeck(Ormel& ormel, TextFileWriter& out, std::string stem)
      : ormel_(ormel),
        out_(out),
        stem_(std::move(stem)),
        model_(ReadModel(ormel)),
        boundary_(ReadBoundary(ormel)) {}

  void Write() {
    Head();
    Aquifer();
    Layout();
    Wells();
    Layout();
    Solve();
    if (boundary_.exists && model_.CONTOURShow != 0) Grid();
    if (model_.TRACECompute != 0) Trace();
    out_.Line(" stop");
  }

 private:
  void Lines(std::initializer_list<std::string_view> lines) {
    for (const std::string_view line : lines) out_.Line(line);
  }

  std::string X(double x) const { return masks_.property_blank.Format(WToM_X(ormel_, x)); }
  std::string Y(double y) const { return masks_.property_blank.Format(WToM_Y(ormel_, y)); }

  void Head() {
    out_.Line(DeckHeadLine());
    Lines({" error temperror.log", " yes", " message tempmess.log", " yes", " echo tempecho.log", " yes",
           " picture off", " quit", " "});
    const Extents& extents = ormel_.window.model;
    // The solver needs no units here: the code is that of a factor which is neither zero nor negative.
    out_.Line(" modelorigin " + RawNumber(extents.x_min) + " " + RawNumber(extents.y_min) + " " + " 1 ");
    out_.Line(" title " + stem_);
  }

  void Aquifer() {
    out_.Line(" aquifer");
    out_.Line(" base " + masks_.base.Format(model_.AQBase));
    out_.Line(" permeability " +
              masks_.property.Format(boundary_.exists ? boundary_.conductivity : kNoBoundaryConductivity));
    out_.Line(" thickness " + masks_.property.Format(boundary_.thickness));
    out_.Line(" porosity " + masks_.property.Format(boundary_.porosity));
    const double angle = boundary_.direction * kDegree;
    out_.Line(" uniflow      " + masks_.property_blank.Format(boundary_.ambient_flow * std::cos(angle)) +
              masks_.property_blank.Format(boundary_.ambient_flow * std::sin(angle)));
    Reference();
    out_.Line(" quit ");
  }

  void Reference() {
    if (boundary_.exists) {
      out_.Line(" reference    " + X(boundary_.first.x) + Y(boundary_.first.y) +
                masks_.property_blank.Format(boundary_.head));
      return;
    }
    const MapRect& window = ormel_.window.SolveWindow;
    out_.Line(" reference    " + X(window.Width() * 0.5) + Y(window.Height() * 0.5) +
              masks_.property_blank.Format(model_.AQBase + boundary_.thickness * 10));
  }

  std::string WindowLine() const {
    const MapRect& window = ormel_.window.SolveWindow;
    std::string line = " window ";
    masks_.window.AppendTo(line, WToM_X(ormel_, window.x1));
    masks_.window.AppendTo(line, WToM_Y(ormel_, window.y1));
    masks_.window.AppendTo(line, WToM_X(ormel_, window.x2));
    masks_.window.AppendTo(line, WToM_Y(ormel_, window.y2));
    return line;
  }

  void Layout() {
    out_.Line(" layout ");
    out_.Line(WindowLine());
    out_.Line(" quit ");
  }

  void WellLines(std::string_view sql) {
    RowReader rows(ormel_.db(), sql);
    while (rows.Next()) {
      std::string line = "  ";
      masks_.well_x.AppendTo(line, WToM_X(ormel_, rows.Double(0)));
      masks_.well_y.AppendTo(line, WToM_Y(ormel_, rows.Double(1)));
      masks_.well_value.AppendTo(line, rows.Double(2));
      masks_.well_value.AppendTo(line, rows.Double(3));
      out_.Line(line + VertexLabel("WL_", rows.Long(4)));
    }
  }

  void Wells() {
    if (ormel_.db().Scalar("select count(*) from WHPAs where T>1 or Type=3").AsLong() == 0) return;
    Lines({" well ", " discharge "});
    WellLines(
        "select Vertices.X,Vertices.Y,Wells.Head,Wells.Radius,Wells.VID from WHPAs inner join Wells on "
        "Wells.Label=WHPAs.Well inner join Vertices on Vertices.VID=Wells.VID where WHPAs.T>1 or "
        "WHPAs.Type=3 "
        "order by WHPAs.rowid");
    WellLines(
        "select Vertices.X,Vertices.Y,Wells.Head,Wells.Radius,Wells.VID from Wells inner join Vertices on "
        "Vertices.VID=Wells.VID where Wells.Label like 'Mirror_*' order by Wells.VID");
    out_.Line(" quit ");
  }

  void Solve() {
    Lines({" time 0", " solve 1 0 0 1", " ", " save " + stem_, "y",
           " time " + NumberText(ormel_.solution.SolutionTime)});
  }

  void Grid() {
    Lines({" grid", WindowLine(), " dotmap off",
           model_.CONTOURLevel != 40 ? " horizontalpoints 80" : " horizontalpoints 40", " go",
           " surfer " + stem_, " y ", " quit"});
  }

  void Trace() {
    Lines({" trace", " picture off", " file " + stem_, " y ", " time " + NumberText(model_.TRACEMaxTime)});
    if (!ormel_.solution.use_default_step) out_.Line(" step " + NumberText(model_.TRACEStep));
    if (boundary_.exists)
      out_.Line(" Boundary  " + X(boundary_.first.x) + Y(boundary_.first.y) + X(boundary_.second.x) +
                Y(boundary_.second.y) + " ");
    Particles();
    TracedWells();
    Lines({" go", " quit"});
  }

  void Particles() {
    RowReader rows(
        ormel_.db(),
        "select Vertices.X,Vertices.Y,Particles.Forward,Particles.SatdThick,Particles.Elevation from "
        "Vertices inner join Particles on Vertices.VID = Particles.VID order by Vertices.VID;");
    bool any = false;
    while (rows.Next()) {
      if (!any) out_.Line(" points");
      any = true;
      const double z = rows.Bool(3) ? rows.Double(4) : model_.AquiferTop();
      out_.Line(" " + masks_.trace.Format(WToM_X(ormel_, rows.Double(0))) +
                masks_.trace.Format(WToM_Y(ormel_, rows.Double(1))) + masks_.trace.Format(z) +
                masks_.direction.Format(rows.Bool(2) ? 1.0 : -1.0));
    }
    if (any) out_.Line(" quit");
  }

  void TracedWells() {
    RowReader rows(
        ormel_.db(),
        "select Vertices.X,Vertices.Y,Wells.NParticles from Vertices inner join Wells on Vertices.VID "
        "= Wells.VID where Wells.Label not like 'Mirror_*' and exists (select 1 from WHPAs where "
        "WHPAs.Well=Wells.Label and not (WHPAs.T<1 and WHPAs.Type<>3)) order by Vertices.VID");
    while (rows.Next()) {
      const std::int64_t particles = std::max<std::int64_t>(rows.Long(2), kLeastParticles);
      out_.Line(" well " + masks_.trace.Format(WToM_X(ormel_, rows.Double(0))) +
                masks_.trace.Format(WToM_Y(ormel_, rows.Double(1))) +
                masks_.well_value.Format(model_.AQBase) + RawNumber(static_cast<double>(particles)));
    }
  }

  Ormel& ormel_;
  TextFileWriter& out_;
  std::string stem_;
  ModelValues model_;
  Boundary boundary_;
  Masks masks_;
};

void DeleteOldFiles(const Ormel& ormel, const std::string& stem) {
  for (const char* extension : {".XTR", ".PTH", ".CTR", ".GRD"})
    DeleteTolerantly(ModelFile(ormel, stem + extension));
  for (const char* name : {"GRID__.DAT", "GRID__.XTR", "VADOX1.INI", "VADOX.OPS"})
    DeleteTolerantly(ModelFile(ormel, name));
}

void ShowAreas(Ormel& ormel) {
  const ModelValues model = ReadModel(ormel);
  ormel.layers.Switch(Layer::kContours, model.CONTOURShow != 0);
  ormel.layers.Switch(Layer::kPathlines, model.TRACECompute != 0);
  if (ormel.db().RowCount("TestPoints") > 0) ormel.layers.Switch(Layer::kTestPoints, true);
  ormel.menus.Enable("WHPA", 3, true);
  ormel.layers.Switch(Layer::kWhpas, true);
  ormel.view().ZoomActions(Zoom::kRedraw);
}

}  // namespace

std::string WhpaStem(Ormel& ormel) {
  const std::string stem = ormel.db().Scalar("select WHPAText from WHPAs").AsText();
  return stem == "NONE" ? std::string() : stem;
}

void WriteWhpaDeck(Ormel& ormel, TextFileWriter& deck, const std::string& stem) {
  WhpaDeck(ormel, deck, stem).Write();
}

void ModelRunWHPAs(Ormel& ormel) {
  RunCommand(ormel, "ModelRunWHPAs", [&] {
    const std::string stem = WhpaStem(ormel);
    {
      const PleaseWait wait(ormel, "Writing WHPAs to Solver...");
      DeleteOldFiles(ormel, stem);
      ModelCheckExtents(ormel, false, false);
      TextFileWriter deck(ModelFile(ormel, stem + ".DAT"));
      WriteWhpaDeck(ormel, deck, stem);
      deck.Commit();
    }
    noexecutable(ormel, kSolverProgram);
    const int size = ModelGetSize(ormel, false);
    CommitSoFar(ormel);
    const ProcessResult result = RunSolver(ormel, size, stem, "Calculating WHPA...");
    if (result.cancelled) return;
    if (!result.started) {
      Inform(ormel, "Solver not started", result.failure, Icon::kStop);
      return;
    }
    if (TellFatalStop(ormel, result)) {
      ormel.solution.ValidSolution = false;
      return;
    }
    // Without a stream boundary the deck asks for no grid, and there is nothing to contour.
    if (FileExists(ModelFile(ormel, stem + ".GRD"))) RunContourProgram(ormel, stem);
    ShowAreas(ormel);
    const std::string log = ModelFile(ormel, "temperror.log");
    if (ErrorLogSpeaks(log)) ormel.ui().ViewTextFile(log);
  });
}

}  // namespace ormel
