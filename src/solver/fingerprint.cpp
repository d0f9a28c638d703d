#include "solver/fingerprint.h"

#include <span>
#include <string_view>

#include "core/ormel.h"
#include "store/bulk.h"
#include "store/database.h"

namespace ormel {
namespace {

constexpr std::string_view kSolution[] = {
    "select VID,PID,Seq,X,Y from Vertices where PID in (select PID from LinesinkStrings union select PID "
    "from "
    "NoFlowStrings union select PID from Inhomogeneities) or VID in (select VID from Wells where Label not "
    "like 'Mirror_*') order by VID",
    "select "
    "VID,Head,Radius,Transient,Cyclic,Cycles,SS,Time,TopElev,BottomElev,HeadSpecified,PPWell,StartHead,"
    "Pond,Label from Wells where Label not like 'Mirror_*' order by VID",
    "select * from LinesinkStrings order by PID",
    "select PID,HydCond,Thickness,Porosity,BottomElevation,Closed from NoFlowStrings order by PID",
    "select PID,HydCond,BottomElevation,AverageHead,Recharge,Porosity,ChangeK,ChangeR,ChangeP,ChangeB,ChangeA"
    " from Inhomogeneities order by PID",
    "select AQBase,AQThickness,AQHydCond,AQRecharge,AQPorosity,BasemapMeters,ComputeMeters,UNIFLOWRefX,"
    "UNIFLOWRefY,UNIFLOWRefHead,UNIFLOWGradient,UNIFLOWOrientation,UNIFLOWCompute from Model"};

constexpr std::string_view kContours[] = {
    "select CONTOURShow,CONTOURMinimum,CONTOURMaximum,CONTOURInterval,CONTOURLevel from Model"};

constexpr std::string_view kPaths[] = {
    "select TRACECompute,TRACEStep,TRACEMaxTime from Model", "select * from Particles order by VID",
    "select VID,X,Y from Vertices where VID in (select VID from Particles) order by VID",
    "select VID,NParticles,StartElev from Wells where Label not like 'Mirror_*' order by VID"};

constexpr std::string_view kRerun[] = {"select VID,ObsHead from TestPoints order by VID",
                                       "select PID from FluxInspect order by PID",
                                       "select VID,PID,Seq,X,Y from Vertices where VID in (select VID from "
                                       "TestPoints) or PID in (select PID from "
                                       "FluxInspect) order by VID"};

/// Fowler, Noll and Vo's hash of 64 bits, variant 1a, of all rows.
std::uint64_t HashOf(Ormel& ormel, std::span<const std::string_view> queries) {
  std::uint64_t value = 14695981039346656037ULL;
  const auto add = [&value](std::string_view text) {
    for (const char c : text) {
      value ^= static_cast<unsigned char>(c);
      value *= 1099511628211ULL;
    }
  };
  for (const std::string_view query : queries) {
    add(query);
    RowReader rows(ormel.db(), query);
    while (rows.Next()) {
      for (int column = 0; column < rows.ColumnCount(); ++column) {
        add(rows.Get(column).AsText());
        add("\x1f");
      }
      add("\x1e");
    }
  }
  return value;
}

}  // namespace

Fingerprint FingerprintOf(Ormel& ormel) {
  return {HashOf(ormel, kSolution), HashOf(ormel, kContours), HashOf(ormel, kPaths), HashOf(ormel, kRerun)};
}

}  // namespace ormel
