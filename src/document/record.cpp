#include "document/record.h"

#include <algorithm>
#include <map>

#include "core/ormel.h"
#include "document/elements.h"
#include "document/kinds.h"
#include "store/database.h"
#include "text/strings.h"

namespace ormel {
namespace {

bool IsUndone(std::string_view table, std::string_view field) {
  return RoleOf(table, field).Undone();
}

}  // namespace

bool Touched::Has(Role role) const {
  return std::any_of(fields.begin(), fields.end(),
                     [&](const std::string& field) { return RoleOf(table, field).role == role; });
}

std::vector<Touched> TouchedBy(std::span<const RowChange> rows) {
  std::vector<Touched> touched;
  for (const RowChange& change : rows) {
    Touched one{change.table, change.row, !change.before, !change.after, {}};
    const std::vector<Value> before = change.before ? change.before->Values() : std::vector<Value>();
    const std::vector<Value> after = change.after ? change.after->Values() : std::vector<Value>();
    for (std::size_t i = 0; i < change.fields->size(); ++i) {
      const bool same = i < before.size() && i < after.size() && before[i] == after[i];
      if (!same) one.fields.push_back((*change.fields)[i]);
    }
    const ElementKind* kind = FindKind(change.table);
    if (kind != nullptr && !kind->key.empty()) one.row = change.Field(kind->key, !change.after).AsLong();
    touched.push_back(std::move(one));
  }
  return touched;
}

namespace {

bool OfImageWell(Ormel& ormel, const RowChange& change) {
  if (EqualNoCase(change.table, "Vertices")) return IsImageWell(ormel, {Element::kWell, change.row});
  if (!EqualNoCase(change.table, "Wells")) return false;
  const auto image = [&](bool before) {
    return StartsWithNoCase(change.Field("Label", before).AsText(), "Mirror_");
  };
  return (!change.before || image(true)) && (!change.after || image(false));
}

bool PlaceSpoils(Ormel& ormel, const RowChange& change, const Touched& touched, Spoils what) {
  const bool moved = std::any_of(touched.fields.begin(), touched.fields.end(),
                                 [](const std::string& field) { return !EqualNoCase(field, "Seq"); });
  if (!moved) return false;
  // Of an element that is gone with its vertices its own row tells.
  const ElementKind* kind = FindKind(OwnerOf(ormel, change.row, change.Field("PID", !change.after).AsLong()));
  return kind != nullptr && kind->place == what;
}

}  // namespace

bool AnySpoils(Ormel& ormel, std::span<const RowChange> rows, Spoils what) {
  return std::any_of(rows.begin(), rows.end(), [&](const RowChange& change) {
    const std::vector<Touched> touched = TouchedBy({&change, 1});
    const bool spoils =
        std::any_of(touched[0].fields.begin(), touched[0].fields.end(), [&](const std::string& field) {
          const Spoils spoiled = RoleOf(change.table, field).spoils;
          return spoiled == what ||
                 (spoiled == Spoils::kByOwner && PlaceSpoils(ormel, change, touched[0], what));
        });
    return spoils && !OfImageWell(ormel, change);
  });
}

std::vector<RowChange> UndoneRows(std::vector<RowChange> rows) {
  std::erase_if(rows, [](const RowChange& change) {
    const std::vector<Touched> touched = TouchedBy({&change, 1});
    return touched.empty() || !(touched[0].Has(Role::kModel) || touched[0].Has(Role::kRun));
  });
  return rows;
}

std::vector<RowChange> Joined(std::span<const std::vector<RowChange>> parts) {
  std::vector<RowChange> joined;
  std::map<std::pair<std::string, std::int64_t>, std::size_t> places;
  for (const std::vector<RowChange>& part : parts) {
    for (const RowChange& change : part) {
      const auto [place, is_new] = places.try_emplace({change.table, change.row}, joined.size());
      if (is_new)
        joined.push_back(change);
      else
        joined[place->second].after = change.after;
    }
  }
  std::erase_if(joined, [](const RowChange& change) { return change.before == change.after; });
  return joined;
}

namespace {

struct Counts {
  int added = 0, removed = 0, changed = 0;
  int All() const { return added + removed + changed; }
};

std::string Phrase(std::string_view verb, int count, std::string_view name, std::string_view plural) {
  if (count == 1) return std::string(verb) + " " + std::string(name);
  return std::string(verb) + " " + std::to_string(count) + " " + std::string(plural);
}

std::string KindPhrase(const ElementKind& kind, const Counts& counts) {
  if (counts.added > 0 && counts.removed == 0) return Phrase("Add", counts.added, kind.name, kind.plural);
  if (counts.removed > 0 && counts.added == 0)
    return Phrase("Delete", counts.removed, kind.name, kind.plural);
  return Phrase("Change", std::max(counts.added, counts.changed), kind.name, kind.plural);
}

Counts CountRows(std::span<const RowChange> rows, std::string_view table) {
  Counts counts;
  for (const RowChange& change : rows) {
    if (!EqualNoCase(change.table, table)) continue;
    ++(!change.before ? counts.added : !change.after ? counts.removed : counts.changed);
  }
  return counts;
}

/// The vertices of elements whose own rows are as they were.
std::string VertexPhrase(Ormel& ormel, std::span<const RowChange> rows) {
  const Counts counts = CountRows(rows, "Vertices");
  Element owner = Element::kNone;
  for (const RowChange& change : rows)
    if (EqualNoCase(change.table, "Vertices") && owner == Element::kNone)
      owner = OwnerOf(ormel, change.row, change.Field("PID", !change.after).AsLong());
  const ElementKind* kind = FindKind(owner);
  const std::string name(kind == nullptr ? "Element" : kind->name);
  const bool polygon = kind == nullptr || kind->Polygon();
  if (counts.added > 0) return "Refine " + name;
  if (counts.removed > 0) return "Delete " + name + " Vertex";
  return "Move " + name + (polygon ? " Vertex" : "");
}

std::string SettingsPhrase(std::span<const RowChange> rows) {
  for (const Touched& touched : TouchedBy(rows)) {
    if (EqualNoCase(touched.table, "Project")) return "Change Project Settings";
    if (!EqualNoCase(touched.table, "Model")) continue;
    const bool flow = std::any_of(touched.fields.begin(), touched.fields.end(),
                                  [](const std::string& f) { return StartsWithNoCase(f, "UNIFLOW"); });
    if (!flow) return "Change Model Settings";
    const auto used = [&](bool before) {
      for (const RowChange& change : rows)
        if (EqualNoCase(change.table, "Model")) return change.Field("UNIFLOWCompute", before).AsLong() != 0;
      return false;
    };
    const bool was = used(true), is = used(false);
    return was == is ? "Change Uniform Flow" : is ? "Add Uniform Flow" : "Delete Uniform Flow";
  }
  return {};
}

}  // namespace

std::string ActionName(Ormel& ormel, std::span<const RowChange> rows) {
  // An area brings image wells with it.
  const ElementKind* area = FindKind(Element::kWhpaBoundaryVertex);
  if (const Counts counts = CountRows(rows, area->table); counts.All() > 0) return KindPhrase(*area, counts);
  for (const ElementKind& kind : ElementKinds()) {
    if (kind.table.empty()) continue;
    if (const Counts counts = CountRows(rows, kind.table); counts.All() > 0) return KindPhrase(kind, counts);
  }
  if (std::string settings = SettingsPhrase(rows); !settings.empty()) return settings;
  return VertexPhrase(ormel, rows);
}

void ApplyRows(Ormel& ormel, std::span<const RowChange> rows, bool back) {
  Database& db = ormel.db();
  Transaction all(db);
  try {
    std::vector<const RowChange*> to_put;
    for (const RowChange& change : rows) {
      const std::optional<RowImage>& from = back ? change.after : change.before;
      const std::optional<RowImage>& to = back ? change.before : change.after;
      if (!to) {
        RemoveRow(db, change.table, change.row);
      } else if (!from) {
        to_put.push_back(&change);
      } else {
        const std::vector<std::string>& names = *change.fields;
        const std::vector<Value> was = from->Values(), is = to->Values();
        std::vector<FieldValue> values;
        for (std::size_t i = 0; i < is.size() && i < names.size(); ++i)
          if (was[i] != is[i] && IsUndone(change.table, names[i])) values.push_back({names[i], is[i]});
        SetFields(db, change.table, change.row, values);
      }
    }
    // Behind the deletions: a number or label that went elsewhere is free again.
    for (const RowChange* change : to_put)
      PutRow(db, change->table, change->row, *(back ? change->before : change->after));
  } catch (...) {
    all.Rollback();
    throw;
  }
}

}  // namespace ormel
