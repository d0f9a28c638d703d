// The bulk commands of "Delete All...".
#include <array>
#include <vector>

#include "core/command.h"
#include "core/ormel.h"
#include "core/run_files.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "document/elements.h"
#include "model/area_runs.h"
#include "model/delete.h"
#include "model/digitize.h"
#include "model/image_wells.h"
#include "model/observations.h"
#include "model/selection.h"
#include "model/validity.h"
#include "model/vertices.h"
#include "model/wells.h"
#include "store/bulk.h"
#include "store/database.h"

namespace ormel {
namespace {

constexpr const char* kTitle = "Delete All";

bool IsHydrography(Ormel& ormel, const ElementId& id) {
  TextLabelRow label;
  return FindTextLabel(ormel, id.key, label) && label.type == LabelType::kHydrography;
}

bool IsPermanent(Ormel& ormel, const ElementId& id) {
  TextLabelRow label;
  return FindTextLabel(ormel, id.key, label) && label.type == LabelType::kPermanent;
}

template <bool kHeadSpecified>
bool IsWell(Ormel& ormel, const ElementId& id) {
  WellRow well;
  return FindWell(ormel, id.key, well) && well.HeadSpecified == kHeadSpecified;
}

/// A kind of objects: its question, and which elements belong to it.
struct BulkKind {
  DeleteAllItem item;
  const char* question;
  const char* plural;
  Element element;
  bool (*belongs)(Ormel&, const ElementId&);  ///< null: all of them
  bool invalidates;                           ///< although its place would not
  const char* wells = nullptr;  ///< condition of the wells that go, and with them their protection areas
};

constexpr std::array kKinds{
    BulkKind{DeleteAllItem::kHydrographyLabels, "Delete all hydrography labels from the database?",
             "Hydrography Labels", Element::kTextLabel, IsHydrography, false},
    BulkKind{DeleteAllItem::kTestPoints, "Delete all test points from the database?", "Test Points",
             Element::kTestPoint, nullptr, true},
    BulkKind{
        DeleteAllItem::kParticles,
        "Delete all particles from the database?  NOTE: particles associated\nwith wells will be retained.",
        "Particles", Element::kParticle, nullptr, false},
    BulkKind{DeleteAllItem::kTextLabels, "Delete all text labels from the database?", "Text Labels",
             Element::kTextLabel, IsPermanent, false},
    BulkKind{DeleteAllItem::kDischargeWells, "Delete all discharge specified wells from the database?",
             "Discharge Specified Wells", Element::kWell, IsWell<false>, false, "HeadSpecified=0"},
    BulkKind{DeleteAllItem::kHeadWells, "Delete all head specified wells from the database?",
             "Head Specified Wells", Element::kWell, IsWell<true>, false, "HeadSpecified<>0"},
};

void DeleteKind(Ormel& ormel, const BulkKind& kind) {
  if (!AskYesNo(ormel, kTitle, kind.question, Icon::kWarning)) return;
  const std::string plural = kind.plural;
  std::vector<ElementId> ids = ElementsOf(ormel, kind.element);
  if (kind.belongs != nullptr)
    std::erase_if(ids, [&](const ElementId& id) { return !kind.belongs(ormel, id); });
  if (ids.empty()) {
    Inform(ormel, kTitle, "No " + plural + " were found!");
    return;
  }
  if (kind.wells != nullptr && !RemoveAreasOfWells(ormel, kind.wells)) return;
  ClearSelection(ormel);
  for (const ElementId& id : ids) RemoveElement(ormel, id);
  Inform(ormel, kTitle, std::to_string(ids.size()) + " " + plural + " were removed.");
  if (kind.invalidates) InvalidateSolution(ormel, true, false);
}

struct WhpaKind {
  const char* name;
  int type;  ///< 0: all
};
constexpr std::array kWhpaKinds{WhpaKind{"Simple", 0}, WhpaKind{"Arbitrary Radius", 1},
                                WhpaKind{"Calculated", 2}, WhpaKind{"Multiple Well", 3}};

struct WhpaRow {
  std::string well, stem;
  Vid vid1 = 0, vid2 = 0;
  int type = 0;
  bool ran = false;  ///< a run of the solver belongs to it
};

std::vector<WhpaRow> ReadAreas(Ormel& ormel, int type) {
  std::vector<WhpaRow> rows;
  RowReader reader(ormel.db(), "select * from WHPAs where ?=0 or Type=?", {type, type});
  const int well = reader.Column("Well"), stem = reader.Column("WHPAText"), radius = reader.Column("Radius"),
            kind = reader.Column("Type"), vid1 = reader.Column("VID1"), vid2 = reader.Column("VID2");
  while (reader.Next())
    rows.push_back({.well = std::string(reader.Text(well)),
                    .stem = std::string(reader.Text(stem)),
                    .vid1 = vid1 < 0 ? 0 : reader.Long(vid1),
                    .vid2 = vid2 < 0 ? 0 : reader.Long(vid2),
                    .type = static_cast<int>(reader.Long(kind)),
                    .ran = reader.Long(kind) != 1 && reader.Double(radius) == 0.0});
  return rows;
}

void DeleteImage(Ormel& ormel, const std::string& label) {
  const Value vid = ormel.db().Scalar("select VID from Wells where Label=?", {MirrorLabel(label)});
  if (vid.IsNull()) return;
  ormel.db().Execute("delete from Wells where VID=?", {vid});
  DeleteVertex(ormel, vid.AsLong());
}

void DeleteArea(Ormel& ormel, const WhpaRow& row) {
  // A circle of arbitrary radius has no stream boundary: the image belongs to another area of that well.
  if (row.type != 1) DeleteImage(ormel, row.well);
  for (const Vid vid : {row.vid1, row.vid2})
    if (vid > 0) DeleteVertex(ormel, vid);
  if (row.ran) LeaveAreaRun(ormel, row.stem);
}

}  // namespace

void DELETEALL(Ormel& ormel, int index) {
  RunEdit(ormel, "DELETEALL_Click", [&] {
    for (const BulkKind& kind : kKinds)
      if (static_cast<int>(kind.item) == index) DeleteKind(ormel, kind);
  });
}

void ReadWhpaState(Ormel& ormel) {
  const auto any = [&](const char* sql) { return ormel.db().Scalar(sql).AsLong() > 0; };
  ormel.solution.whpa_calculated_exists = any("select count(*) from WHPAs where T > 1 or Type = 3");
  ormel.menus.Enable("DeleteWHPA", 0, any("select count(*) from WHPAs"));
  for (int type = 1; type <= 3; ++type)
    ormel.menus.Enable("DeleteWHPA", type,
                       ormel.db().Scalar("select count(*) from WHPAs where Type = ?", {type}).AsLong() > 0);
}

void DeleteWHPA(Ormel& ormel, int index) {
  RunEdit(ormel, "DeleteWHPA_Click", [&] {
    ReadWhpaState(ormel);
    if (index < 0 || static_cast<std::size_t>(index) >= kWhpaKinds.size()) return;
    const WhpaKind& kind = kWhpaKinds.at(static_cast<std::size_t>(index));
    const std::string plural = std::string(kind.name) + " WHPAs";
    if (!AskYesNo(ormel, kTitle, "Delete all " + plural + " from the database?", Icon::kWarning)) return;
    const std::vector<WhpaRow> rows = ReadAreas(ormel, kind.type);
    if (rows.empty()) {
      Inform(ormel, kTitle, "No " + plural + " were found!");
      return;
    }
    ClearSelection(ormel);
    for (const WhpaRow& row : rows) DeleteArea(ormel, row);
    ormel.db().Execute("delete from WHPAs where ?=0 or Type=?", {kind.type, kind.type});
    Inform(ormel, kTitle, std::to_string(rows.size()) + " " + plural + " were removed.");
    ReadWhpaState(ormel);
  });
}

}  // namespace ormel
