// A project with one element of every kind, metres on the map and in the computation.
//
// Its lower left vertex is (1000, 2000): model coordinates are the map's less that.
#pragma once

#include <initializer_list>
#include <string>

#include "support/test_project.h"

namespace ormel::test {

struct FixtureProject : TestProject {
  FixtureProject() {
    ormel.window.SolveWindow = {900.0, 2100.0, 2900.0, 1900.0};
    ormel.solution.use_default_step = false;
    ormel.solution.SolutionTime = 12.5;
    Transaction together(ormel.db());
    Run("update Model set AQBase=2, AQThickness='28', AQHydCond=12.5, AQPorosity=0.22, CONTOURShow=1, "
        "CONTOURMinimum=10, CONTOURMaximum=30, CONTOURInterval=2.5, TRACEStep=7.5, SOLVERIterations=4");
    AddWells();
    AddLinesinks();
    AddDomains();
    AddBarriers();
    AddObservations();
  }

  void Run(const std::string& sql) { ormel.db().Execute(sql); }

  /// A point element: model coordinates.
  void Vertex(int vid, double x, double y) {
    ormel.db().Execute("insert into Vertices(VID,PID,Seq,X,Y) values(?,-1,-1,?,?)",
                       {vid, 1000 + x, 2000 + y});
  }
  struct At {
    double x, y;
    int seq;
  };
  void String(int pid, std::initializer_list<At> vertices) {
    ormel.db().Execute("insert into Polygons(PID,Closed) values(?,0)", {pid});
    for (const At& at : vertices)
      ormel.db().Execute("insert into Vertices(PID,Seq,X,Y) values(?,?,?,?)",
                         {pid, at.seq, 1000 + at.x, 2000 + at.y});
  }
  struct Well {
    int vid;
    const char* label;
    double x, y, head, radius;
    const char* more_fields;  ///< ",Name" ...
    const char* more_values;
  };
  void Add(const Well& well) {
    Vertex(well.vid, well.x, well.y);
    ormel.db().Execute("insert into Wells(VID,Label,Head,Radius" + std::string(well.more_fields) +
                           ") values(?,?,?,?" + well.more_values + ")",
                       {well.vid, well.label, well.head, well.radius});
  }
  void AddWells() {
    Add({1, "Town 1", 250.5, 300, 850, 0.3, ",NParticles,StartElev", ",20,5"});
    Add({2, "Head O'Brien", 300, 400, 22.5, 0.25, ",HeadSpecified,NParticles", ",1,8"});
    Add({3, "Partial", 400, 100, 300, 0.2, ",PPWell,TopElev,BottomElev", ",1,15,5"});
    Add({4, "Partial head", 450, 150, 21, 0.2, ",PPWell,HeadSpecified,TopElev,BottomElev", ",1,1,14,4"});
    const char* const transient = ",Transient,Time,StartHead,SS,Cyclic,Cycles";
    Add({5, "Irrigation", 500, 200, -120, 0.15, transient, ",1,30,25,0.0002,0,0"});
    Add({6, "Irrigation", 500, 200, 80, 0.15, transient, ",1,60,25,0.0002,0,0"});
    Add({7, "Pond", 600, 500, -0.002, 50, ",Pond", ",1"});
    Add({8, "Lake", 700, 550, 24, 40, ",Pond,HeadSpecified", ",1,1"});
    Add({9, "Mirror_Town 1", 900, 300, -850, 0.3, ",NParticles", ",20"});
    Add({10, "Seasonal", 550, 250, 60, 0.15, transient, ",1,90,25,0.0002,1,2"});
  }
  void Linesink(int pid, const char* label, double from, double to, const std::string& more_fields,
                const std::string& more_values) {
    ormel.db().Execute("insert into LinesinkStrings(PID,Label,StartingHead,EndingHead" + more_fields +
                           ") values(?,?,?,?" + more_values + ")",
                       {pid, label, from, to});
  }
  void AddLinesinks() {
    const std::string bed = ",Resistance,Width,Depth,AutoSWIZC,Drain,Farfield";
    const std::string stream = ",Routing,Resistance,Width,Depth,EndInflow,EndStream,Overlandflow";
    String(1, {{0, 0, 1}, {300, 400, 101}, {300, 650, 201}});
    Linesink(1, "Canal", 0.5, 1.25, ",HeadSpecified", ",0");
    String(2, {{0, 750, 1}, {400, 750, 101}, {1000, 750, 201}});
    Linesink(2, "River", 30, 20, bed, ",5,10,2,1,0,0");
    String(3, {{800, 0, 1}, {800, 100, 101}});
    Linesink(3, "Drain", 18, 18, bed, ",0,0,0,0,1,0");
    String(4, {{0, 700, 1}, {0, 600, 101}});
    Linesink(4, "Far lake", 31, 29, bed, ",7,9,3,2,0,1");
    String(5, {{900, 300, 1}});
    Linesink(5, "Single point", 22, 22, bed, ",0,0,0,0,0,0");
    String(6, {{500, 0, 1}, {600, 0, 101}, {600, 100, 201}});
    Linesink(6, "Brook", 20, 16, stream, ",1,0.5,4,1,1500,1,200");
    String(7, {{700, 0, 1}, {700, 200, 101}});
    Linesink(7, "Ditch", 0.5, 0, stream, ",1,0,0,0,0,0,0");
  }
  void Domain(int pid, double recharge, const std::string& changes) {
    ormel.db().Execute(
        "insert into Inhomogeneities(PID,Label,HydCond,BottomElevation,AverageHead,Recharge,Porosity,ChangeK,"
        "ChangeB,ChangeA,ChangeP,ChangeR) values(?,?,25,3.5,22,?,0.15," +
            changes + ")",
        {pid, "Domain " + std::to_string(pid), recharge});
  }
  void AddDomains() {
    String(8, {{200, 100, 1}, {300, 100, 101}, {300, 200, 201}});
    Domain(8, 0.001, "-1,-1,-1,-1,-1");
    String(9, {{600, 300, 1}, {700, 300, 101}, {700, 400, 201}});
    Domain(9, -0.0005, "0,0,0,0,0");
    // Its second vertex was stored first.
    String(10, {{800, 300, 200}, {750, 300, 100}});
    Domain(10, 0, "0,-1,0,-1,0");
    String(11, {{10, 10, 1}});
    Domain(11, 0, "-1,0,0,0,0");
  }
  void Barrier(int pid, const std::string& values) {
    Run("insert into NoFlowStrings(PID,Label,HydCond,Thickness,Porosity,BottomElevation,Closed) values(" +
        std::to_string(pid) + ",'Wall " + std::to_string(pid) + "'," + values + ")");
  }
  void AddBarriers() {
    String(12, {{100, 500, 1}, {200, 500, 101}});
    Barrier(12, "0.01,1,0.2,-9999,0");
    String(13, {{100, 550, 1}, {200, 550, 101}, {200, 600, 201}});
    Barrier(13, "0,1.5,0.25,-9999,1");
    String(14, {{300, 550, 1}, {400, 550, 101}, {400, 600, 201}});
    Barrier(14, "0,1,0.2,4,2");
    String(15, {{500, 550, 1}, {600, 550, 101}, {600, 600, 12345}});
    Barrier(15, "0,1,0.2,-9999,3");
    String(16, {{700, 550, 1}, {750, 550, 101}});
    Barrier(16, "0,1,0.2,-9999,7");
    String(17, {{1, 1, 1}});
    Barrier(17, "0,1,0.2,-9999,0");
  }
  void AddObservations() {
    String(18, {{100, 200, 1}, {350.5, 200, 101}});
    Run("insert into FluxInspect(Label,PID) values('Inflow',18)");
    Run("insert into FluxInspect(Label,PID) values('Empty',19)");
    Vertex(500, 111.116, 222.224);
    Run("insert into TestPoints(VID,ObsHead,Label) values(500,23.4,'MW-1')");
    Vertex(501, 950, 0);
    Run("insert into TestPoints(VID,ObsHead,Label) values(501,20,'MW-2')");
    Vertex(502, 20, 30);
    Run("insert into Particles(VID,Elevation,SatdThick,Forward) values(502,0,1,1)");
    Vertex(503, 40, 50);
    Run("insert into Particles(VID,Elevation,SatdThick,Forward) values(503,4.25,0,0)");
  }

  /// Dummies beside the program, so that they are found there.
  void InstallPrograms() {
    WriteAll(dir / "VADOX1.EXE", "");
    WriteAll(dir / "CONTOUR.EXE", "");
  }
};

/// An extraction file that answers for every row that a deck has made, as the solver would: wells have the
/// head 21.25, line-sinks 27.5, test points 22.4.
inline std::string FullExtraction(Ormel& ormel) {
  std::string text = "* Results of town at time 0 d\r\n";
  const auto section = [&](const char* header, const std::string& sql, const auto& record) {
    text += std::string("! ") + header + "\r\n";
    RowReader rows(ormel.db(), sql);
    while (rows.Next()) text += record(rows) + "\r\n";
  };
  const auto label = [](const RowReader& rows) { return std::string(rows.Text(0)); };
  section("discharge specified wells", "select VadoxLabel from WLResults",
          [&](const RowReader& r) { return " 250.5,300,0.3,850,21.25," + label(r); });
  section("head specified line sinks", "select VadoxLabel from LSResults where SpecifiedHead<>-999",
          [&](const RowReader& r) { return " 0,0,1,0,28,27.5,100,10,5,2,77,88,0.01," + label(r); });
  section("trans domains", "select VadoxLabel from INResults",
          [&](const RowReader& r) { return " 1,2,3,4,5,6,7,8,9,10,11,12,13," + label(r); });
  section("slurry walls", "select VadoxLabel from NFResults",
          [&](const RowReader& r) { return " 1,2,3,4,5,6,7,8,9," + label(r); });
  section("flux", "select distinct 'FL_' || substr('000000' || PID,-6) from FluxInspect",
          [&](const RowReader& r) { return " " + label(r) + ", 12.75"; });
  RowReader points(ormel.db(), "select 'TP_' || substr('000000' || VID,-6) from TestPoints");
  while (points.Next()) text += "@ 111.12,222.22,1,.2,12.5,2,0,10,22.4,0,0,0,0,0," + label(points) + "\r\n";
  return text + "* End of results\r\n";
}

/// Blanks as dots and line ends as arrows.
inline std::string Visible(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == ' ')
      out += "\u00b7";
    else if (c == '\r')
      out += "\u2190";
    else
      out += c;
  }
  return out;
}

/// Compares two decks line by line; the message shows the first line that differs.
inline void ExpectSameDeck(const std::string& expected, const std::string& actual) {
  std::size_t line = 1;
  std::size_t start = 0;
  const std::size_t shorter = std::min(expected.size(), actual.size());
  for (std::size_t i = 0; i < shorter && expected[i] == actual[i]; ++i)
    if (expected[i] == '\n') {
      ++line;
      start = i + 1;
    }
  if (expected == actual) return;
  const auto rest = [start](const std::string& text) {
    return Visible(text.substr(std::min(start, text.size()), text.find('\n', start) - start));
  };
  ADD_FAILURE() << "the decks differ in line " << line << "\nexpected: " << rest(expected)
                << "\nactual:   " << rest(actual);
}

}  // namespace ormel::test
