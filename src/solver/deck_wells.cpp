// Wells of all seven kinds.
#include <array>
#include <span>
#include <vector>

#include "core/coordinates.h"
#include "core/ormel.h"
#include "solver/deck_sections.h"
#include "solver/deck_writer.h"
#include "store/database.h"

namespace ormel {
namespace {

struct DeckWell {
  Vid vid = 0;
  std::string label;
  MapPoint at;
  double head = 0.0;  ///< the rate where the well is not head-specified
  double radius = 0.0, top = 0.0, bottom = 0.0, time = 0.0, start_head = 0.0, storage = 0.0;
  bool cyclic = false;
  std::int64_t cycles = 0;
};

enum class Item { kX, kY, kHead, kRadius, kTop, kBottom, kTime, kStartHead, kStorage, kRimX, kRimY, kZero };

struct Column {
  Item item;
  const char* mask;
};

constexpr const char* kSix = "#.000000E+00 ";

constexpr std::array kDischargeWell{Column{Item::kX, "#0.000000E+00 "}, Column{Item::kY, "0.000000E+00 "},
                                    Column{Item::kHead, "0.00000E+00 "},
                                    Column{Item::kRadius, "0.00000E+00 "}};
constexpr std::array kHeadWell{Column{Item::kX, kSix}, Column{Item::kY, kSix}, Column{Item::kHead, kSix},
                               Column{Item::kRadius, kSix}};
constexpr std::array kPartialWell{Column{Item::kX, kSix},    Column{Item::kY, kSix},
                                  Column{Item::kTop, kSix},  Column{Item::kBottom, kSix},
                                  Column{Item::kHead, kSix}, Column{Item::kRadius, kSix}};
constexpr std::array kTransientWell{Column{Item::kX, kSix},         Column{Item::kY, kSix},
                                    Column{Item::kHead, kSix},      Column{Item::kTime, kSix},
                                    Column{Item::kStartHead, kSix}, Column{Item::kStorage, kSix},
                                    Column{Item::kRadius, kSix}};
// A disk is told by its centre and a point of its rim; a zero stands behind the rate.
constexpr std::array kDischargeDisk{Column{Item::kX, kSix},
                                    Column{Item::kY, kSix},
                                    Column{Item::kRimX, "#.000000E+00  "},
                                    Column{Item::kRimY, kSix},
                                    Column{Item::kHead, "##.000000E+00 "},
                                    Column{Item::kZero, kSix}};
constexpr std::array kHeadDisk{Column{Item::kX, kSix}, Column{Item::kY, kSix},
                               Column{Item::kRimX, "#.000000E+00  "}, Column{Item::kRimY, kSix},
                               Column{Item::kHead, kSix}};

struct WellGroup {
  int head_specified, partial, pond, transient;
  const char* element;
  const char* condition;
  std::span<const Column> columns;
};

constexpr std::array kGroups{
    WellGroup{0, 0, 0, 0, " well ", " discharge ", kDischargeWell},
    WellGroup{1, 0, 0, 0, " well ", " head ", kHeadWell},
    WellGroup{0, 1, 0, 0, " ppwell ", " discharge ", kPartialWell},
    WellGroup{1, 1, 0, 0, " ppwell ", " head ", kPartialWell},
    WellGroup{0, 0, 0, 1, " twell ", " discharge ", kTransientWell},
    WellGroup{0, 0, 1, 0, " sinkdisk ", " discharge ", kDischargeDisk},
    WellGroup{1, 0, 1, 0, " sinkdisk ", " head ", kHeadDisk},
};

constexpr int kIterationsForPartialWells = 3;

bool IsPlainDischarge(const WellGroup& group) {
  return &group == &kGroups.front();
}

std::vector<DeckWell> ReadGroup(Database& db, const WellGroup& group) {
  std::string sql =
      "select Vertices.X,Vertices.Y,Wells.* from Vertices inner join Wells on Vertices.VID = Wells.VID ";
  sql += "where Wells.HeadSpecified=" + std::to_string(group.head_specified) +
         " and Wells.PPWell=" + std::to_string(group.partial) +
         " and Wells.Pond=" + std::to_string(group.pond) +
         " and Wells.Transient=" + std::to_string(group.transient) + " order by Wells.VID;";
  RowReader rows(db, sql);
  const int vid = rows.Column("VID");
  const int label = rows.Column("Label");
  const int cyclic = rows.Column("Cyclic");
  const int cycles = rows.Column("Cycles");
  const std::array numbers{rows.Column("Head"),       rows.Column("Radius"), rows.Column("TopElev"),
                           rows.Column("BottomElev"), rows.Column("Time"),   rows.Column("StartHead"),
                           rows.Column("SS")};
  std::vector<DeckWell> wells;
  while (rows.Next()) {
    DeckWell well;
    well.vid = rows.Long(vid);
    well.label = rows.Text(label);
    well.at = {rows.Double(0), rows.Double(1)};
    const std::array targets{&well.head, &well.radius,     &well.top,    &well.bottom,
                             &well.time, &well.start_head, &well.storage};
    for (std::size_t i = 0; i < targets.size(); ++i) *targets[i] = rows.Double(numbers[i]);
    well.cyclic = rows.Bool(cyclic);
    well.cycles = rows.Long(cycles);
    wells.push_back(std::move(well));
  }
  return wells;
}

double ValueOf(const Ormel& ormel, const DeckWell& well, Item item) {
  switch (item) {
    case Item::kX:
      return WToM_X(ormel, well.at.x);
    case Item::kY:
    case Item::kRimY:
      return WToM_Y(ormel, well.at.y);
    case Item::kRimX:
      return WToM_X(ormel, well.at.x) + well.radius;  // the radius is in computation units already
    case Item::kHead:
      return well.head;
    case Item::kRadius:
      return well.radius;
    case Item::kTop:
      return well.top;
    case Item::kBottom:
      return well.bottom;
    case Item::kTime:
      return well.time;
    case Item::kStartHead:
      return well.start_head;
    case Item::kStorage:
      return well.storage;
    case Item::kZero:
      return 0.0;
  }
  return 0.0;
}

class GroupWriter {
 public:
  GroupWriter(DeckContext& context, const WellGroup& group) : context_(context), group_(group) {
    for (const Column& column : group.columns) masks_.emplace_back(column.mask);
  }

  void Write(const DeckWell& well) {
    if (!well.cyclic || group_.transient == 0) {
      WriteLine(well);
      return;
    }
    // On for one period, back for the next: each record adds its rate from its time on.
    double sign = 1.0;
    for (std::int64_t i = 1; i <= 2 * well.cycles; ++i, sign = -sign) {
      DeckWell turn = well;
      turn.head = well.head * sign;
      turn.time = well.time * static_cast<double>(i);
      WriteLine(turn);
    }
  }

  void AddRow(const DeckWell& well) {
    if (group_.pond != 0) return;
    if (group_.transient != 0) {
      // Several records of one label are one well.
      if (well.label == last_label_) return;
      last_label_ = well.label;
    }
    context_.rows.Well(well.label, VertexLabel("WL_", well.vid), well.at,
                       group_.head_specified != 0 ? well.head : 0.0);
  }

 private:
  void WriteLine(const DeckWell& well) {
    DeckLine line("  ");
    for (std::size_t i = 0; i < masks_.size(); ++i)
      line.Number(masks_[i], ValueOf(context_.ormel, well, group_.columns[i].item));
    context_.Line(line.Text(VertexLabel("WL_", well.vid)));
  }

  DeckContext& context_;
  const WellGroup& group_;
  std::vector<NumberMask> masks_;
  std::string last_label_;
};

}  // namespace

void WriteWells(DeckContext& context) {
  for (const WellGroup& group : kGroups) {
    const std::vector<DeckWell> wells = ReadGroup(context.db, group);
    if (wells.empty()) continue;
    if (group.partial != 0) context.Recommend(kIterationsForPartialWells);
    context.deck.Line(group.element);
    context.deck.Line(group.condition);
    GroupWriter writer(context, group);
    for (const DeckWell& well : wells) {
      if (IsPlainDischarge(group) && well.label.starts_with("Mirror_")) continue;  // belongs to the WHPAs
      writer.Write(well);
      writer.AddRow(well);
    }
    context.deck.Line(" quit ");
  }
}

}  // namespace ormel
