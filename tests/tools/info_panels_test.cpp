// The information panels: given values, sums over the results, and strings without results.
#include "tools/info_panels.h"

#include <gtest/gtest.h>

#include "core/table.h"
#include "model/inhomogeneities.h"
#include "model/linesinks.h"
#include "solver/result_rows.h"
#include "store/database.h"
#include "support/test_project.h"

namespace ormel::test {
namespace {

/// Feet on the map, metres in the computation.
struct PanelProject : TestProject {
  PanelProject() : TestProject(false, true) {}
  Pid AddString(const LinesinkRow& row) {
    const MapPoint points[] = {{0, 0}, {1000, 0}, {1000, 500}};
    return StoreLinesink(ormel, row, points);
  }
  void Result(const std::string& label, double specified, double calculated, double discharge, double error) {
    ResultRows(ormel.db()).Linesink("River", label, {0, 0}, {1000, 0}, specified);
    ormel.db().Execute("update LSResults set CalculatedHead=?,Discharge=?,Error=? where VadoxLabel=?",
                       {calculated, discharge, error, label});
  }
};

std::string Shown(const Form& form, const char* name) {
  const ControlState& state = form.State(name);
  return state.visible ? state.text : "-";
}

TEST(LSInfo, SumsTheResultsOfItsSegments) {
  PanelProject p;
  const Pid pid = p.AddString(
      {.Label = "River", .StartingHead = 20, .EndingHead = 19, .Resistance = 2, .Width = 5, .Depth = 1});
  p.Result("LS_" + std::string(6 - std::to_string(pid).size(), '0') + std::to_string(pid) + "_0101", 19.5,
           19.51, 100.25, -0.01);
  LSInfo panel(p.ormel);
  panel.init(pid);
  EXPECT_FALSE(panel.Crash);
  EXPECT_EQ(Shown(panel, "txKind"), "Head-specified");
  EXPECT_EQ(Shown(panel, "txVertices"), "3 (2 segments)");
  EXPECT_EQ(Shown(panel, "txLength"), "1,500.00 ft");
  EXPECT_EQ(Shown(panel, "txStart"), "20 m");
  EXPECT_EQ(Shown(panel, "txResistance"), "2 days");
  EXPECT_EQ(Shown(panel, "txDischarge"), "100.250 m^3/day");
  EXPECT_EQ(Shown(panel, "txError"), "1.0000E-02 m");
  EXPECT_EQ(Shown(panel, "txMissing"), "1 segment") << "the second one was drawn after the solve";
  const Table& table = *panel.State("grid").table;
  EXPECT_EQ(table.Text(0, 5), "19.510");
  EXPECT_EQ(table.Text(0, 8), "3.2890E-01") << "per metre, not per foot";
  EXPECT_EQ(table.Text(1, 7), "") << "no result is not zero";
}

TEST(LSInfo, GivenDischargeIsThatOfTheDeck) {
  PanelProject p;
  const Pid pid =
      p.AddString({.Label = "Drainage", .HeadSpecified = false, .StartingHead = 1, .EndingHead = 4});
  LSInfo panel(p.ormel);
  panel.init(pid);
  // Densities at the middles of the segments: 1 + 3/3 and 1 + 3 (1250/1500).
  EXPECT_EQ(panel.State("grid").table->Text(0, 7), "609.600");
  EXPECT_EQ(panel.State("grid").table->Text(1, 7), "533.400");
  EXPECT_EQ(Shown(panel, "txDischarge"), "1,143.000 m^3/day");
  EXPECT_EQ(Shown(panel, "txStart"), "1 m^2/day");
  EXPECT_EQ(Shown(panel, "txWidth"), "-");
  EXPECT_EQ(Shown(panel, "txError"), "-");
}

TEST(InfoPanels, WithoutASolutionOnlyTheProperties) {
  PanelProject p;
  const Pid pid = p.AddString({.Label = "River"});
  p.ui.OnForm("LSInfo", [](Form& form) {
    EXPECT_EQ(Shown(form, "txLabel"), "River");
    EXPECT_EQ(Shown(form, "txDischarge"), "-");
    EXPECT_FALSE(form.State("grid").visible);
  });
  ShowInfoPanel(p.ormel, Element::kLinesink, pid);
  ShowInfoPanel(p.ormel, Element::kLinesink, 4711);
  ShowInfoPanel(p.ormel, Element::kInhomogeneity, 4711);
  EXPECT_EQ(p.ui.shown_forms, std::vector<std::string>{"LSInfo"}) << "a panel of nothing is not shown";
}

TEST(INInfo, ShowsWhatChangesAndTheErrorAlongTheEdge) {
  PanelProject p;
  const MapPoint corners[] = {{0, 0}, {300, 0}, {300, 400}};
  const Pid pid = StoreInhomogeneity(
      p.ormel, {.Label = "Gravel", .HydCond = 40, .Recharge = 0.001, .BottomElevation = 3, .ChangeK = true},
      corners);
  const std::string stem = "IN_" + std::string(6 - std::to_string(pid).size(), '0') + std::to_string(pid);
  for (std::size_t i = 0; i < std::size(corners); ++i) {
    const std::string label = stem + "_0" + std::to_string(i) + "01";
    ResultRows(p.ormel.db()).Inhomogeneity("Gravel", label);
    p.ormel.db().Execute("update INResults set X1=?,Y1=? where VadoxLabel=?",
                         {corners[i].x, corners[i].y, label});
  }
  p.ormel.db().Execute(
      "update INResults set AvgPotJump=1234.5,StrPotJumpNode=1000,DeltaPNode=0.001,DeltaPCntr=-0.004");
  p.ormel.solution.ValidSolution = true;
  p.ui.OnForm("INInfo", [](Form& form) {
    EXPECT_EQ(Shown(form, "txArea"), "60,000.0 ft^2");
    EXPECT_EQ(Shown(form, "txPerimeter"), "1,200.00 ft");
    EXPECT_EQ(Shown(form, "txHydCond"), "40 m/day");
    EXPECT_EQ(Shown(form, "txBase"), "as around it");
    EXPECT_EQ(Shown(form, "txRecharge"), "0.001 m/day");
    EXPECT_EQ(Shown(form, "txJump"), "1.2345E+03 m^3/day");
    EXPECT_EQ(Shown(form, "txDeltaHead"), "4.0000E-03 m");
    EXPECT_EQ(Shown(form, "txMissing"), "-");
    EXPECT_EQ(form.State("grid").table->Rows(), 3U);
  });
  ShowInfoPanel(p.ormel, Element::kInhomogeneity, pid);
}

}  // namespace
}  // namespace ormel::test
