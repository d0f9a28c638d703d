// The panels on a model that the real solver has solved.
#include <gtest/gtest.h>

#include <cmath>

#include "core/table.h"
#include "model/inhomogeneities.h"
#include "model/linesinks.h"
#include "model/selection.h"
#include "model/vertices.h"
#include "model/wells.h"
#include "platform/posix_processes.h"
#include "solver/driver.h"
#include "store/database.h"
#include "support/test_project.h"
#include "text/numbers.h"
#include "tools/info_panels.h"

namespace ormel::test {
namespace {

/// The number of a label such as "10,558.112 m^3/day".
double NumberOf(const Form& form, const char* name) {
  std::string text = form.Text(name);
  text = text.substr(0, text.find(' '));
  std::erase(text, ',');
  return Val(text);
}

TEST(RealPanels, ARiversDischargeIsTheFluxIntoTheRingAroundIt) {
  TestProject p;
  PosixProcesses programs{ORMEL_BIN_DIR};
  p.ormel.ports.processes = &programs;
  p.ormel.window.SolveWindow = {0, 2000, 2000, 0};
  p.ormel.db().Execute(
      "update Model set AQThickness='20', AQHydCond=10, AQPorosity=0.25, CONTOURShow=0, TRACECompute=0, "
      "SOLVERIterations=4, ViewErrorLog=0, ViewMessageLog=0");
  const MapPoint course[] = {{400, 500}, {800, 550}, {1200, 500}};
  const Pid river = StoreLinesink(
      p.ormel,
      {.Label = "River", .StartingHead = 15, .EndingHead = 14.5, .Resistance = 1, .Width = 8, .Depth = 2},
      course);
  const MapPoint shore[] = {{200, 1900}, {1800, 1900}};
  StoreLinesink(p.ormel, {.Label = "Lake", .StartingHead = 17, .EndingHead = 17}, shore);
  StoreWell(p.ormel, {.Label = "Town", .Head = 400, .Radius = 0.3}, {900, 1200});
  const MapPoint corners[] = {{700, 1000}, {1300, 1000}, {1300, 1500}, {700, 1500}};
  const Pid gravel =
      StoreInhomogeneity(p.ormel, {.Label = "Gravel", .HydCond = 40, .ChangeK = true}, corners);
  const MapPoint ring[] = {{350, 400}, {1250, 400}, {1250, 650}, {350, 650}, {350, 400}};
  const Pid line = AddPolygonWithVertices(p.ormel, false, ring);
  p.ormel.db().Execute("insert into FluxInspect(Label,PID) values('Ring',?)", {line});
  ModelRunVadox(p.ormel, {});
  ASSERT_TRUE(p.ormel.solution.ValidSolution) << p.ui.LastText();

  p.ui.OnForm("LSInfo", [&](Form& form) {
    const double total = NumberOf(form, "txDischarge");
    EXPECT_GT(total, 10.0);
    EXPECT_NEAR(std::abs(p.Number("select TotalFlux from FIResults")), total, 1e-3);
    EXPECT_FALSE(form.State("txMissing").visible);
    const Table& segments = *form.State("grid").table;
    for (std::size_t i = 0; i < 2; ++i)
      EXPECT_NEAR(segments.At(i, 4).AsDouble(), i == 0 ? 14.875 : 14.625, 1e-3) << "at the segment's middle";
  });
  ShowInfoPanel(p.ormel, Element::kLinesink, river);
  p.ormel.selection.SelectedType = Element::kLinesink;
  p.ormel.selection.pid = river;
  p.ormel.selection.vid = VerticesOf(p.ormel, river)[1].vid;
  EXPECT_NE(DescribeSelection(p.ormel).find("  Discharge: "), std::string::npos);
  p.ui.OnForm("INInfo", [&](Form& form) {
    EXPECT_NEAR(NumberOf(form, "txArea"), p.Number("select max(DomainArea) from INResults"), 0.1);
    EXPECT_GT(std::abs(NumberOf(form, "txJump")), 1.0) << "the potential jumps";
    EXPECT_LT(NumberOf(form, "txDeltaHead"), 0.05) << "the head hardly does";
  });
  ShowInfoPanel(p.ormel, Element::kInhomogeneity, gravel);
  EXPECT_EQ(p.ui.shown_forms, (std::vector<std::string>{"LSInfo", "INInfo"}));

  // Results of before stay on view when the user keeps them, but a number that is given anew finds none.
  ormel::Resequence(p.ormel, river, VerticesOf(p.ormel, river).front().vid);
  p.ormel.db().Execute("delete from Vertices where VID=?", {VerticesOf(p.ormel, river)[1].vid});
  p.ormel.db().Execute("update Vertices set Seq=101 where PID=? and Seq=300", {river});
  p.ormel.selection.SelectedType = Element::kLinesink;
  p.ormel.selection.pid = river;
  p.ormel.selection.vid = VerticesOf(p.ormel, river).back().vid;
  ASSERT_GT(p.Number("select count(*) from LSResults where VadoxLabel like 'LS_*_0101'"), 0.0);
  EXPECT_EQ(DescribeSelection(p.ormel).find("Discharge: "), std::string::npos) << DescribeSelection(p.ormel);
  p.ui.OnForm("LSInfo", [](Form& form) { EXPECT_TRUE(form.State("txMissing").visible); });
  ShowInfoPanel(p.ormel, Element::kLinesink, river);
}

}  // namespace
}  // namespace ormel::test
