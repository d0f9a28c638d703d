#include "solver/result_loader.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/command.h"
#include "core/coordinates.h"
#include "core/ormel.h"
#include "core/run_files.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "solver/deck_labels.h"
#include "solver/result_records.h"
#include "solver/result_table.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/files.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

using Fields = std::vector<std::string>;

/// `TPResults` anew, one row a test point.
void SeedTestPoints(Database& db) {
  db.Execute("DELETE * FROM TPResults;");
  db.Execute("DELETE * FROM FIResults;");
  db.Execute(
      "INSERT INTO TPResults SELECT   TestPoints.Label,   TestPoints.VID,   TestPoints.ObsHead,   0.0 as "
      "ModelHead,   0.0 as Difference,   Vertices.X,   Vertices.Y FROM TestPoints INNER JOIN Vertices ON "
      "TestPoints.VID=Vertices.VID;");
}

/// The number in a deck label such as "TP_000012".  Identities beyond six digits keep them all.
std::int64_t NumberOfLabel(std::string_view label) {
  constexpr std::size_t kPrefix = 3;
  constexpr std::size_t kDigits = 6;
  const bool long_number = label.size() > kPrefix + kDigits &&
                           label.find_first_not_of("0123456789", kPrefix) == std::string_view::npos;
  if (long_number) return static_cast<std::int64_t>(Val(label.substr(kPrefix)));
  const std::size_t first = label.size() > kDigits ? label.size() - kDigits : 0;
  return static_cast<std::int64_t>(Val(label.substr(first)));
}

bool EndsWithLineEnd(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  in.seekg(-1, std::ios::end);
  char last = 0;
  return in.get(last) && (last == '\n' || last == '\r');
}

class Loader {
 public:
  explicit Loader(Ormel& ormel)
      : ormel_(ormel),
        wells_(ormel.db(), "WLResults"),
        linesinks_(ormel.db(), "LSResults"),
        domains_(ormel.db(), "INResults"),
        barriers_(ormel.db(), "NFResults"),
        test_points_(ormel.db(), "TPResults", "VID"),
        fluxes_(ormel.db(), "FIResults", {"Label", "PID", "TotalFlux"}) {}

  LoadReport Run(const std::string& path) {
    LineReader lines(path);
    std::string line;
    report_.complete = true;
    while (report_.complete && lines.Next(line)) {
      ++report_.lines;
      if (!line.empty()) report_.complete = Take(line);
    }
    if (!report_.complete) return report_;
    report_.unanswered = Unanswered();
    report_.cut = report_.lines == 0 || !EndsWithLineEnd(path) || (has_head_ && !has_end_);
    return report_;
  }

 private:
  /// False when the user stops the load.
  bool Take(const std::string& line) {
    broken_ = false;
    const bool goes_on = TakeLine(line);
    if (broken_) ++report_.broken;
    return goes_on;
  }

  bool TakeLine(const std::string& line) {
    switch (line.front()) {
      case '*':
        TakeComment(line);
        return true;
      case '!':
        EnterSection(std::string_view(line).substr(1));
        return true;
      case '@':
        return TakeTestPoint(line);
      case ' ':
        return Trim(line).empty() || section_ == nullptr || TakeElement(line);
      default:
        return true;
    }
  }

  /// The solver that comes with the program says in comments where its file begins and ends, and which origin
  /// its coordinates have.
  void TakeComment(const std::string& line) {
    constexpr std::string_view kOrigin = "* Origin ";
    if (line.starts_with("* Results of ")) has_head_ = true;
    if (line.starts_with("* End of results")) has_end_ = true;
    if (!line.starts_with(kOrigin)) return;
    const Fields fields = ParseString(std::string_view(line).substr(kOrigin.size()), ' ');
    if (fields.size() < 2) return;
    const Extents& solved = ormel_.window.solved;
    const auto differ = [](double a, double b) {
      return std::abs(a - b) > 1e-9 * std::max(1.0, std::abs(b));
    };
    report_.other_origin |= differ(Val(fields[0]), solved.x_min) || differ(Val(fields[1]), solved.y_min);
  }

  void EnterSection(std::string_view header) {
    for (const SectionPhrase& phrase : kSectionPhrases) {
      if (header.find(phrase.text) == std::string_view::npos) continue;
      section_ = phrase.section;
      return;
    }
  }

  bool TakeElement(const std::string& line) {
    const Fields fields = ParseString(line, ',');
    if (fields.size() < section_->least_fields) return AskAboutBad(section_->name, line);
    switch (section_->kind) {
      case SectionKind::kIgnored:
        return true;
      case SectionKind::kRecord:
        Store(fields, *section_, TableOf(*section_), {});
        return true;
      case SectionKind::kHeadAndVertices:
        if (fields.size() == section_->label_field)
          Store(fields, *section_, TableOf(*section_), held_);
        else
          held_ = fields;  // the head of a domain or wall: its values belong to the vertices that follow
        return true;
      case SectionKind::kFlux:
        TakeFlux(fields);
        return true;
    }
    return true;
  }

  double ValueOf(const Fields& fields, const ResultColumn& column) {
    const auto number = [&](std::size_t field) {
      if (field > fields.size()) return 0.0;
      const double value = Val(fields[field - 1]);
      if (!std::isfinite(value) || !IsNumeric(fields[field - 1])) broken_ = true;
      return std::isfinite(value) ? value : 0.0;
    };
    const double value = number(column.field);
    switch (column.take) {
      case Take::kPlain:
        return value;
      case Take::kX:
        return MToW_X(ormel_, value);
      case Take::kY:
        return MToW_Y(ormel_, value);
      case Take::kAddedToFieldBefore:
        return number(column.field - 1) + value;
    }
    return value;
  }

  /// The last vertex of a barrier that keeps one side begins a side of the ring and has no row.
  bool OfRowlessSide(std::string_view label) {
    constexpr std::string_view kBarrier = "HB_";
    const std::size_t end = label.rfind('_');
    if (!label.starts_with(kBarrier) || end == std::string_view::npos || end < kBarrier.size()) return false;
    const double pid = Val(label.substr(kBarrier.size(), end - kBarrier.size()));
    return ormel_.db()
               .Scalar("select count(*) from NoFlowStrings where PID=? and Closed in (2,3)",
                       {static_cast<std::int64_t>(pid)})
               .AsLong() > 0;
  }

  void Store(const Fields& fields, const Section& section, ResultTable& table, const Fields& held) {
    const std::string_view label = Trim(fields[section.label_field - 1]);
    if (!table.Find(label)) {
      if (OfRowlessSide(label)) return;
      if (++report_.unknown == 1) report_.unknown_label = label;
      return;
    }
    table.Edit();
    for (const ResultColumn& column : section.held) table.Set(column.name, ValueOf(held, column));
    for (const ResultColumn& column : section.columns) table.Set(column.name, ValueOf(fields, column));
    table.Update();
    ++report_.records;
  }

  bool TakeTestPoint(const std::string& line) {
    constexpr std::size_t kLeast = 15;
    constexpr std::size_t kHead = 9;
    const Fields fields = ParseString(std::string_view(line).substr(1), ',');
    if (fields.size() < kLeast) return AskAboutBad("DATA record", line);
    const std::int64_t vid = NumberOfLabel(Trim(fields[kLeast - 1]));
    if (!test_points_.Find(std::to_string(vid))) {
      if (++report_.unknown == 1) report_.unknown_label = Trim(fields[kLeast - 1]);
      return true;
    }
    const double head = ValueOf(fields, {"ModelHead", kHead, Take::kPlain});
    test_points_.Edit();
    test_points_.Set("Difference", test_points_.Number("ObsHead") - head);
    test_points_.Set("ModelHead", head);
    test_points_.Update();
    ++report_.records;
    return true;
  }

  void TakeFlux(const Fields& fields) {
    const std::string label(Trim(fields[0]));
    answered_fluxes_.insert(NumberOfLabel(label));
    fluxes_.Row(label, NumberOfLabel(label), ValueOf(fields, {"TotalFlux", 2, Take::kPlain}));
    ++report_.records;
  }

  /// True to go on.
  bool AskAboutBad(std::string_view kind, const std::string& line) {
    ++report_.bad;
    return AskYesNo(ormel_, "Import error",
                    Lines({"Bad " + std::string(kind) + ": Record " + std::to_string(report_.lines) +
                               " of Vadox results file:",
                           "", line, "", "Continue reading the results file?"}),
                    Icon::kStop);
  }

  ResultTable& TableOf(const Section& section) {
    switch (section.table) {
      case ResultSet::kWells:
        return wells_;
      case ResultSet::kLinesinks:
        return linesinks_;
      case ResultSet::kDomains:
        return domains_;
      case ResultSet::kBarriers:
        return barriers_;
    }
    return wells_;
  }

  std::vector<std::string> Unanswered() {
    // A line-sink of given discharge has no head to report; its row keeps what it was made with.
    std::vector<std::string> labels;
    for (const ResultTable* table : {&wells_, &linesinks_, &domains_, &barriers_, &test_points_})
      table->AddUnanswered(labels);
    RowReader lines(ormel_.db(),
                    "select PID from FluxInspect where (select count(*) from Vertices where "
                    "Vertices.PID=FluxInspect.PID)>1 order by PID");
    while (lines.Next())
      if (!answered_fluxes_.contains(lines.Long(0))) labels.push_back(VertexLabel("FL_", lines.Long(0)));
    return labels;
  }

  Ormel& ormel_;
  ResultTable wells_, linesinks_, domains_, barriers_, test_points_;
  BulkInsert fluxes_;
  const Section* section_ = nullptr;
  Fields held_;
  std::set<std::int64_t> answered_fluxes_;
  bool has_head_ = false, has_end_ = false;
  bool broken_ = false;  ///< the present record has a field that is no number
  LoadReport report_;
};

void TellGaps(Ormel& ormel, const LoadReport& report) {
  std::string text;
  if (!report.unanswered.empty())
    text = std::to_string(report.unanswered.size()) + " elements have no results.  ";
  if (report.unknown > 0)
    text += std::to_string(report.unknown) + " results name no element of the project and were left out.";
  if (!text.empty()) Feedback(ormel, Trim(text));
}

std::string FirstOf(const std::vector<std::string>& labels) {
  return labels.size() == 1 ? labels.front()
                            : labels.front() + " and " + std::to_string(labels.size() - 1) + " more";
}

}  // namespace

std::string FaultOf(const LoadReport& report, const std::string& error_log) {
  if (!report.complete) return "it was not read to its end";
  if (report.cut) return "it is cut off: was the disk full?";
  if (report.other_origin) return "its coordinates have another origin than this run";
  if (report.broken > 0) return std::to_string(report.broken) + " of its records hold what is no number";
  if (report.unknown > 0)
    return std::to_string(report.unknown) + " of its records name no element of this project, the first \"" +
           report.unknown_label + "\"";
  constexpr std::size_t kMostOfLog = 1U << 24U;
  std::string log;
  if (!report.unanswered.empty() && FileExists(error_log)) {
    LineReader lines(error_log);
    for (std::string line; log.size() < kMostOfLog && lines.Next(line);) log += line + "\n";
  }
  std::vector<std::string> missing;
  for (const std::string& label : report.unanswered) {
    // A ring or string is named by its own label, "IN_000012".
    constexpr std::size_t kElement = 9;
    if (log.find(label.substr(0, std::max(kElement, label.find('_', 3)))) == std::string::npos)
      missing.push_back(label);
  }
  if (!missing.empty()) return "it holds no record of " + FirstOf(missing);
  return {};
}

LoadReport ModelLoadVadoxResults(Ormel& ormel) {
  const Named named(ormel, "ModelLoadVadoxResults");
  Transaction transaction(ormel.db());
  SeedTestPoints(ormel.db());
  const LoadReport report = Loader(ormel).Run(StemFile(ormel, ".XTR"));
  transaction.Commit();
  TellGaps(ormel, report);
  return report;
}

}  // namespace ormel
