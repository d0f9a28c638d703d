#include "document/element_rows.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "core/ormel.h"
#include "document/kinds.h"
#include "store/bulk.h"
#include "store/database.h"

namespace ormel {
namespace {

/// Expressions on the kind's table: label, closed, head specified, drain, value, radius, type of label.
struct Columns {
  Element element;
  std::string_view list;
};
constexpr std::array kColumns{Columns{Element::kWell, "t.Label,0,t.HeadSpecified,0,t.Head,t.Radius,0"},
                              Columns{Element::kLinesink, "t.Label,0,t.HeadSpecified,t.Drain,0,0,0"},
                              Columns{Element::kBarrier, "t.Label,t.Closed,0,0,0,0,0"},
                              Columns{Element::kInhomogeneity, "t.Label,1,0,0,0,0,0"},
                              Columns{Element::kTestPoint, "t.Label,0,0,0,t.ObsHead,0,0"},
                              Columns{Element::kParticle, "'',0,0,0,t.Elevation,0,0"},
                              Columns{Element::kFluxLine, "t.Label,0,0,0,0,0,0"},
                              Columns{Element::kCapzone, "t.Label,1,0,0,0,0,0"},
                              Columns{Element::kTextLabel, "t.Text,0,0,0,0,0,t.LabelType"}};

std::string StatementOf(const ElementKind& kind, std::string_view list) {
  const std::string table(kind.table), columns(list);
  if (kind.shape == Shape::kFree)
    return "select t.rowid,t.X,t.Y," + columns + " from " + table + " as t order by t.rowid";
  const std::string key = "t." + kind.KeyField();
  return "select " + key + ",v.X,v.Y," + columns + " from " + table + " as t left join Vertices as v on v." +
         kind.KeyField() + "=" + key + " order by " + key + ",v.Seq,v.VID";
}

void Fill(const RowReader& rows, ElementRow& row) {
  row = {.key = rows.Long(0),
         .label = std::string(rows.Text(3)),
         .points = {},
         .closed = rows.Bool(4),
         .head_specified = rows.Bool(5),
         .drain = rows.Bool(6),
         .value = rows.Double(7),
         .radius = rows.Double(8),
         .label_type = static_cast<int>(rows.Long(9))};
}

}  // namespace

void ReadElementRows(Ormel& ormel, Element element, const std::function<void(const ElementRow&)>& row) {
  const ElementKind* kind = FindKind(element);
  const auto* columns = std::find_if(kColumns.begin(), kColumns.end(),
                                     [element](const Columns& c) { return c.element == element; });
  if (kind == nullptr || columns == kColumns.end())
    throw std::logic_error("no rows of elements of this kind can be read");
  ElementRow current;
  bool begun = false;
  RowReader rows(ormel.db(), StatementOf(*kind, columns->list));
  while (rows.Next()) {
    if (!begun || rows.Long(0) != current.key || !kind->Polygon()) {
      if (begun) row(current);
      begun = true;
      Fill(rows, current);
    }
    if (!rows.IsNull(1)) current.points.push_back({rows.Double(1), rows.Double(2)});
  }
  if (begun) row(current);
}

}  // namespace ormel
