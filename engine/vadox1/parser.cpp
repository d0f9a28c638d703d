// Lines, levels and keywords.

#include "vadox1/parser.h"

#include <fmt/format.h>

#include <utility>

#include "files/numbers.h"
#include "files/text_lines.h"

namespace vadox1 {
namespace {

struct LevelName {
  Level level;
  std::string_view name;
};
constexpr LevelName kLevelNames[] = {
    {Level::kLogs, "log settings"},   {Level::kMain, "main level"},       {Level::kAquifer, "aquifer"},
    {Level::kLayout, "layout"},       {Level::kDomains, "inhomogeneity"}, {Level::kWells, "well"},
    {Level::kPartialWells, "ppwell"}, {Level::kTheisWells, "twell"},      {Level::kDisks, "sinkdisk"},
    {Level::kLineSinks, "linesink"},  {Level::kExtract, "extract"},       {Level::kFlux, "flux"},
    {Level::kGrid, "grid"},           {Level::kTrace, "trace"},           {Level::kPoints, "points"},
    {Level::kZones, "zones"},
};

std::string_view NameOf(Level level) {
  for (const LevelName& entry : kLevelNames) {
    if (entry.level == level) return entry.name;
  }
  return "?";
}

bool IsAnswer(std::string_view item) {
  return files::SameWord(item, "y") || files::SameWord(item, "yes");
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

const std::vector<Parser::Rule>& Parser::Rules() {
  static const std::vector<Rule> rules = {
      {Level::kLogs, "error", &Parser::ErrorLog},
      {Level::kLogs, "message", &Parser::MessageLog},
      {Level::kLogs, "echo", &Parser::EchoLog},
      {Level::kLogs, "picture", &Parser::Ignore},
      {Level::kLogs, "input", &Parser::InputFrom},
      {Level::kMain, "modelorigin", &Parser::ModelOrigin},
      {Level::kMain, "title", &Parser::Title},
      {Level::kMain, "aquifer", &Parser::AquiferBlock},
      {Level::kMain, "layout", &Parser::LayoutBlock},
      {Level::kMain, "inhomogeneity", &Parser::DomainBlock},
      {Level::kMain, "well", &Parser::WellBlock},
      {Level::kMain, "ppwell", &Parser::PartialWellBlock},
      {Level::kMain, "twell", &Parser::TheisBlock},
      {Level::kMain, "sinkdisk", &Parser::DiskBlock},
      {Level::kMain, "linesink", &Parser::LineSinkBlock},
      {Level::kMain, "switch", &Parser::Switch},
      {Level::kMain, "picture", &Parser::Ignore},
      {Level::kMain, "time", &Parser::Time},
      {Level::kMain, "solve", &Parser::Solve},
      {Level::kMain, "save", &Parser::Save},
      {Level::kMain, "load", &Parser::Load},
      {Level::kMain, "extract", &Parser::ExtractBlock},
      {Level::kMain, "grid", &Parser::GridBlock},
      {Level::kMain, "trace", &Parser::TraceBlock},
      {Level::kMain, "zones", &Parser::ZonesBlock},
      {Level::kAquifer, "base", &Parser::Base},
      {Level::kAquifer, "permeability", &Parser::Permeability},
      {Level::kAquifer, "thickness", &Parser::Thickness},
      {Level::kAquifer, "porosity", &Parser::Porosity},
      {Level::kAquifer, "uniflow", &Parser::UniformFlow},
      {Level::kAquifer, "reference", &Parser::Reference},
      {Level::kLayout, "window", &Parser::LayoutWindow},
      {Level::kDomains, "transmissivity", &Parser::Transmissivity},
      {Level::kDomains, "slurry", &Parser::Slurry},
      {Level::kWells, "discharge", &Parser::ByDischarge},
      {Level::kWells, "head", &Parser::ByHead},
      {Level::kPartialWells, "discharge", &Parser::ByDischarge},
      {Level::kPartialWells, "head", &Parser::ByHead},
      {Level::kTheisWells, "discharge", &Parser::ByDischarge},
      {Level::kDisks, "discharge", &Parser::ByDischarge},
      {Level::kDisks, "head", &Parser::ByHead},
      {Level::kLineSinks, "discharge", &Parser::DischargeString},
      {Level::kLineSinks, "head", &Parser::HeadString},
      {Level::kLineSinks, "drain", &Parser::DrainString},
      {Level::kLineSinks, "stream", &Parser::StreamString},
      {Level::kLineSinks, "end", &Parser::StreamEnds},
      {Level::kLineSinks, "overlandflow", &Parser::Overland},
      {Level::kLineSinks, "resistance", &Parser::Resistance},
      {Level::kLineSinks, "width", &Parser::Width},
      {Level::kLineSinks, "depth", &Parser::Depth},
      {Level::kExtract, "file", &Parser::ExtractFile},
      {Level::kExtract, "well", &Parser::WellSection},
      {Level::kExtract, "linesink", &Parser::LineSinkSection},
      {Level::kExtract, "inhomogeneity", &Parser::InhomogeneitySection},
      {Level::kExtract, "flux", &Parser::FluxLineHead},
      {Level::kFlux, "flux", &Parser::FluxLineHead},
      {Level::kGrid, "window", &Parser::GridWindow},
      {Level::kGrid, "dotmap", &Parser::Ignore},
      {Level::kGrid, "horizontalpoints", &Parser::HorizontalPoints},
      {Level::kGrid, "go", &Parser::Go},
      {Level::kGrid, "surfer", &Parser::SurferFile},
      {Level::kTrace, "picture", &Parser::Ignore},
      {Level::kTrace, "file", &Parser::TraceFile},
      {Level::kTrace, "time", &Parser::TraceTime},
      {Level::kTrace, "step", &Parser::TraceStep},
      {Level::kTrace, "points", &Parser::TracePoints},
      {Level::kTrace, "well", &Parser::TraceWell},
      {Level::kTrace, "boundary", &Parser::Boundary},
      {Level::kTrace, "go", &Parser::RunTrace},
      {Level::kZones, "file", &Parser::ZonesFile},
      {Level::kZones, "times", &Parser::ZoneTimes},
      {Level::kZones, "tolerance", &Parser::ZoneTolerance},
      {Level::kZones, "well", &Parser::AddZoneWell},
      {Level::kZones, "boundary", &Parser::ZoneBoundary},
      {Level::kZones, "go", &Parser::RunZones},
  };
  return rules;
}

Deck Parser::Parse(std::string_view text) {
  files::LineWalker lines(text);
  try {
    while (!stopped_ && lines.Next()) {
      line_ = lines.number();
      text_ = lines.line();
      files::SplitItems(text_, items_);
      if (items_.empty() || items_[0].front() == '*') continue;
      if (items_.size() == 1 && IsAnswer(items_[0])) continue;
      ReadLine();
    }
    if (!stopped_) Finish();
  } catch (const UnusableLine& unusable) {
    deck_.fault = DeckFault{line_, files::Printable(text_), unusable.what};
  }
  return std::move(deck_);
}

void Parser::ReadLine() {
  if (RunRule(level_)) return;
  if (SameItem(0, "quit")) return Quit();
  if (SameItem(0, "stop")) return Stop();
  if (LineIsNumbers()) return ReadData();
  throw UnusableLine{fmt::format("\"{}\" is no word that can stand here ({})",
                                 files::Printable(items_[0], 40), NameOf(level_))};
}

bool Parser::RunRule(Level level) {
  for (const Rule& rule : Rules()) {
    if (rule.level != level || !files::SameWord(rule.keyword, items_[0])) continue;
    (this->*rule.handler)();
    return true;
  }
  return false;
}

void Parser::ReadData() {
  switch (level_) {
    case Level::kDomains:
      return DomainVertex();
    case Level::kWells:
      return AddWell();
    case Level::kPartialWells:
      return AddPartialWell();
    case Level::kTheisWells:
      return AddTheis();
    case Level::kDisks:
      return AddDisk();
    case Level::kLineSinks:
      return AddSegment();
    case Level::kExtract:
      return AddTestPoint();
    case Level::kFlux:
      return AddFluxVertex();
    case Level::kTrace:
    case Level::kPoints:
      return AddPoint();
    case Level::kLogs:
    case Level::kMain:
    case Level::kAquifer:
    case Level::kLayout:
    case Level::kGrid:
    case Level::kZones:
      break;
  }
  throw UnusableLine{fmt::format("Numbers cannot stand here ({})", NameOf(level_))};
}

/// The text ended without "stop".
void Parser::Finish() {
  if (level_ != Level::kMain && level_ != Level::kLogs) {
    throw UnusableLine{fmt::format("The deck ends inside its block \"{}\"; it was cut short. Write it again",
                                   NameOf(level_))};
  }
  if (input_ended_) return;
  bool commands = false;
  for (const Command& command : deck_.commands)
    commands |= !std::holds_alternative<LogCommand>(command.action);
  if (!commands && !deck_.describes_model) {
    throw UnusableLine{"The deck holds neither a model nor a command; it was cut short. Write it again"};
  }
  deck_.findings.push_back(
      {aem::Severity::kWarning, "", line_,
       "The deck ends without a \"stop\" line. If it was cut short, commands are missing; "
       "write it again."});
}

double Parser::Number(std::size_t item) const {
  if (item >= items_.size()) {
    throw UnusableLine{fmt::format("The line ends where its item {} should be a number", item + 1)};
  }
  const std::optional<double> value = files::ReadNumber(items_[item]);
  if (!value) {
    throw UnusableLine{
        fmt::format("\"{}\" (item {}) is not a number", files::Printable(items_[item], 40), item + 1)};
  }
  return *value;
}

int Parser::Whole(std::size_t item) const {
  Number(item);
  const std::optional<int> value = files::ReadWholeNumber(items_[item]);
  if (!value) {
    throw UnusableLine{
        fmt::format("\"{}\" (item {}) is not a whole number", files::Printable(items_[item], 40), item + 1)};
  }
  return *value;
}

/// The rest of the line from `item` on.  More numbers there mean that the line is out of step with its
/// format.
aem::Origin Parser::Label(std::size_t item) const {
  aem::Origin origin;
  origin.line = line_;
  if (item >= items_.size()) return origin;
  if (item + 1 < items_.size() && files::ReadNumber(items_[item])) {
    throw UnusableLine{fmt::format("The line has more items than the {} that it should have", item + 1)};
  }
  const auto begin = static_cast<std::size_t>(items_[item].data() - text_.data());
  origin.label = files::Printable(files::Trim(text_.substr(begin)));
  if (origin.label.find(',') != std::string::npos) {
    throw UnusableLine{"A label must not hold a comma, which divides the fields of the extraction file"};
  }
  return origin;
}

std::string Parser::Rest() const {
  const auto begin = static_cast<std::size_t>(items_[0].data() - text_.data()) + items_[0].size();
  return std::string(files::Trim(text_.substr(begin)));
}

std::string Parser::FileName(std::string_view extension) const {
  const std::string name = Rest();
  if (name.empty()) throw UnusableLine{"The name of a file is missing"};
  if (name.find('\0') != std::string::npos) throw UnusableLine{"The name of the file holds a zero byte"};
  return extension.empty() ? name : files::WithExtension(name, extension);
}

std::optional<double> Parser::ElevationItem(std::size_t item) const {
  return files::ReadNumber(items_[item]);
}

bool Parser::LineIsNumbers() const {
  const char first = items_[0].front();
  return IsDigit(first) || first == '.' || first == '-' || first == '+';
}

bool Parser::SameItem(std::size_t item, std::string_view word) const {
  return item < items_.size() && files::SameWord(items_[item], word);
}

void Parser::Enter(Level level) {
  level_ = level;
}

void Parser::EnterElements(Level level) {
  if (solution_begun_) throw UnusableLine{"Elements must stand before the first \"solve\" or \"load\""};
  deck_.describes_model = true;
  given_ = Given::kNothing;
  ring_ = Ring::kNone;
  stray_label_.clear();
  string_open_ = false;
  level_ = level;
}

void Parser::Leave() {
  level_ = Level::kMain;
}

void Parser::Quit() {
  switch (level_) {
    case Level::kMain:
      throw UnusableLine{"\"quit\" closes nothing here"};
    case Level::kLineSinks:
      CloseString();
      return Leave();
    case Level::kFlux:
      return CloseFlux();
    case Level::kExtract:
      Add(std::move(extract_));
      return Leave();
    case Level::kGrid:
      return Leave();
    case Level::kPoints:
      level_ = Level::kTrace;
      return;
    case Level::kTrace:
      // A trace of single particles may come without "go".
      if (trace_pending_) RunTrace();
      return Leave();
    case Level::kLogs:
    case Level::kAquifer:
    case Level::kLayout:
    case Level::kDomains:
    case Level::kWells:
    case Level::kPartialWells:
    case Level::kTheisWells:
    case Level::kDisks:
    case Level::kZones:
      return Leave();
  }
}

void Parser::Stop() {
  // Open command blocks are closed as if by "quit".  An open block of elements means that lines are missing.
  for (int closed = 0; closed < 3 && level_ != Level::kMain; ++closed) {
    const bool command = level_ == Level::kFlux || level_ == Level::kExtract || level_ == Level::kGrid ||
                         level_ == Level::kPoints || level_ == Level::kTrace || level_ == Level::kZones ||
                         level_ == Level::kLogs;
    if (!command) throw UnusableLine{fmt::format("\"stop\" stands inside the block \"{}\"", NameOf(level_))};
    Quit();
  }
  stopped_ = true;
}

void Parser::NameLog(Log log) {
  std::string name = FileName("");
  if (files::SameWord(name, "nul") || files::SameWord(name, "off")) name.clear();
  if (files::SameWord(name, "con")) name = "con";
  Add(LogCommand{log, std::move(name)});
}

std::string_view OwnerOf(std::string_view label) {
  const std::size_t last = label.rfind('_');
  if (last == std::string_view::npos || last == 0 || last + 1 == label.size()) return {};
  if (label.find('_') == last) return {};
  for (const char c : label.substr(last + 1)) {
    if (!IsDigit(c)) return {};
  }
  return label.substr(0, last);
}

Deck ParseDeck(std::string_view text) {
  return Parser().Parse(text);
}

}  // namespace vadox1
