// The reader behind ParseDeck: which line means what depends on the level (block) it stands on.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vadox1/deck.h"

namespace vadox1 {

enum class Level {
  kLogs,
  kMain,
  kAquifer,
  kLayout,
  kDomains,
  kWells,
  kPartialWells,
  kTheisWells,
  kDisks,
  kLineSinks,
  kExtract,
  kFlux,
  kGrid,
  kTrace,
  kPoints,
  kZones,
};

/// Thrown inside the parser; becomes the deck's fault.
struct UnusableLine {
  std::string what;
};

class Parser {
 public:
  Deck Parse(std::string_view text);

 private:
  /// Reads a line that begins with a keyword of its level.
  using Handler = void (Parser::*)();
  struct Rule {
    Level level;
    std::string_view keyword;
    Handler handler;
  };
  static const std::vector<Rule>& Rules();

  void ReadLine();
  bool RunRule(Level level);
  void ReadData();
  void Finish();

  // items of the present line
  double Number(std::size_t item) const;
  int Whole(std::size_t item) const;
  aem::Complex Point(std::size_t item) const { return {Number(item), Number(item + 1)}; }
  aem::Origin Label(std::size_t item) const;
  std::string Rest() const;
  std::string FileName(std::string_view extension) const;
  std::optional<double> ElevationItem(std::size_t item) const;
  bool LineIsNumbers() const;
  void Enter(Level level);
  void EnterElements(Level level);
  void Leave();
  template <class T>
  void Add(T action) {
    Command& command = deck_.commands.emplace_back();
    command.line = line_;
    command.action.emplace<T>(std::move(action));
  }

  // log-setting level
  void NameLog(Log log);
  void ErrorLog() { NameLog(Log::kError); }
  void MessageLog() { NameLog(Log::kMessage); }
  void EchoLog() { NameLog(Log::kEcho); }
  void InputFrom() { input_ended_ = SameItem(1, "con"); }
  void Ignore() {}
  bool SameItem(std::size_t item, std::string_view word) const;

  // main level
  void ModelOrigin();
  void Title();
  void AquiferBlock() { EnterElements(Level::kAquifer); }
  void LayoutBlock() { Enter(Level::kLayout); }
  void DomainBlock() { EnterElements(Level::kDomains); }
  void WellBlock() { EnterElements(Level::kWells); }
  void PartialWellBlock() { EnterElements(Level::kPartialWells); }
  void TheisBlock() { EnterElements(Level::kTheisWells); }
  void DiskBlock() { EnterElements(Level::kDisks); }
  void LineSinkBlock() { EnterElements(Level::kLineSinks); }
  void Switch() { level_ = Level::kLogs; }
  void Time();
  void Solve();
  void Save();
  void Load();
  void ExtractBlock();
  void GridBlock();
  void TraceBlock();
  void ZonesBlock();
  void Stop();

  // aquifer and layout
  void Base();
  void Permeability();
  void Thickness();
  void Porosity();
  void UniformFlow();
  void Reference();
  void LayoutWindow();
  aem::Window ReadWindow() const;

  // elements
  void ByDischarge();
  void ByHead();
  void Transmissivity();
  void Slurry();
  void DomainVertex();
  void StrayVertex();
  void AddWell();
  void AddPartialWell();
  void AddTheis();
  void AddDisk();
  void DischargeString();
  void HeadString() { NewString(aem::LineSinkKind::kHead); }
  void DrainString() { NewString(aem::LineSinkKind::kDrain); }
  void StreamString();
  void NewString(aem::LineSinkKind kind);
  aem::LineSinkString& OpenString();
  void StreamEnds() { OpenString().ends = true; }
  void Overland() { OpenString().overland_flow = Number(1); }
  void Resistance();
  void Width();
  void Depth() { OpenString().depth = Number(1); }
  void AddSegment();
  void AddDischargeSegment(aem::LineSinkSegment segment);
  void StreamNode();
  void CloseString();

  // extract, grid, trace
  void ExtractFile();
  void WellSection();
  void LineSinkSection();
  void InhomogeneitySection();
  void FluxLineHead();
  void AddTestPoint();
  void AddFluxVertex();
  void CloseFlux();
  void GridWindow();
  void HorizontalPoints();
  void Go();
  void SurferFile();
  void TraceFile();
  void TraceTime();
  void TraceStep();
  void TracePoints() { Enter(Level::kPoints); }
  void TraceWell();
  void Boundary();
  BoundaryLine ReadBoundary() const;
  void AddPoint();
  void RunTrace();
  void ZonesFile() { zones_.file = FileName(".ZNS"); }
  void ZoneTimes();
  void ZoneTolerance();
  void AddZoneWell() { zones_.wells.push_back({Point(1), line_}); }
  void ZoneBoundary() { zones_.boundaries.push_back(ReadBoundary()); }
  void RunZones();
  void Quit();

  Deck deck_;
  Level level_ = Level::kLogs;
  int line_ = 0;
  std::string_view text_;
  std::vector<std::string_view> items_;
  bool stopped_ = false;
  bool input_ended_ = false;     ///< the deck hands over to the console
  bool solution_begun_ = false;  ///< a solve or load was read: the model is complete

  enum class Given { kNothing, kDischarge, kHead } given_ = Given::kNothing;
  enum class Ring { kNone, kDomain, kWall } ring_ = Ring::kNone;
  std::string stray_label_;  ///< owner of the vertices that were left out last
  bool string_open_ = false;
  bool node_pending_ = false;   ///< a stream's node that waits for the next one
  bool stream_closed_ = false;  ///< the stream's last vertex was read
  aem::LineSinkSegment node_;

  ExtractCommand extract_;
  GridCommand grid_;
  bool grid_ready_ = false;
  TraceCommand trace_;
  bool trace_pending_ = false;  ///< particles wait for "go"
  bool trace_timed_ = false;    ///< "time" has stood in the block
  ZonesCommand zones_;
};

/// The owner of an element's label: "HB_000012" of "HB_000012_0003"; empty for other forms.
std::string_view OwnerOf(std::string_view label);

}  // namespace vadox1
