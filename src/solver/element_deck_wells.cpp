// Wells of all seven kinds.
#include "solver/element_deck_wells.h"

#include <array>
#include <span>
#include <vector>

#include "solver/deck_labels.h"
#include "solver/deck_line.h"
#include "solver/element_deck.h"
#include "solver/text_sink.h"

namespace ormel {
namespace {

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
  const char* element;
  const char* condition;
  std::span<const Column> columns;
};

/// By WellKind.
constexpr std::array<WellGroup, kWellKinds> kGroups{{
    {" well ", " discharge ", kDischargeWell},
    {" well ", " head ", kHeadWell},
    {" ppwell ", " discharge ", kPartialWell},
    {" ppwell ", " head ", kPartialWell},
    {" twell ", " discharge ", kTransientWell},
    {" sinkdisk ", " discharge ", kDischargeDisk},
    {" sinkdisk ", " head ", kHeadDisk},
}};

double ValueOf(const WellInput& well, Item item) {
  switch (item) {
    case Item::kX:
      return well.place.at.x;
    case Item::kY:
    case Item::kRimY:
      return well.place.at.y;
    case Item::kRimX:
      return well.place.at.x + well.radius;
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
  GroupWriter(TextSink& deck, WellKind kind) : deck_(deck), kind_(kind) {
    for (const Column& column : Group().columns) masks_.emplace_back(column.mask);
  }

  const WellGroup& Group() const { return kGroups[static_cast<std::size_t>(kind_)]; }

  void Write(const WellInput& well) {
    if (!well.cyclic || kind_ != WellKind::kTransient) {
      WriteLine(well);
      return;
    }
    // On for one period, back for the next: each record adds its rate from its time on.
    double sign = 1.0;
    for (std::int64_t i = 1; i <= 2 * well.cycles; ++i, sign = -sign) {
      WellInput turn = well;
      turn.head = well.head * sign;
      turn.time = well.time * static_cast<double>(i);
      WriteLine(turn);
    }
  }

 private:
  void WriteLine(const WellInput& well) {
    DeckLine line("  ");
    for (std::size_t i = 0; i < masks_.size(); ++i)
      line.Number(masks_[i], ValueOf(well, Group().columns[i].item));
    deck_.Line(line.Text(VertexLabel("WL_", well.vid)).str());
  }

  TextSink& deck_;
  WellKind kind_;
  std::vector<NumberMask> masks_;
};

}  // namespace

void WriteWells(TextSink& deck, const std::array<std::vector<WellInput>, kWellKinds>& wells) {
  for (std::size_t kind = 0; kind < kWellKinds; ++kind) {
    if (wells[kind].empty()) continue;
    GroupWriter writer(deck, static_cast<WellKind>(kind));
    deck.Line(writer.Group().element);
    deck.Line(writer.Group().condition);
    for (const WellInput& well : wells[kind])
      if (!well.image) writer.Write(well);
    deck.Line(" quit ");
  }
}

void WriteDischargeWells(TextSink& deck, std::span<const WellInput> wells) {
  GroupWriter writer(deck, WellKind::kDischarge);
  for (const WellInput& well : wells) writer.Write(well);
}

}  // namespace ormel
