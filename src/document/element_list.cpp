#include "document/element_list.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <utility>

#include "core/dry_head.h"
#include "core/ormel.h"
#include "core/quantities.h"
#include "document/kinds.h"
#include "document/record.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

/// More rows than these are cheaper read with their whole kind.
constexpr std::size_t kMostOneByOne = 200;

/// "12.5 m"
std::string With(const Ormel& ormel, double value, Quantity quantity) {
  return NumberText(value) + " " + UnitOf(ormel, quantity);
}

/// A computed number: four digits and more only before the point.
std::string Computed(double value) {
  const double size = std::abs(value);
  std::array<char, 32> text{};
  const int digits = size >= 1000.0 ? 0 : size >= 100.0 ? 1 : size >= 0.01 || size == 0.0 ? 2 : 5;
  std::snprintf(text.data(), text.size(), "%.*f", digits, value);
  return text.data();
}

std::string Join(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts)
    if (!part.empty()) text += (text.empty() ? "" : ", ") + part;
  return text;
}

// Each gets a row of its statement: key, label, then what the kind has.

void Well(const Ormel& ormel, const RowReader& row, ListedElement& item) {
  const bool head = row.Bool(2), pond = row.Bool(3);
  item.value = With(ormel, row.Double(4),
                    head   ? Quantity::kLength
                    : pond ? Quantity::kRate
                           : Quantity::kDischarge);
  item.state = StartsWithNoCase(item.label, "Mirror_") ? "image well"
               : pond                                  ? "pond"
               : head                                  ? "given head"
                                                       : "given discharge";
}

void Linesink(const Ormel& ormel, const RowReader& row, ListedElement& item) {
  const bool head = row.Bool(2);
  const double from = row.Double(3), to = row.Double(4);
  const Quantity quantity = head ? Quantity::kLength : Quantity::kSinkDensity;
  item.value =
      from == to ? With(ormel, from, quantity) : NumberText(from) + " to " + With(ormel, to, quantity);
  item.state = !head         ? "given discharge"
               : row.Bool(5) ? "drain"
               : row.Bool(6) ? "far field"
               : row.Bool(7) ? "stream"
                             : "given head";
}

void Barrier(const Ormel&, const RowReader& row, ListedElement& item) {
  item.state = row.Long(2) != 0 ? "closed" : "open";
}

void Domain(const Ormel& ormel, const RowReader& row, ListedElement& item) {
  std::vector<std::string> values, states;
  if (row.Bool(2)) values.push_back("k " + With(ormel, row.Double(3), Quantity::kRate));
  if (row.Bool(4)) values.push_back("recharge " + With(ormel, row.Double(5), Quantity::kRate));
  if (row.Bool(6)) states.emplace_back("porosity " + NumberText(row.Double(7)));
  if (row.Bool(8)) states.emplace_back("base " + With(ormel, row.Double(9), Quantity::kLength));
  if (values.empty() && states.empty()) states.emplace_back("changes nothing");
  item.value = Join(values);
  item.state = Join(states);
}

void TestPoint(const Ormel& ormel, const RowReader& row, ListedElement& item) {
  item.value = With(ormel, row.Double(2), Quantity::kLength);
}

void Particle(const Ormel& ormel, const RowReader& row, ListedElement& item) {
  item.state = row.Bool(2) ? "forward" : "backward";
  item.value = row.Bool(3) ? "top of the water" : With(ormel, row.Double(4), Quantity::kLength);
}

void Nothing(const Ormel&, const RowReader&, ListedElement&) {}

struct ListedKind {
  Element element;
  const char* select;  ///< without its condition
  void (*fill)(const Ormel&, const RowReader&, ListedElement&);
  const char* deck;  ///< prefix of its labels in the results; "" for none
};
constexpr std::array kKinds{
    ListedKind{Element::kWell, "select VID,Label,HeadSpecified,Pond,Head from Wells", Well, "WL_"},
    ListedKind{Element::kLinesink,
               "select PID,Label,HeadSpecified,StartingHead,EndingHead,Drain,Farfield,Routing from "
               "LinesinkStrings",
               Linesink, "LS_"},
    ListedKind{Element::kBarrier, "select PID,Label,Closed from NoFlowStrings", Barrier, ""},
    ListedKind{
        Element::kInhomogeneity,
        "select PID,Label,ChangeK,HydCond,ChangeR,Recharge,ChangeP,Porosity,ChangeB,BottomElevation from "
        "Inhomogeneities",
        Domain, ""},
    ListedKind{Element::kTestPoint, "select VID,Label,ObsHead from TestPoints", TestPoint, "TP_"},
    ListedKind{Element::kParticle, "select VID,'',Forward,SatdThick,Elevation from Particles", Particle, ""},
    ListedKind{Element::kFluxLine, "select PID,Label from FluxInspect", Nothing, "FL_"},
    ListedKind{Element::kCapzone, "select PID,Label from Capzones", Nothing, ""},
    ListedKind{Element::kTextLabel, "select rowid,Text from TextLabels", Nothing, ""},
};

const ListedKind* FindListed(Element element) {
  const auto* found = std::find_if(kKinds.begin(), kKinds.end(),
                                   [element](const ListedKind& kind) { return kind.element == element; });
  return found == kKinds.end() ? nullptr : found;
}

/// "WL_000012"
std::string DeckLabel(const char* prefix, std::int64_t key) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%s%06lld", prefix, static_cast<long long>(key));
  return text.data();
}

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

bool Digit(char c) {
  return c >= '0' && c <= '9';
}

/// Digits from `at` on, without leading zeros; `at` goes behind them.
std::string_view NumberAt(std::string_view text, std::size_t& at) {
  while (at < text.size() && text[at] == '0') ++at;
  const std::size_t first = at;
  while (at < text.size() && Digit(text[at])) ++at;
  return text.substr(first, at - first);
}

const std::string& Cell(const ListedElement& item, ListColumn column) {
  return column == ListColumn::kLabel ? item.label : column == ListColumn::kValue ? item.value : item.state;
}

/// Values that are numbers by their size, all else as text.
bool Before(const std::string& a, const std::string& b, ListColumn column) {
  if (column == ListColumn::kValue) {
    const double x = Val(a.substr(0, a.find(' '))), y = Val(b.substr(0, b.find(' ')));
    if (x != y) return x < y;
  }
  return NaturallyBefore(a, b);
}

}  // namespace

bool NaturallyBefore(std::string_view a, std::string_view b) {
  std::size_t i = 0, j = 0;
  while (i < a.size() && j < b.size()) {
    if (Digit(a[i]) && Digit(b[j])) {
      const std::string_view x = NumberAt(a, i), y = NumberAt(b, j);
      if (x.size() != y.size()) return x.size() < y.size();
      if (x != y) return x < y;
      continue;
    }
    const int x = std::tolower(static_cast<unsigned char>(a[i++])),
              y = std::tolower(static_cast<unsigned char>(b[j++]));
    if (x != y) return x < y;
  }
  return a.size() - i < b.size() - j;
}

ElementList::ElementList(Ormel& ormel) : ormel_(ormel) {
  ormel.changes.Subscribe(*this);
}

ElementList::~ElementList() {
  ormel_.changes.Unsubscribe(*this);
}

void ElementList::Search(const std::string& text) {
  std::vector<std::string> words;
  std::string word;
  for (const char c : Lower(text) + " ") {
    if (c != ' ')
      word += c;
    else if (!word.empty())
      words.push_back(std::exchange(word, {}));
  }
  if (words == words_) return;
  words_ = std::move(words);
  arranged_ = false;
  ++revision_;
}

void ElementList::Sort(ListColumn column, bool descending) {
  if (column == column_ && descending == descending_) return;
  column_ = column;
  descending_ = descending;
  arranged_ = false;
  ++revision_;
}

void ElementList::CommandEnded(const ChangeRecord& record) {
  if (record.project_replaced) {
    read_ = false;
    ++revision_;
    return;
  }
  for (const RowChange& row : record.rows) {
    const ElementKind* kind = FindKind(row.table);
    if (kind == nullptr || FindListed(kind->element) == nullptr) continue;
    const std::string key = kind->KeyField();
    for (const bool before : {true, false})
      if ((before ? row.before : row.after).has_value())
        touched_[kind->element].insert(kind->key.empty() ? row.row : row.Field(key, before).AsLong());
    arranged_ = false;
    ++revision_;
  }
}

void ElementList::ResultsChanged() {
  read_ = false;
  ++revision_;
}

void ElementList::ReadResults() {
  results_.clear();
  if (!ormel_.solution.ValidSolution) return;
  const std::string length = UnitOf(ormel_, Quantity::kLength);
  RowReader wells(ormel_.db(), "select VadoxLabel,Discharge,Head,SpecifiedHead from WLResults");
  while (wells.Next()) {
    const double head = wells.Double(2);
    results_[std::string(wells.Text(0))] = head < kDryHead ? "DRY"
                                                           : "head " + Computed(head) + " " + length +
                                                                 ", takes " + Computed(wells.Double(1)) +
                                                                 " " + UnitOf(ormel_, Quantity::kDischarge);
  }
  RowReader strings(
      ormel_.db(),
      "select substr(VadoxLabel,1,9),sum(Discharge) from LSResults group by substr(VadoxLabel,1,9)");
  while (strings.Next())
    results_[std::string(strings.Text(0))] = (strings.Double(1) < 0.0 ? "gives " : "takes ") +
                                             Computed(std::abs(strings.Double(1))) + " " +
                                             UnitOf(ormel_, Quantity::kDischarge);
  RowReader points(ormel_.db(), "select VID,ModelHead,Difference from TPResults");
  while (points.Next())
    results_[DeckLabel("TP_", points.Long(0))] = points.Double(1) < kDryHead
                                                     ? "DRY"
                                                     : "model " + Computed(points.Double(1)) + " " + length +
                                                           ", differs by " + Computed(points.Double(2));
  RowReader lines(ormel_.db(), "select PID,TotalFlux from FIResults");
  while (lines.Next())
    results_[DeckLabel("FL_", lines.Long(0))] =
        "flow " + Computed(lines.Double(1)) + " " + UnitOf(ormel_, Quantity::kDischarge);
}

/// All of the kind with more keys than few, else these alone.
void ElementList::ReadRows(Element element, const std::set<std::int64_t>& keys) {
  const ListedKind* listed = FindListed(element);
  const ElementKind& kind = *FindKind(element);
  Elements& known = elements_[element];
  const bool all = keys.empty() || keys.size() > kMostOneByOne;
  if (all)
    known.clear();
  else
    for (const std::int64_t key : keys) known.erase(key);
  const std::string select(listed->select);
  RowReader rows(ormel_.db(), all ? select : select + " where " + kind.KeyField() + "=?");
  const auto take = [&] {
    while (rows.Next()) {
      ListedElement item{
          .id = {element, rows.Long(0)}, .label = std::string(rows.Text(1)), .value = {}, .state = {}};
      if (item.label.empty()) item.label = std::string(kind.name) + " " + std::to_string(item.id.key);
      listed->fill(ormel_, rows, item);
      if (const auto found = results_.find(DeckLabel(listed->deck, item.id.key)); found != results_.end())
        item.state = Join({item.state, found->second});
      known[item.id.key] = std::move(item);
    }
  };
  if (all) return take();
  for (const std::int64_t key : keys) {
    rows.Restart({key});
    take();
  }
}

void ElementList::ReadAll() {
  elements_.clear();
  touched_.clear();
  arranged_ = false;
  if (!ormel_.project.ProjectOpen) return;
  ReadResults();
  for (const ListedKind& kind : kKinds) ReadRows(kind.element, {});
  read_ = true;
}

void ElementList::Arrange() {
  groups_.clear();
  for (const ListedKind& kind : kKinds) {
    const auto found = elements_.find(kind.element);
    if (found == elements_.end() || found->second.empty()) continue;
    ElementGroup group{.element = kind.element,
                       .caption = std::string(FindKind(kind.element)->plural),
                       .all = found->second.size(),
                       .elements = {}};
    for (const auto& [key, item] : found->second) {
      const std::string text =
          words_.empty() ? std::string() : Lower(item.label + " " + item.value + " " + item.state);
      if (std::all_of(words_.begin(), words_.end(),
                      [&](const std::string& word) { return text.find(word) != std::string::npos; }))
        group.elements.push_back(item);
    }
    if (group.elements.empty()) continue;
    std::stable_sort(group.elements.begin(), group.elements.end(),
                     [this](const ListedElement& a, const ListedElement& b) {
                       const ListedElement& first = descending_ ? b : a;
                       const ListedElement& second = descending_ ? a : b;
                       return Before(Cell(first, column_), Cell(second, column_), column_);
                     });
    groups_.push_back(std::move(group));
  }
  arranged_ = true;
}

const std::vector<ElementGroup>& ElementList::Groups() {
  if (!ormel_.project.ProjectOpen) {
    elements_.clear();
    groups_.clear();
    read_ = arranged_ = false;
    return groups_;
  }
  if (!read_) ReadAll();
  for (const auto& [element, keys] : touched_) ReadRows(element, keys);
  touched_.clear();
  if (!arranged_) Arrange();
  return groups_;
}

}  // namespace ormel
