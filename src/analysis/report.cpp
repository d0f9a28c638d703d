#include "analysis/report.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "analysis/report_sources.h"
#include "analysis/zones.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "core/publisher.h"
#include "core/quantities.h"
#include "core/status.h"
#include "core/table.h"
#include "core/user_interface.h"
#include "document/capture_zones.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/store_error.h"
#include "text/files.h"
#include "text/html.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr std::size_t kRowsBetweenLooks = 200;
constexpr const char* kStandardName = "the standard report";

struct Cancelled {};
/// What is amiss with the description where it meets the project.
class BadBlock : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

std::string Base64(std::string_view bytes) {
  constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve(bytes.size() * 4 / 3 + 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k)
      group = group << 8U | (k < count ? static_cast<unsigned char>(bytes[i + k]) : 0U);
    for (std::size_t k = 0; k < 4; ++k) text += k <= count ? kDigits[group >> (18U - 6U * k) & 63U] : '=';
  }
  return text;
}

/// The rows of a select, by the names that the statement gives its columns.
Table ReadSelect(Ormel& ormel, const std::string& sql) {
  RowReader rows(ormel.db(), sql);
  std::vector<TableColumn> columns;
  for (int i = 0; i < rows.ColumnCount(); ++i)
    columns.push_back({.name = rows.ColumnName(i), .caption = rows.ColumnName(i)});
  Table table(columns);
  while (rows.Next()) {
    std::vector<Value> values;
    values.reserve(columns.size());
    for (int i = 0; i < rows.ColumnCount(); ++i) values.push_back(rows.Get(i));
    table.AddRow(std::move(values));
  }
  return table;
}

/// The zones with a margin around them; nothing when there are none.
std::optional<MapRect> ZonesWindow(Ormel& ormel) {
  constexpr double kMargin = 0.06;
  std::vector<MapPoint> all;
  for (const CaptureZone& zone : ReadCaptureZones(ormel.db()))
    all.insert(all.end(), zone.ring.begin(), zone.ring.end());
  if (all.empty()) return {};
  Extents e = ShapeOf(all).extents;
  const double margin = kMargin * std::max(e.x_max - e.x_min, e.y_max - e.y_min);
  e = {e.x_min - margin, e.x_max + margin, e.y_min - margin, e.y_max + margin};
  return WindowOf(e);
}

/// A map of zones shows their lines and areas: paths and their marks would hide them.
class WithoutPaths {
 public:
  WithoutPaths(Ormel& ormel, bool without) : ormel_(ormel), before_(ormel.layers) {
    if (!without) return;
    ormel.layers.Switch(Layer::kPathlines, false);
    ormel.layers.Switch(Layer::kCapzones, true);
  }
  ~WithoutPaths() { ormel_.layers = before_; }
  WithoutPaths(const WithoutPaths&) = delete;
  WithoutPaths& operator=(const WithoutPaths&) = delete;

 private:
  Ormel& ormel_;
  LayerSwitches before_;
};

class Writer {
 public:
  Writer(ReportSources& sources, const ReportRequest& request,
         const std::function<bool(double, const std::string&)>& go_on)
      : sources_(sources), ormel_(sources.ormel()), request_(request), go_on_(go_on) {}

  std::string Write(const ReportDescription& report) {
    for (const ReportSection& section : report.sections)
      if (!LeftOut(section)) sections_.push_back(&section);
    html_ = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" +
            EscapeHtml(report.title) + "</title>\n<style>\n" + report.style + "</style>\n</head>\n<body>\n";
    for (const ReportSection* section : sections_) {
      Look(section->heading);
      Section(*section);
      ++done_;
    }
    html_ += "</body>\n</html>\n";
    return std::move(html_);
  }
  std::size_t line() const { return line_; }

 private:
  bool LeftOut(const ReportSection& section) const {
    const auto named_in = [&section](const std::vector<std::string>& names) {
      return std::any_of(names.begin(), names.end(),
                         [&section](const std::string& name) { return EqualNoCase(name, section.id); });
    };
    return named_in(request_.without) || (section.on_request && !named_in(request_.with));
  }

  void Look(const std::string& what, double share = 0.0) {
    const double all = static_cast<double>(std::max<std::size_t>(1, sections_.size()));
    if (!go_on_((static_cast<double>(done_) + share) / all, what)) throw Cancelled{};
  }

  void Section(const ReportSection& section) {
    html_ += "<div class=\"section\" id=\"" + section.id + "\">\n";
    if (!section.heading.empty())
      html_ += "<h2>" + std::to_string(++number_) + "&nbsp; " + EscapeHtml(section.heading) + "</h2>\n";
    if (section.needs_results && !sources_.results()) {
      html_ += "<p class=\"missing\">Left out: there are no valid results, because " +
               EscapeHtml(sources_.reason()) + ".</p>\n";
    } else {
      for (const ReportBlock& block : section.blocks) {
        line_ = block.line;
        std::visit([this](const auto& content) { Put(content); }, block.content);
      }
    }
    html_ += "</div>\n";
  }

  // Values --------------------------------------------------------------------------------------------------

  /// A number with its digits, or the text of what is none.
  static std::string CellText(const Value& value, const ReportField& field) {
    if (value.IsNull()) return {};
    if (const bool* flag = std::get_if<bool>(&value.data())) return *flag ? "yes" : "no";
    if (std::holds_alternative<std::int64_t>(value.data())) return value.AsText();  // counted, not measured
    return value.IsNumber() ? field.format.Text(value.AsDouble()) : EscapeHtml(value.AsText());
  }
  static bool IsCounted(const Value& value) {
    return value.IsNumber() && !std::holds_alternative<bool>(value.data());
  }

  Value ValueOf(const ReportField& field) {
    if (StartsWithNoCase(field.what, "select ")) return ormel_.db().Scalar(field.what);
    if (auto value = sources_.ValueOf(field.what)) return *value;
    throw BadBlock("there is no value \"" + field.what + "\"; there are contents, " +
                   ReportSources::ValueNames());
  }

  std::string InText(const ReportField& field) {
    if (field.what == "contents") return Contents();
    const Value value = ValueOf(field);
    const std::string text = CellText(value, field);
    if (!IsCounted(value)) return text;
    const std::string unit = UnitOf(ormel_, field.quantity);
    return "<span class=\"value\" data-value=\"" + AllDigits(value.AsDouble()) + "\">" + text + "</span>" +
           (unit.empty() ? "" : "&nbsp;" + UnitHtml(unit));
  }

  std::string Contents() const {
    std::string list;
    int number = 0;
    for (const ReportSection* section : sections_) {
      if (section->heading.empty()) continue;
      list += "<p class=\"contents\">" + std::to_string(++number) + "&nbsp; <a href=\"#" + section->id +
              "\">" + EscapeHtml(section->heading) + "</a></p>\n";
    }
    return list;
  }

  // Blocks --------------------------------------------------------------------------------------------------

  void Put(const ReportText& text) {
    for (std::size_t i = 0; i < text.html.size(); ++i) {
      if (text.html[i] != '\x01') {
        html_ += text.html[i];
        continue;
      }
      const std::size_t end = text.html.find('\x02', i);
      html_ += InText(text.fields.at(std::stoul(text.html.substr(i + 1, end - i - 1))));
      i = end;
    }
  }

  void Put(const ReportTable& table) {
    if (!table.computed) return PutRows(table, ReadSelect(ormel_, table.query));
    const std::shared_ptr<Table> rows = sources_.TableOf(table.query);
    if (!rows)
      throw BadBlock("there is no computed table \"" + table.query + "\"; there are " +
                     ReportSources::TableNames());
    PutRows(table, *rows);
  }

  static std::vector<std::size_t> Places(const ReportTable& table, const Table& rows) {
    std::vector<std::size_t> places;
    for (const ReportField& column : table.columns) {
      const auto found = std::find_if(rows.columns().begin(), rows.columns().end(),
                                      [&](const TableColumn& c) { return EqualNoCase(c.name, column.what); });
      if (found == rows.columns().end())
        throw BadBlock("the table has no field \"" + column.what + "\" for a column");
      places.push_back(static_cast<std::size_t>(found - rows.columns().begin()));
    }
    return places;
  }

  static bool Counts(const Table& rows, std::size_t place) {
    for (std::size_t i = 0; i < rows.Rows(); ++i)
      if (!rows.At(i, place).IsNull()) return IsCounted(rows.At(i, place));
    return false;
  }

  void PutRows(const ReportTable& table, const Table& rows) {
    const std::vector<std::size_t> places = Places(table, rows);
    if (rows.Rows() == 0) {
      if (!table.empty.empty()) html_ += "<p class=\"empty\">" + table.empty + "</p>\n";
      return;
    }
    html_ += "<table class=\"data\" cellspacing=\"0\" cellpadding=\"2\" width=\"100%\">\n<thead>\n";
    // A head of its own, so that it stays with its table and comes again on each page.
    if (!table.caption.empty())
      html_ += "<tr><th class=\"caption\" align=\"left\" colspan=\"" + std::to_string(places.size()) +
               "\">Table " + std::to_string(++tables_) + ". " + EscapeHtml(table.caption) + "</th></tr>\n";
    html_ += "<tr>";
    for (std::size_t i = 0; i < places.size(); ++i) PutHead(table.columns[i], Counts(rows, places[i]));
    html_ += "</tr>\n</thead>\n<tbody>\n";
    for (std::size_t row = 0; row < rows.Rows(); ++row) {
      if (row % kRowsBetweenLooks == 0)
        Look(table.caption, static_cast<double>(row) / static_cast<double>(rows.Rows()));
      html_ += "<tr>";
      for (std::size_t i = 0; i < places.size(); ++i) PutCell(rows.At(row, places[i]), table.columns[i]);
      html_ += "</tr>\n";
    }
    html_ += "</tbody>\n</table>\n";
  }

  void PutHead(const ReportField& column, bool right) {
    html_ += right         ? "<th class=\"n\" align=\"right\">"
             : column.wide ? "<th align=\"left\" width=\"62%\">"
                           : "<th align=\"left\">";
    html_ += EscapeHtml(column.heading);
    const std::string unit = UnitOf(ormel_, column.quantity);
    if (!unit.empty()) html_ += "<br>[" + UnitHtml(unit) + "]";
    html_ += "</th>";
  }

  void PutCell(const Value& value, const ReportField& column) {
    if (IsCounted(value)) {
      html_ += "<td class=\"n\" align=\"right\" data-value=\"" + AllDigits(value.AsDouble()) + "\">";
    } else {
      html_ += "<td>";
    }
    html_ += CellText(value, column) + "</td>";
  }

  void Put(const ReportPicture& picture) {
    const bool map = picture.what == "map" || picture.what == "zones";
    if (!map && !sources_.results()) return;
    const std::optional<MapRect> window = picture.what == "zones" ? ZonesWindow(ormel_) : std::nullopt;
    if (picture.what == "zones" && !window) return;
    if (ormel_.ports.publisher == nullptr)
      throw BadBlock("this program cannot draw the picture \"" + picture.what + "\"");
    const PictureShape shape{picture.width, picture.height, 2.0};
    std::string png;
    if (map) {
      const WithoutPaths without_paths(ormel_, window.has_value());
      png = ormel_.ports.publisher->MapPng(shape, window);
    } else {
      const std::optional<Chart> chart = sources_.ChartOf(picture.what);
      if (!chart) return;
      png = ormel_.ports.publisher->ChartPng(*chart, shape);
    }
    if (png.empty()) throw BadBlock("the picture \"" + picture.what + "\" could not be drawn at this size");
    html_ += "<p class=\"picture\"><img alt=\"" + EscapeHtml(picture.caption) + "\" width=\"" +
             std::to_string(picture.width) + "\" height=\"" + std::to_string(picture.height) +
             "\" src=\"data:image/png;base64," + Base64(png) + "\"></p>\n";
    if (!picture.caption.empty())
      html_ += "<p class=\"caption\">Figure " + std::to_string(++figures_) + ". " +
               EscapeHtml(picture.caption) + "</p>\n";
  }

  ReportSources& sources_;
  Ormel& ormel_;
  const ReportRequest& request_;
  const std::function<bool(double, const std::string&)>& go_on_;
  std::vector<const ReportSection*> sections_;
  std::string html_;
  std::size_t done_ = 0, line_ = 0;
  int number_ = 0, tables_ = 0, figures_ = 0;
};

/// A name that no section has is most likely misspelt.
std::string UnknownSection(const ReportDescription& report, const ReportRequest& request) {
  std::vector<std::string> named = request.without;
  named.insert(named.end(), request.with.begin(), request.with.end());
  for (const std::string& name : named) {
    std::string names;
    bool known = false;
    for (const ReportSection& section : report.sections) {
      known = known || EqualNoCase(section.id, name);
      names += (names.empty() ? "" : ", ") + section.id;
    }
    if (!known) return "There is no section \"" + name + "\"; the sections are " + names + ".";
  }
  return {};
}

std::string NameOf(const std::string& path) {
  return path.empty() ? kStandardName : path;
}

std::string ExtensionOf(const std::string& path) {
  const std::string title = FileTitle(path);
  const std::size_t point = title.rfind('.');
  return point == std::string::npos ? std::string() : FoldCase(title.substr(point));
}

ReportOutcome WriteHtml(const std::string& path, const std::string& html) {
  try {
    TextFileWriter file(path);
    file.Write(html);
    file.Commit();
    return {ReportEnd::kWritten, {}};
  } catch (const FileError& e) {
    return {ReportEnd::kFailed, std::string(e.what()) + "\nChoose a folder that you may write to."};
  }
}

ReportOutcome WritePdf(Ormel& ormel, const ReportDescription& report, const std::string& path,
                       const std::string& html) {
  PageStyle page = report.page;
  page.foot = report.title + ", " + FileTitle(ormel.project.DBName);
  bool stopped = false;
  const std::string failure = ormel.ports.publisher->SavePdf(html, page, path, [&](double part) {
    ormel.ui().Progress(0.5 + 0.5 * part, "Laying out pages");
    stopped = stopped || ormel.ui().CancelRequested();
    return !stopped;
  });
  if (stopped) return {ReportEnd::kCancelled, {}};
  return failure.empty() ? ReportOutcome{ReportEnd::kWritten, {}}
                         : ReportOutcome{ReportEnd::kFailed, failure};
}

}  // namespace

std::variant<ReportDescription, FileDamage> ReadDescription(const std::string& path) {
  if (path.empty()) return ParseReport(StandardReport(), NameOf(path));
  if (!FileExists(path)) return FileDamage{FileDamage::Kind::kMissing, path, 0, "there is no such file"};
  try {
    LineReader lines(path);
    std::string text;
    for (std::string line; lines.Next(line);) text += ToUtf8(line) + "\n";
    return ParseReport(text, path);
  } catch (const FileError& e) {
    return FileDamage{FileDamage::Kind::kUnreadable, path, e.line(), e.reason()};
  }
}

ReportHtml MakeReport(Ormel& ormel, const ReportDescription& report, const ReportRequest& request,
                      const std::function<bool(double, const std::string&)>& go_on) {
  ReportSources sources(ormel, request.results, request.reason);
  Writer writer(sources, request, go_on);
  const auto failed = [&](const char* why) {
    const FileDamage damage{FileDamage::Kind::kDamaged, NameOf(request.description), writer.line(), why};
    return ReportHtml{ReportEnd::kFailed, {}, damage.Message()};
  };
  try {
    return {ReportEnd::kWritten, writer.Write(report), {}};
  } catch (const Cancelled&) {
    return {ReportEnd::kCancelled, {}, {}};
  } catch (const BadBlock& e) {
    return failed(e.what());
  } catch (const StoreError& e) {
    return failed(e.what());
  }
}

ReportOutcome WriteReport(Ormel& ormel, const ReportRequest& request) {
  const std::string extension = ExtensionOf(request.path);
  const bool pdf = extension == ".pdf";
  if (!pdf && extension != ".html" && extension != ".htm")
    return {ReportEnd::kFailed, "The report \"" + request.path +
                                    "\" was not written: its extension tells no kind of report.\n" +
                                    "Give the name the extension .pdf or .html."};
  if (pdf && ormel.ports.publisher == nullptr)
    return {ReportEnd::kFailed, "This program writes reports as HTML only."};
  const auto description = ReadDescription(request.description);
  if (const auto* damage = std::get_if<FileDamage>(&description))
    return {ReportEnd::kFailed, damage->Message()};
  const auto& report = std::get<ReportDescription>(description);
  if (std::string unknown = UnknownSection(report, request); !unknown.empty())
    return {ReportEnd::kFailed, unknown};

  const PleaseWait wait(ormel, "Writing the report...");
  const double part = pdf ? 0.5 : 1.0;
  const ReportHtml made = MakeReport(ormel, report, request, [&](double share, const std::string& what) {
    ormel.ui().Progress(part * share, what);
    return !ormel.ui().CancelRequested();
  });
  if (made.end != ReportEnd::kWritten) return {made.end, made.failure};
  return pdf ? WritePdf(ormel, report, request.path, made.html) : WriteHtml(request.path, made.html);
}

void SaveStandardReport(const std::string& path) {
  TextFileWriter file(path);
  file.Write(StandardReport());
  file.Commit();
}

}  // namespace ormel
