#include "document/fingerprint.h"

#include <bit>
#include <string>
#include <string_view>

#include "core/ormel.h"
#include "document/fields.h"
#include "document/kinds.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/schema.h"

namespace ormel {
namespace {

/// Fowler, Noll and Vo's hash of 64 bits, variant 1a, by words of eight bytes.
class Hash {
 public:
  void Add(std::uint64_t word) {
    value_ ^= word;
    value_ *= 1099511628211ULL;
    value_ ^= value_ >> 32U;  // the multiplication moves nothing down
  }
  void Add(std::string_view text) {
    for (const char c : text) Add(static_cast<std::uint64_t>(static_cast<unsigned char>(c)));
    Add(text.size());
  }
  void Add(const Value& value) {
    if (const auto* number = std::get_if<double>(&value.data()))
      return Add(std::bit_cast<std::uint64_t>(*number + 0.0));  // no negative zero
    if (value.IsNull()) return Add(std::uint64_t{0x6E756C6CU});
    if (value.IsNumber()) return Add(static_cast<std::uint64_t>(value.AsLong()));
    Add(std::string_view(value.AsText()));
  }
  std::uint64_t value() const { return value_; }

 private:
  std::uint64_t value_ = 14695981039346656037ULL;
};

void AddRows(Ormel& ormel, Hash& hash, const std::string& query) {
  hash.Add(std::string_view(query));
  RowReader rows(ormel.db(), query);
  while (rows.Next())
    for (int column = 0; column < rows.ColumnCount(); ++column) hash.Add(rows.Get(column));
}

/// The places of a kind's elements.
std::string PlacesQuery(const ElementKind& kind) {
  if (kind.element == Element::kUniformFlow)
    return "select X,Y from Vertices where PID=" + std::to_string(kUniformFlowPoint);
  const std::string own =
      " in (select " + std::string(kind.key) + " from " + std::string(kind.table) + OwnRows(kind.table) + ")";
  if (kind.Polygon()) return "select PID,X,Y from Vertices where PID" + own + " order by PID,Seq,VID";
  return "select VID,X,Y from Vertices where VID" + own + " order by VID";
}

/// Image wells follow their sources: they are no part of the model.
std::string OwnRows(std::string_view table) {
  return table == "Wells" ? " where Label not like 'Mirror_*'" : "";
}

std::uint64_t Of(Ormel& ormel, Spoils what) {
  Hash hash;
  for (const schema::Table& table : schema::Tables()) {
    std::string fields;
    for (const std::string& field : FieldsThatSpoil(table.name, what))
      if (ormel.db().HasField(table.name, field)) fields += (fields.empty() ? "" : ",") + field;
    if (fields.empty()) continue;
    const ElementKind* kind = FindKind(table.name);
    const bool keyed = kind != nullptr && !kind->key.empty();
    // Which element each row belongs to counts as well.
    if (keyed) fields = std::string(kind->key) + "," + fields;
    AddRows(ormel, hash,
            "select " + fields + " from " + std::string(table.name) + OwnRows(table.name) +
                (keyed ? " order by " + std::string(kind->key) : std::string()));
  }
  for (const ElementKind& kind : ElementKinds())
    if (kind.place == what) AddRows(ormel, hash, PlacesQuery(kind));
  return hash.value();
}

}  // namespace

Fingerprint FingerprintOf(Ormel& ormel) {
  return {Of(ormel, Spoils::kSolution), Of(ormel, Spoils::kContours), Of(ormel, Spoils::kPaths),
          Of(ormel, Spoils::kRerun)};
}

}  // namespace ormel
