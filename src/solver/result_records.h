// The records of the extraction file as tables: which field goes to which column.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace ormel {

enum class Take {
  kPlain,
  kX,                   ///< a model coordinate, to be brought back to the map
  kY,                   ///< likewise
  kAddedToFieldBefore,  ///< the sum of this field and the one in front of it
};

struct ResultColumn {
  std::string_view name;
  std::size_t field = 0;  ///< from 1
  Take take = Take::kPlain;
};

enum class SectionKind {
  kRecord,           ///< one line is one row
  kHeadAndVertices,  ///< a line of `label_field` fields is a vertex, any other the head of those that follow
  kFlux,             ///< adds a row
  kIgnored,          ///< checked and not stored
};

enum class ResultSet { kWells, kLinesinks, kDomains, kBarriers };

struct Section {
  std::string_view name;  ///< as the box about a bad record has it
  SectionKind kind = SectionKind::kRecord;
  ResultSet table = ResultSet::kWells;
  std::size_t least_fields = 0;
  std::size_t label_field = 0;  ///< the deck label; also the number of fields of a vertex
  std::span<const ResultColumn> columns;
  std::span<const ResultColumn> held;  ///< from the head record
};

inline constexpr std::array kHeadWellColumns{
    ResultColumn{"X", 1, Take::kX},   ResultColumn{"Y", 2, Take::kY},
    ResultColumn{"Radius", 3},        ResultColumn{"Discharge", 4},
    ResultColumn{"SpecifiedHead", 5}, ResultColumn{"Head", 6, Take::kAddedToFieldBefore}};
inline constexpr std::array kDischargeWellColumns{ResultColumn{"X", 1, Take::kX},
                                                  ResultColumn{"Y", 2, Take::kY}, ResultColumn{"Radius", 3},
                                                  ResultColumn{"Discharge", 4}, ResultColumn{"Head", 5}};
inline constexpr std::array kHeadLinesinkColumns{
    ResultColumn{"X1", 1, Take::kX}, ResultColumn{"Y1", 2, Take::kY},  ResultColumn{"X2", 3, Take::kX},
    ResultColumn{"Y2", 4, Take::kY}, ResultColumn{"SpecifiedHead", 5}, ResultColumn{"CalculatedHead", 6},
    ResultColumn{"Discharge", 7},    ResultColumn{"Width", 8},         ResultColumn{"Resistance", 9},
    ResultColumn{"Depth", 10},       ResultColumn{"Error", 13}};
inline constexpr std::array kDrainColumns{
    ResultColumn{"X1", 1, Take::kX}, ResultColumn{"Y1", 2, Take::kY},  ResultColumn{"X2", 3, Take::kX},
    ResultColumn{"Y2", 4, Take::kY}, ResultColumn{"SpecifiedHead", 5}, ResultColumn{"CalculatedHead", 6},
    ResultColumn{"Discharge", 7},    ResultColumn{"Width", 8},         ResultColumn{"Resistance", 9},
    ResultColumn{"Depth", 10},       ResultColumn{"Error", 11}};
inline constexpr std::array kDomainHead{ResultColumn{"Conductivity", 2}, ResultColumn{"BottomElev", 3},
                                        ResultColumn{"ExtractRate", 4},  ResultColumn{"Porosity", 5},
                                        ResultColumn{"DomainArea", 6},   ResultColumn{"AvgPotJump", 7}};
inline constexpr std::array kDomainColumns{
    ResultColumn{"X1", 2, Take::kX},     ResultColumn{"Y1", 3, Take::kY},
    ResultColumn{"XC", 4, Take::kX},     ResultColumn{"YC", 5, Take::kY},
    ResultColumn{"StrPotJumpNode", 6},   ResultColumn{"ParabStrPotJump", 7},
    ResultColumn{"RealStrExtrNode", 8},  ResultColumn{"ImagStrExtrNode", 9},
    ResultColumn{"RealStrExtrCntr", 10}, ResultColumn{"Tfac", 11},
    ResultColumn{"DeltaPNode", 12},      ResultColumn{"DeltaPCntr", 13}};
inline constexpr std::array kBarrierHead{ResultColumn{"Conductivity", 2}, ResultColumn{"Width", 3},
                                         ResultColumn{"Porosity", 4}, ResultColumn{"WallBottomElev", 5}};
inline constexpr std::array kBarrierColumns{
    ResultColumn{"X1", 2, Take::kX},  ResultColumn{"Y1", 3, Take::kY},   ResultColumn{"XC", 4, Take::kX},
    ResultColumn{"YC", 5, Take::kY},  ResultColumn{"StrPotJumpNode", 6}, ResultColumn{"ParabStrPotJump", 7},
    ResultColumn{"DeltaFlowCntr", 8}, ResultColumn{"DeltaFlowNode", 9}};

inline constexpr Section kHeadWells{.name = "HEAD WELL record",
                                    .table = ResultSet::kWells,
                                    .least_fields = 7,
                                    .label_field = 7,
                                    .columns = kHeadWellColumns,
                                    .held = {}};
inline constexpr Section kDischargeWells{.name = "DISCHARGE WELL record",
                                         .table = ResultSet::kWells,
                                         .least_fields = 6,
                                         .label_field = 6,
                                         .columns = kDischargeWellColumns,
                                         .held = {}};
inline constexpr Section kHeadLinesinks{.name = "HEAD LINESINK record",
                                        .table = ResultSet::kLinesinks,
                                        .least_fields = 14,
                                        .label_field = 14,
                                        .columns = kHeadLinesinkColumns,
                                        .held = {}};
inline constexpr Section kDrains{.name = "DRAIN record",
                                 .table = ResultSet::kLinesinks,
                                 .least_fields = 12,
                                 .label_field = 12,
                                 .columns = kDrainColumns,
                                 .held = {}};
/// Line-sinks of given discharge keep the values that the deck writer put into their rows.
inline constexpr Section kDischargeLinesinks{.name = "DISCHARGE LINESINK record",
                                             .kind = SectionKind::kIgnored,
                                             .least_fields = 6,
                                             .columns = {},
                                             .held = {}};
inline constexpr Section kDomains{.name = "Inhomogeneity Record",
                                  .kind = SectionKind::kHeadAndVertices,
                                  .table = ResultSet::kDomains,
                                  .label_field = 14,
                                  .columns = kDomainColumns,
                                  .held = kDomainHead};
inline constexpr Section kBarriers{.name = "Horizontal Barrier record",
                                   .kind = SectionKind::kHeadAndVertices,
                                   .table = ResultSet::kBarriers,
                                   .label_field = 10,
                                   .columns = kBarrierColumns,
                                   .held = kBarrierHead};
inline constexpr Section kFluxes{.name = "FLUX INSPECTOR record",
                                 .kind = SectionKind::kFlux,
                                 .least_fields = 2,
                                 .columns = {},
                                 .held = {}};

struct SectionPhrase {
  std::string_view text;
  const Section* section;
};

/// The phrases of section headers in the order in which they are looked for: the first one found counts.
inline constexpr std::array kSectionPhrases{
    SectionPhrase{"discharge specified wells", &kDischargeWells},
    SectionPhrase{"head specified wells", &kHeadWells},
    SectionPhrase{"discharge specified line sinks", &kDischargeLinesinks},
    SectionPhrase{"drain", &kDrains},
    SectionPhrase{"head specified line sinks", &kHeadLinesinks},
    SectionPhrase{"trans", &kDomains},
    SectionPhrase{"slurry", &kBarriers},
    SectionPhrase{"flux", &kFluxes},
    SectionPhrase{"head specified partially penetrating wells", &kHeadWells},
    SectionPhrase{"discharge specified partially penetrating wells", &kDischargeWells},
    SectionPhrase{"Theis wells", &kDischargeWells},
};

}  // namespace ormel
