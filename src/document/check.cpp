#include "document/check.h"

#include <set>

#include "document/kinds.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/field_rules.h"
#include "text/strings.h"

namespace ormel {
namespace {

/// One thing that can be wrong: the names of what it is wrong with, and the statements that mend it.
struct Rule {
  std::string names;  ///< a select whose first column names them
  std::string one, many;
  std::string mend;
  std::vector<std::string> statements;
};

constexpr const char* kNoPoints = " where PID not in (select PID from Vertices)";
constexpr const char* kNoVertex = " where VID not in (select VID from Vertices)";

std::string Lower(std::string_view name) {
  return FoldCase(name);
}

/// What tells an element to the user.
std::string NameOf(const ElementKind& kind) {
  return kind.element == Element::kParticle ? "'number ' || VID" : "Label";
}

void AddKindRules(const ElementKind& kind, std::vector<Rule>& rules) {
  if (kind.table.empty() || kind.key.empty()) return;
  const std::string table(kind.table);
  const std::string rows = "select " + NameOf(kind) + " from " + table;
  const std::string one = Lower(kind.name);
  const std::string many = Lower(kind.plural);
  if (!kind.Polygon()) {
    rules.push_back({rows + kNoVertex,
                     one + " has no place",
                     many + " have no place",
                     "removed",
                     {"delete from " + table + kNoVertex}});
    return;
  }
  rules.push_back({rows + kNoPoints,
                   one + " has no points",
                   many + " have no points",
                   "removed",
                   {"delete from " + table + kNoPoints}});
  rules.push_back({rows + " where PID in (select PID from Vertices group by PID having count(*)<" +
                       std::to_string(kind.fewest) + ")",
                   one + " has too few points: draw it again, or delete it",
                   many + " have too few points: draw them again, or delete them",
                   "",
                   {}});
}

std::string NotOwned(Database& db) {
  std::string points = "PID=-1";
  std::string strings = "PID>=0";
  for (const ElementKind& kind : ElementKinds()) {
    if (kind.table.empty() || kind.key.empty()) continue;
    std::string& where = kind.Polygon() ? strings : points;
    const std::string key(kind.key);
    where += " and " + key + " not in (select " + key + " from " + std::string(kind.table) + ")";
  }
  if (db.HasField("WHPAs", "VID1") && db.HasField("WHPAs", "VID2"))
    points +=
        " and VID not in (select coalesce(VID1,0) from WHPAs)"
        " and VID not in (select coalesce(VID2,0) from WHPAs)";
  return "(" + points + ") or (" + strings + ")";
}

/// Results name the elements that they are of.
struct ResultOf {
  std::string_view results, field, elements;
};
constexpr ResultOf kResults[] = {
    {"WLResults", "Label", "Wells"},           {"LSResults", "Label", "LinesinkStrings"},
    {"INResults", "Label", "Inhomogeneities"}, {"NFResults", "Label", "NoFlowStrings"},
    {"TPResults", "VID", "TestPoints"},        {"FIResults", "PID", "FluxInspect"}};

constexpr const char* kLostImages =
    " where Label like 'Mirror_*' and not exists (select 1 from Wells s where s.Label not like 'Mirror_*'"
    " and Wells.Label='Mirror_' || substr(s.Label,1,57))";

std::vector<Rule> Rules(Database& db) {
  std::vector<Rule> rules;
  // What takes elements away stands before what looks for the points of those that are gone.
  rules.push_back({std::string("select Label from Wells") + kLostImages,
                   "image is without its well",
                   "images are without their well",
                   "removed",
                   {std::string("delete from Wells") + kLostImages}});
  for (const ElementKind& kind : ElementKinds()) AddKindRules(kind, rules);
  const std::string orphans = NotOwned(db);
  rules.push_back({"select 'at ' || X || ', ' || Y from Vertices where " + orphans,
                   "point belongs to no element",
                   "points belong to no element",
                   "removed",
                   {"delete from Vertices where " + orphans}});
  rules.push_back({std::string("select 'number ' || PID from Polygons") + kNoPoints,
                   "outline has no points",
                   "outlines have no points",
                   "removed",
                   {std::string("delete from Polygons") + kNoPoints}});
  for (const ResultOf& one : kResults) {
    if (!db.HasTable(one.results) || !db.HasField(one.results, one.field)) continue;
    const std::string where = " where " + std::string(one.field) + " not in (select coalesce(" +
                              std::string(one.field) + ",'') from " + std::string(one.elements) + ")";
    rules.push_back({"select distinct Label from " + std::string(one.results) + where,
                     "element has results and is no more (" + std::string(one.results) + ")",
                     "elements have results and are no more (" + std::string(one.results) + ")",
                     "removed",
                     {"delete from " + std::string(one.results) + where}});
  }
  return rules;
}

/// "2 wells have no place: A, B"; nothing when no row is named.
std::string Told(Database& db, const Rule& rule) {
  constexpr int kNamed = 8;
  std::string names;
  int count = 0;
  for (RowReader rows(db, rule.names); rows.Next(); ++count)
    if (count < kNamed) names += (names.empty() ? "" : ", ") + std::string(rows.Text(0));
  if (count == 0) return {};
  if (count > kNamed) names += " and " + std::to_string(count - kNamed) + " more";
  return std::to_string(count) + " " + (count == 1 ? rule.one : rule.many) + ": " + names;
}

// Labels ----------------------------------------------------------------------------------------------------

struct Collision {
  std::string table, label;
  std::int64_t row = 0;
};

/// All but the first of each label.
std::vector<Collision> Collisions(Database& db) {
  std::vector<Collision> found;
  for (const ElementKind& kind : ElementKinds()) {
    if (!kind.unique_label) continue;
    const std::string table(kind.table);
    std::set<std::string> seen;
    const std::string images = table == "Wells" ? " and Label not like 'Mirror_*'" : "";
    RowReader rows(db, "select rowid,Label from " + table + " where Label<>''" + images + " order by rowid");
    while (rows.Next())
      if (!seen.insert(FoldCase(rows.Text(1))).second)
        found.push_back({table, std::string(rows.Text(1)), rows.Long(0)});
  }
  return found;
}

void MendCollision(Database& db, const Collision& one) {
  constexpr std::size_t kLongest = 26;  // bytes kept, so that the number behind fits
  std::string cut = one.label;
  while (cut.size() > kLongest) {  // never half a character
    do cut.pop_back();
    while (!cut.empty() && (static_cast<unsigned char>(cut.back()) & 0xC0U) == 0x80U);
    if (!cut.empty() && static_cast<unsigned char>(cut.back()) >= 0xC0U) cut.pop_back();
  }
  for (int number = 1;; ++number) {
    const std::string label = cut + "~" + std::to_string(number);
    if (db.Scalar("select count(*) from " + one.table + " where Label=?", {label}).AsLong() > 0) continue;
    db.Execute("update " + one.table + " set Label=? where rowid=?", {label, one.row});
    return;
  }
}

// Contents --------------------------------------------------------------------------------------------------

/// A content that its field cannot have.
struct Spoilt {
  const schema::Table* table = nullptr;
  const schema::Field* field = nullptr;
  std::int64_t row = 0;
};

std::vector<Spoilt> SpoiltContents(Database& db) {
  std::vector<Spoilt> found;
  for (const schema::Table& table : schema::Tables()) {
    if (!db.HasTable(table.name)) continue;
    for (const schema::Field& field : table.fields) {
      if (field.automatic || !db.HasField(table.name, field.name)) continue;
      RowReader rows(db, "select rowid from " + std::string(table.name) + " where not coalesce((" +
                             schema::Condition(field) + "),0)");
      while (rows.Next()) found.push_back({&table, &field, rows.Long(0)});
    }
  }
  return found;
}

std::string Told(const Spoilt& one) {
  return std::string(one.table->name) + ", field " + std::string(one.field->name) + ", row " +
         std::to_string(one.row) + ": " + schema::Rule(*one.field);
}

/// A place that is no number cannot be guessed, nor whose row it is; every other field has a value to begin
/// with.
bool GoesWithItsRow(const Spoilt& one) {
  return one.table->name == "Vertices" || one.field->name == "VID" || one.field->name == "PID";
}

std::string StartValue(const schema::Field& field) {
  if (field.has_default) return schema::DefaultSql(field);
  if (!field.required) return "null";
  if (field.type == schema::FieldType::kText) return "''";
  return field.type == schema::FieldType::kDate ? "now()" : "0";
}

void MendContent(Database& db, const Spoilt& one) {
  const std::string table(one.table->name);
  if (GoesWithItsRow(one)) {
    db.Execute("delete from " + table + " where rowid=?", {one.row});
  } else {
    db.Execute("update " + table + " set [" + std::string(one.field->name) + "]=" + StartValue(*one.field) +
                   " where rowid=?",
               {one.row});
  }
}

}  // namespace

std::vector<Fault> FindFaults(Database& db) {
  std::vector<Fault> faults;
  for (const Spoilt& one : SpoiltContents(db))
    faults.push_back(
        {Told(one), GoesWithItsRow(one) ? "its row is removed" : "set to " + StartValue(*one.field)});
  for (const Rule& rule : Rules(db))
    if (const std::string text = Told(db, rule); !text.empty()) faults.push_back({text, rule.mend});
  for (const Collision& one : Collisions(db))
    faults.push_back(
        {"The label \"" + one.label + "\" is used twice in " + one.table, "the later one gets a number"});
  return faults;
}

void MendFaults(Database& db) {
  for (const Spoilt& one : SpoiltContents(db)) MendContent(db, one);
  for (const Rule& rule : Rules(db))
    for (const std::string& statement : rule.statements) db.Execute(statement);
  for (const Collision& one : Collisions(db)) MendCollision(db, one);
}

std::vector<StoredRing> StoredDomains(Database& db) {
  std::vector<StoredRing> rings;
  std::int64_t last = -1;
  RowReader rows(db,
                 "select Inhomogeneities.PID,Label,X,Y from Inhomogeneities inner join Vertices on "
                 "Vertices.PID=Inhomogeneities.PID order by Inhomogeneities.PID,Seq");
  while (rows.Next()) {
    if (rings.empty() || rows.Long(0) != last) rings.push_back({std::string(rows.Text(1)), {}});
    last = rows.Long(0);
    rings.back().points.push_back({rows.Double(2), rows.Double(3)});
  }
  return rings;
}

}  // namespace ormel
