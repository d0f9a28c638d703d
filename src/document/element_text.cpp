#include "document/element_text.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <system_error>

#include "core/ormel.h"
#include "document/fields.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/recordset.h"
#include "store/schema.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr std::string_view kHeading = "Ormel elements";
constexpr std::string_view kVersion = "1";

// A tab, a line's end and the backslash itself within a text.
std::string Escaped(std::string_view text) {
  std::string out;
  for (const char c : text) {
    if (c == '\t')
      out += "\\t";
    else if (c == '\n')
      out += "\\n";
    else if (c == '\r')
      out += "\\r";
    else if (c == '\\')
      out += "\\\\";
    else
      out += c;
  }
  return out;
}

std::string Unescaped(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      out += text[i];
      continue;
    }
    const char c = text[++i];
    out += c == 't' ? '\t' : c == 'n' ? '\n' : c == 'r' ? '\r' : c;
  }
  return out;
}

/// The shortest text that reads as the same number.
std::string Exact(double number) {
  char buffer[32];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, number);
  return {buffer, end.ptr};
}

/// The table, without what names the element and what tells its place.
bool IsCopied(const ElementKind& kind, const schema::Table& table, const schema::Field& field) {
  const bool place =
      kind.shape == Shape::kFree && (EqualNoCase(field.name, "X") || EqualNoCase(field.name, "Y"));
  return !field.automatic && !place && !EqualNoCase(field.name, kind.key) &&
         RoleOf(table.name, field.name).role != Role::kResult;
}

std::string FieldLine(const schema::Field& field, const Value& value) {
  const std::string name = "field\t" + std::string(field.name) + "\t";
  if (field.type == schema::FieldType::kText) return name + "text\t" + Escaped(value.AsText()) + "\n";
  if (field.type == schema::FieldType::kDouble) return name + "number\t" + Exact(value.AsDouble()) + "\n";
  return name + "whole\t" + std::to_string(value.AsLong()) + "\n";
}

void AddText(Ormel& ormel, const ElementId& id, std::string& text) {
  const ElementKind& kind = *FindKind(id.element);
  const schema::Table& table = *schema::FindTable(kind.table);
  text += "element\t" + std::string(kind.table) + "\n";
  if (kind.Polygon()) {
    const Value closed = ormel.db().Scalar("select Closed from Polygons where PID=?", {id.key});
    text += std::string("closed\t") + (closed.AsBool() ? "1" : "0") + "\n";
  }
  RowReader row(ormel.db(), "select * from " + std::string(kind.table) + " where " + kind.KeyField() + "=?",
                {id.key});
  if (row.Next()) {
    for (const schema::Field& field : table.fields) {
      const int column = row.Column(field.name);
      if (column >= 0 && !row.IsNull(column) && IsCopied(kind, table, field))
        text += FieldLine(field, row.Get(column));
    }
  }
  for (const MapPoint& at : PointsOf(ormel, id)) text += "point\t" + Exact(at.x) + "\t" + Exact(at.y) + "\n";
}

std::vector<std::string_view> Split(std::string_view line) {
  std::vector<std::string_view> parts;
  for (std::size_t begin = 0;;) {
    const std::size_t tab = line.find('\t', begin);
    parts.push_back(line.substr(begin, tab == std::string_view::npos ? tab : tab - begin));
    if (tab == std::string_view::npos) return parts;
    begin = tab + 1;
  }
}

/// Reads the lines and knows where it stands.
class Reader {
 public:
  explicit Reader(std::string_view text) : left_(text) {}
  bool Next() {
    while (!left_.empty()) {
      const std::size_t end = left_.find('\n');
      std::string_view line = left_.substr(0, end);
      left_ = end == std::string_view::npos ? std::string_view() : left_.substr(end + 1);
      ++number_;
      if (line.ends_with('\r')) line.remove_suffix(1);
      if (line.empty()) continue;
      parts_ = Split(line);
      return true;
    }
    return false;
  }
  std::string_view Word() const { return parts_.front(); }
  std::string_view Part(std::size_t index) const {
    if (index >= parts_.size()) Fail("it is cut short");
    return parts_[index];
  }
  template <class T>
  T Number(std::size_t index) const {
    const std::string_view part = Part(index);
    T number{};
    const auto read = std::from_chars(part.data(), part.data() + part.size(), number);
    if (read.ec != std::errc{} || read.ptr != part.data() + part.size())
      Fail("\"" + std::string(part) + "\" is no number that fits");
    if constexpr (std::is_floating_point_v<T>)
      if (!std::isfinite(number)) Fail("\"" + std::string(part) + "\" is no number that fits");
    return number;
  }
  [[noreturn]] void Fail(const std::string& why) const {
    throw ElementTextError("line " + std::to_string(number_) + ": " + why);
  }

 private:
  std::string_view left_;
  std::vector<std::string_view> parts_;
  int number_ = 0;
};

CopiedField ReadField(const Reader& reader, const ElementKind& kind) {
  const schema::Table& table = *schema::FindTable(kind.table);
  const schema::Field* field = schema::FindField(table, reader.Part(1));
  if (field == nullptr || !IsCopied(kind, table, *field))
    reader.Fail("elements of the table " + std::string(table.name) + " have no field \"" +
                std::string(reader.Part(1)) + "\"");
  if (field->type == schema::FieldType::kText)
    return {std::string(field->name), Value(Unescaped(reader.Part(3)))};
  if (field->type == schema::FieldType::kDouble)
    return {std::string(field->name), Value(reader.Number<double>(3))};
  if (field->type == schema::FieldType::kBoolean)
    return {std::string(field->name), Value(reader.Number<std::int64_t>(3) != 0)};
  return {std::string(field->name), Value(reader.Number<std::int64_t>(3))};
}

CopiedElement StartElement(const Reader& reader) {
  CopiedElement element;
  element.kind = FindKind(reader.Part(1));
  if (element.kind == nullptr || !MayBeOneOfSeveral(element.kind->element))
    reader.Fail("\"" + std::string(reader.Part(1)) + "\" is no kind of element");
  return element;
}

void CheckComplete(const Reader& reader, const CopiedElements& all) {
  if (all.elements.empty()) return;
  const CopiedElement& element = all.elements.back();
  const std::size_t count = element.points.size();
  if (element.kind->Polygon() ? count < element.kind->fewest : count != 1)
    reader.Fail("the element before has " + std::to_string(count) + " points");
}

}  // namespace

std::string CopiedElement::Label() const {
  for (const CopiedField& field : fields)
    if (EqualNoCase(field.name, "Label")) return field.value.AsText();
  return {};
}

void CopiedElement::SetLabel(const std::string& label) {
  for (CopiedField& field : fields)
    if (EqualNoCase(field.name, "Label")) field.value = Value(label);
}

std::string ElementsAsText(Ormel& ormel, std::span<const ElementId> ids) {
  std::string text = std::string(kHeading) + "\t" + std::string(kVersion) + "\n";
  for (const char* unit : {"BasemapMeters", "ComputeMeters"}) {
    const bool metres = ormel.db().Scalar("select " + std::string(unit) + " from Model").AsBool();
    text += std::string(unit) + "\t" + (metres ? "1" : "0") + "\n";
  }
  for (const ElementId& id : ids)
    if (MayBeOneOfSeveral(id.element)) AddText(ormel, id, text);
  return text;
}

bool IsElementText(std::string_view text) {
  return text.starts_with(std::string(kHeading) + "\t");
}

CopiedElements ReadElementText(std::string_view text) {
  CopiedElements all;
  Reader reader(text);
  if (!reader.Next() || reader.Word() != kHeading || reader.Part(1) != kVersion)
    reader.Fail("the elements were copied by another version of the program");
  while (reader.Next()) {
    const std::string_view word = reader.Word();
    if (word == "BasemapMeters") {
      all.basemap_meters = reader.Number<int>(1) != 0;
    } else if (word == "ComputeMeters") {
      all.compute_meters = reader.Number<int>(1) != 0;
    } else if (word == "element") {
      CheckComplete(reader, all);
      all.elements.push_back(StartElement(reader));
    } else if (all.elements.empty()) {
      reader.Fail("\"" + std::string(word) + "\" stands before the first element");
    } else if (word == "closed") {
      all.elements.back().closed = reader.Number<int>(1) != 0;
    } else if (word == "field") {
      all.elements.back().fields.push_back(ReadField(reader, *all.elements.back().kind));
    } else if (word == "point") {
      all.elements.back().points.push_back({reader.Number<double>(1), reader.Number<double>(2)});
    } else {
      reader.Fail("\"" + std::string(word) + "\" is not known");
    }
  }
  CheckComplete(reader, all);
  return all;
}

ElementId AddElement(Ormel& ormel, const CopiedElement& element) {
  constexpr Seq kStep = 100;
  const ElementKind& kind = *element.kind;
  Database& db = ormel.db();
  ElementId id{kind.element};
  Pid pid = kSinglePoint;
  if (kind.Polygon()) {
    BulkInsert polygon(db, "Polygons", {"Closed"});
    polygon.Row(element.closed ? 1 : 0);
    id.key = pid = polygon.LastNumber();
  }
  if (kind.shape != Shape::kFree) {
    BulkInsert vertices(db, "Vertices", {"PID", "Seq", "X", "Y"});
    Seq seq = kind.Polygon() ? 1 : 0;
    for (const MapPoint& at : element.points) {
      vertices.Row(pid, seq, at.x, at.y);
      seq += kStep;
    }
    if (!kind.Polygon()) id.key = vertices.LastNumber();
  }
  Recordset rows = db.OpenRecordset("select * from " + std::string(kind.table));
  rows.AddNew();
  if (!kind.key.empty()) rows[std::string(kind.key)] = id.key;
  for (const CopiedField& field : element.fields)
    if (db.HasField(kind.table, field.name)) rows[field.name] = field.value;
  if (kind.shape == Shape::kFree) {
    rows["X"] = element.points.front().x;
    rows["Y"] = element.points.front().y;
  }
  rows.Update();
  if (kind.shape == Shape::kFree) id.key = rows.GetBookmark().row;
  return id;
}

}  // namespace ormel
