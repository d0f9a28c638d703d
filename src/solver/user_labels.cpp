#include "solver/user_labels.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <vector>

#include "core/map_view.h"
#include "core/ormel.h"
#include "core/user_interface.h"
#include "model/selection.h"
#include "model/vertices.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/files.h"
#include "text/numbers.h"

namespace ormel {
namespace {

struct Prefix {
  std::string_view prefix;
  const char* table;
  bool by_vertex;
};
constexpr std::array kPrefixes{Prefix{"WL_", "Wells", true},
                               Prefix{"LS_", "LinesinkStrings", false},
                               Prefix{"IN_", "Inhomogeneities", false},
                               Prefix{"HB_", "NoFlowStrings", false},
                               Prefix{"TP_", "TestPoints", true},
                               Prefix{"FL_", "FluxInspect", false}};
constexpr std::size_t kIdDigits = 6, kSeqDigits = 4;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

std::size_t DigitsAt(std::string_view text, std::size_t at) {
  std::size_t count = 0;
  while (at + count < text.size() && IsDigit(text[at + count])) ++count;
  return count;
}

/// Length of the deck's label that begins at `at`; 0 when none does.
std::size_t LabelLength(std::string_view text, std::size_t at, const Prefix& prefix) {
  if (text.substr(at, prefix.prefix.size()) != prefix.prefix) return 0;
  if (at > 0 && (IsDigit(text[at - 1]) || std::isalpha(static_cast<unsigned char>(text[at - 1])) != 0))
    return 0;
  std::size_t length = prefix.prefix.size();
  const std::size_t digits = DigitsAt(text, at + length);
  if (digits < kIdDigits) return 0;
  length += digits;
  if (at + length < text.size() && text[at + length] == '_') {
    const std::size_t more = DigitsAt(text, at + length + 1);
    if (more >= kSeqDigits) length += 1 + more;
  }
  return length;
}

const Prefix* PrefixAt(std::string_view text, std::size_t at, std::size_t* length) {
  for (const Prefix& prefix : kPrefixes)
    if ((*length = LabelLength(text, at, prefix)) > 0) return &prefix;
  return nullptr;
}

std::optional<NamedElement> Find(Ormel& ormel, const Prefix& prefix, std::string_view label) {
  const auto id = static_cast<std::int64_t>(Val(label.substr(prefix.prefix.size(), label.find('_', 3) - 3)));
  const std::string key = prefix.by_vertex ? "VID" : "PID";
  const Value name =
      ormel.db().Scalar("select Label from " + std::string(prefix.table) + " where " + key + "=?", {id});
  if (name.IsNull()) return std::nullopt;
  NamedElement element{.label = name.AsText()};
  if (prefix.by_vertex) {
    element.vid = id;
  } else {
    element.pid = id;
    const std::vector<VertexRow> vertices = VerticesOf(ormel, id);
    if (!vertices.empty()) element.vid = vertices.front().vid;
  }
  return element;
}

}  // namespace

std::string WithUserLabels(Ormel& ormel, std::string_view text, std::optional<NamedElement>* first) {
  std::string out;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t length = 0;
    const Prefix* prefix = PrefixAt(text, at, &length);
    if (prefix == nullptr) {
      out += text[at++];
      continue;
    }
    const std::string_view label = text.substr(at, length);
    const std::optional<NamedElement> element = Find(ormel, *prefix, label);
    const bool named = at > 0 && text[at - 1] == '(' && text.substr(at + length, 1) == ")";
    if (element && first != nullptr && !*first) *first = element;
    if (element && !named && !element->label.empty())
      out.append(element->label).append(" (").append(label).append(")");
    else
      out += label;
    at += length;
  }
  return out;
}

std::string UserLabel(Ormel& ormel, const std::string& deck_label) {
  std::size_t length = 0;
  const Prefix* prefix = PrefixAt(deck_label, 0, &length);
  if (prefix == nullptr) return deck_label;
  const std::optional<NamedElement> element =
      Find(ormel, *prefix, std::string_view(deck_label).substr(0, length));
  return element && !element->label.empty() ? element->label : deck_label;
}

void NameElementsInLog(Ormel& ormel, const std::string& path) {
  if (!FileExists(path)) return;
  try {
    std::vector<std::string> lines;
    bool named = false;
    {
      LineReader reader(path);
      std::string line;
      while (reader.Next(line)) {
        lines.push_back(WithUserLabels(ormel, line));
        named = named || lines.back() != line;
      }
    }
    if (!named) return;
    TextFileWriter file(path);
    for (const std::string& line : lines) file.Line(line);
    file.Commit();
  } catch (const FileError&) {  // NOLINT(bugprone-empty-catch): the solver's own words do as well
  }
}

void OfferToShow(Ormel& ormel, const std::optional<NamedElement>& element) {
  if (!element || element->vid < 0) return;
  const Answer answer = ormel.ui().Ask(Box{.title = "Zoom to Element",
                                           .text = "Show \"" + element->label + "\" on the map?",
                                           .buttons = Buttons::kYesNo,
                                           .icon = Icon::kQuestion});
  if (answer == Answer::kYes) {
    RowReader rows(ormel.db(),
                   "select min(X),max(X),min(Y),max(Y) from Vertices where VID=? or (PID=? and PID>0)",
                   {element->vid, element->pid});
    if (rows.Next()) {
      const double width = rows.Double(1) - rows.Double(0), height = rows.Double(3) - rows.Double(2);
      // A point shows with some of its surroundings, a line with a rim.
      double rim = 0.25 * std::max(width, height);
      if (!(rim > 0.0)) rim = 0.05 * ormel.window.SolveWindow.Width();
      ormel.view().ZoomActions(Zoom::kApplyWindow, {rows.Double(0) - rim, rows.Double(1) + rim,
                                                    rows.Double(3) + rim, rows.Double(2) - rim});
    }
  }
  SelectVertex(ormel, element->vid);
}

}  // namespace ormel
