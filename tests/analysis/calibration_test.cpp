// Statistics of sets that can be checked by hand, the rows that count nowhere, observed discharges, the form.
#include "analysis/calibration.h"

#include <gtest/gtest.h>

#include <cmath>

#include "analysis/calibration_charts.h"
#include "analysis/calibration_form.h"
#include "core/chart.h"
#include "core/publisher.h"
#include "core/table.h"
#include "model/linesinks.h"
#include "model/observations.h"
#include "solver/deck_labels.h"
#include "solver/result_rows.h"
#include "support/test_project.h"

namespace ormel::test {
namespace {

/// Keeps what is asked for.
struct FakePublisher : Publisher {
  std::string ChartPng(const Chart& chart, const PictureShape&) override {
    charts.push_back(chart.title);
    return "png";
  }
  std::string MapPng(const PictureShape&, const std::optional<MapRect>&) override { return "png"; }
  std::string SaveChart(const Chart& chart, const std::string& path) override {
    charts.push_back(chart.title);
    saved = path;
    return failure;
  }
  std::string SavePdf(const std::string&, const PageStyle&, const std::string&,
                      const std::function<bool(double)>&) override {
    return {};
  }
  std::vector<std::string> charts;
  std::string saved, failure;
};

struct CalibrationTest : testing::Test {
  TestProject project;
  Ormel& ormel = project.ormel;
  FakePublisher publisher;

  CalibrationTest() {
    ormel.ports.publisher = &publisher;
    ormel.solution.ValidSolution = true;
    ormel.window.SolveWindow = {0, 1000, 1000, 0};
  }
  void Point(const std::string& label, double observed, double modelled, MapPoint at = {10, 20}) {
    const Vid vid = StoreTestPoint(ormel, {label, observed}, at);
    ormel.db().Execute(
        "insert into TPResults(Label,VID,ObsHead,ModelHead,Difference,X,Y) values(?,?,?,?,?,?,?)",
        {label, vid, observed, modelled, observed - modelled, at.x, at.y});
  }
  CalibrationStatistics Statistics() { return StatisticsOf(ReadCalibration(ormel).points); }
};

TEST_F(CalibrationTest, StatisticsByHand) {
  Point("A", 9, 10);
  Point("B", 23, 20);
  const CalibrationStatistics two = Statistics();
  EXPECT_EQ(two.count, 2U);
  EXPECT_DOUBLE_EQ(two.maximum, 3);
  EXPECT_DOUBLE_EQ(two.minimum, -1);
  EXPECT_DOUBLE_EQ(two.average, 1);
  EXPECT_DOUBLE_EQ(two.median, 1);
  EXPECT_DOUBLE_EQ(two.mean_absolute, 2);
  EXPECT_DOUBLE_EQ(two.root_mean_square, std::sqrt(5.0));
  // Mean observed 16, deviations 49 + 49; squares 1 + 9.
  EXPECT_DOUBLE_EQ(*two.determination, 1.0 - 10.0 / 98.0);
  EXPECT_DOUBLE_EQ(*two.range_percent, 100.0 * std::sqrt(5.0) / 14.0);
  // An odd number: 1.5 is rounded to 2, 2.5 to 2, 3.5 to 4.
  Point("C", 20, 20);
  EXPECT_DOUBLE_EQ(Statistics().median, 3);
  EXPECT_DOUBLE_EQ(Statistics().middle, 0);
  Point("D", 24, 20);
  Point("E", 25, 20);
  EXPECT_DOUBLE_EQ(Statistics().median, 3) << "-1 0 3 4 5";
  Point("F", 26, 20);
  Point("G", 27, 20);
  EXPECT_DOUBLE_EQ(Statistics().median, 5) << "-1 0 3 4 5 6 7";
  EXPECT_DOUBLE_EQ(Statistics().middle, 4);
}

TEST_F(CalibrationTest, EqualObservedHeadsHaveNoShareOfARange) {
  Point("A", 5, 4);
  Point("B", 5, 7);
  EXPECT_FALSE(Statistics().determination.has_value());
  EXPECT_FALSE(Statistics().range_percent.has_value());
}

TEST_F(CalibrationTest, DryAndUnansweredPointsCountNowhereAndAreNamed) {
  Point("A", 9, 10);
  Point("B", 23, 20);
  Point("Dry", 12, -9999);
  ormel.db().Execute(
      "insert into TPResults(Label,VID,ObsHead,ModelHead,Difference) values('Lost',99,12,0,0)");
  const CalibrationData data = ReadCalibration(ormel);
  EXPECT_EQ(data.points.size(), 2U);
  EXPECT_EQ(data.dry, std::vector<std::string>{"Dry"});
  EXPECT_EQ(data.unanswered, std::vector<std::string>{"Lost"});
  EXPECT_DOUBLE_EQ(data.Max, 23);
  EXPECT_DOUBLE_EQ(data.Min, 9);
  const CalibrationStats form(ormel, data);
  EXPECT_NE(form.Text("lblLeftOut").find("dry in the model: Dry."), std::string::npos);
  EXPECT_NE(form.Text("lblLeftOut").find("without a result: Lost."), std::string::npos);
}

TEST_F(CalibrationTest, NegativeHeadsKeepTheUpperBoundAtZero) {
  Point("A", -9, -10);
  Point("B", -23, -20);
  const CalibrationData data = ReadCalibration(ormel);
  EXPECT_DOUBLE_EQ(data.Max, -1e-30);
  EXPECT_DOUBLE_EQ(data.Min, -23);
}

TEST_F(CalibrationTest, ChartsHoldThePointsAndTheirLines) {
  Point("A", 9, 10);
  Point("B", 23, 20);
  Point("C", 20, 20);
  const CalibrationData data = ReadCalibration(ormel);
  const Chart fit = FitChart(ormel, data);
  ASSERT_EQ(fit.series.size(), 2U);
  EXPECT_EQ(fit.series[0].points[0].x, 23);
  EXPECT_EQ(fit.series[0].points[1].y, 9);
  EXPECT_EQ(fit.series[1].points[2].label, "B");
  EXPECT_EQ(fit.series[1].points[2].x, 23);
  EXPECT_EQ(fit.series[1].points[2].y, 20);
  EXPECT_EQ(fit.x.title, "Observed head [m]");
  // (Max - Min) i / ((N - 1) / 4) = 14 i / 0.5
  const Chart order = OrderChart(ormel, data);
  const std::vector<ChartPoint>& points = order.series.back().points;
  ASSERT_EQ(points.size(), 3U);
  EXPECT_EQ(points[0].x, -1);
  EXPECT_EQ(points[1].y, 28);
  EXPECT_EQ(points[2].y, 56);
  EXPECT_GT(order.y.to, 56);
  EXPECT_EQ(order.y.ticks.back().at, 56);
  EXPECT_EQ(order.y.ticks.back().text, "100");
  const Chart residual = ResidualChart(ormel, data);
  EXPECT_EQ(residual.series.back().points[2].y, 3);
}

TEST_F(CalibrationTest, TheFormShowsNumbersPointsAndTheTestPointOnTheMap) {
  Point("A", 9, 10);
  Point("B", 23, 20, {5000, 300});
  project.ui.OnForm("CalibrationStats", [this](Form& form) {
    EXPECT_EQ(form.Title(), "Head Calibration Statistics");
    const char* texts[] = {"3.0", "-1.0", "1.0", "1.0", "2.0", "2.2", "2"};
    for (int i = 0; i < 7; ++i) EXPECT_EQ(form.Text("tbStats(" + std::to_string(i) + ")"), texts[i]) << i;
    EXPECT_FALSE(form.State("optGraph(3)").enabled) << "no observed discharge";
    const ChartPick pick{1, 1};
    form.PointAt("chart", &pick);
    EXPECT_EQ(form.Text("chart"),
              "Test point information\nSelected test point: B\nObserved head:       23.0\n"
              "Modeled head:        20.0\nDifference:          3.0");
    form.PointAt("chart", nullptr);
    EXPECT_EQ(form.Text("chart"), "");
    form.PickPoint("chart", pick);
    form.Click("EDIT_COPYDATA");
    form.SetChecked("optGraph(1)", true);
    EXPECT_EQ(form.State("chart").chart->title, "Differences in Order");
    project.ui.ChooseFile(project.dir / "fit.svg");
    form.Click("SaveChart");
  });
  CALIBRATION_STATS(ormel);
  EXPECT_EQ(ormel.selection.SelectedType, Element::kTestPoint);
  EXPECT_EQ(project.Text("select Label from TestPoints where VID=" + std::to_string(ormel.selection.vid)),
            "B");
  // It was out of the window: the window goes there, with the width that it had.
  ASSERT_FALSE(project.view.zooms.empty());
  EXPECT_EQ(project.view.zooms.back(), Zoom::kApplyWindow);
  EXPECT_DOUBLE_EQ((project.view.last_rect.x1 + project.view.last_rect.x2) / 2, 5000);
  EXPECT_DOUBLE_EQ(project.view.last_rect.Width(), 1000);
  EXPECT_EQ(project.ui.clipboard,
            "Number of Observations: 2\nMaximum Difference: 3.0\nMinimum Difference: -1.0\n"
            "Average Difference (AD): 1.0\nMedian Difference (MAD): 1.0\nMean Absolute Difference: 2.0\n"
            "RMS Difference: 2.2\n");
  EXPECT_EQ(publisher.charts.back(), "Differences in Order");
  EXPECT_EQ(publisher.saved, project.dir / "fit.svg");
}

TEST_F(CalibrationTest, TooFewPointsAndTheSilentForm) {
  Point("A", 9, 10);
  CALIBRATION_STATS(ormel, true);
  EXPECT_TRUE(project.ui.boxes.empty());
  EXPECT_TRUE(ormel.menus.Enabled("CALIBRATION_STATS"));
  CALIBRATION_STATS(ormel);
  EXPECT_EQ(project.ui.LastText(), "Not enough test points for statistics");
  EXPECT_TRUE(project.ui.shown_forms.empty());
  ormel.solution.ValidSolution = false;
  CALIBRATION_STATS(ormel, true);
  EXPECT_FALSE(ormel.menus.Enabled("CALIBRATION_STATS"));
  ormel.solution.ValidSolution = true;
  ormel.db().Execute("drop table TPResults");
  CALIBRATION_STATS(ormel);
  EXPECT_EQ(project.ui.LastText().find("Unhandled error calculating statistics\nOrmel may have become"), 0U)
      << project.ui.LastText();
}

struct FlowsTest : CalibrationTest {
  Pid river = 0, given = 0, line = 0;
  FlowsTest() {
    const std::vector<MapPoint> points{{0, 0}, {100, 0}, {200, 0}};
    river = StoreLinesink(ormel, {.Label = "River", .HeadSpecified = true}, points);
    given = StoreLinesink(ormel, {.Label = "Canal", .HeadSpecified = false}, points);
    line = StoreFluxLine(ormel, "Gap", points);
    const auto segment = [this](Pid pid, int seq, double discharge, double head) {
      ormel.db().Execute(
          "insert into LSResults(Label,VadoxLabel,X1,Y1,X2,Y2,SpecifiedHead,Discharge,CalculatedHead,"
          "Resistance) values('x',?,0,0,1,1,?,?,5,0)",
          {SegmentLabel("LS_", pid, seq), head, discharge});
    };
    segment(river, 101, 40, 6);
    segment(river, 201, 60.5, 6);
    segment(given, 101, 0, kNoSpecifiedHead);
    ormel.db().Execute("insert into FIResults(Label,PID,TotalFlux) values('Gap',?,-7)", {line});
    Point("A", 9, 10);
    Point("B", 23, 20);
  }
  ObservedFlow Flow(const std::string& label) {
    for (const ObservedFlow& flow : ReadObservedFlows(ormel))
      if (flow.label == label) return flow;
    return {};
  }
};

TEST_F(FlowsTest, AreTheSumsOfTheirSegments) {
  EXPECT_DOUBLE_EQ(*Flow("River").modelled, 100.5);
  EXPECT_FALSE(Flow("Canal").modelled.has_value());
  EXPECT_DOUBLE_EQ(*Flow("Gap").modelled, -7);
  EXPECT_FALSE(Flow("River").observed.has_value());
}

TEST_F(FlowsTest, ObservationsAreTypedTakenBackAndRefused) {
  project.ui.OnForm("CalibrationStats", [this](Form& form) {
    const Table& table = *form.State("flows").table;
    ASSERT_EQ(table.Rows(), 3U);
    EXPECT_EQ(table.Text(2, 0), "River");
    form.EditCell("flows", 2, 2, "ninety");
    EXPECT_EQ(project.ui.LastTitle(), "Bad Entry");
    form.EditCell("flows", 2, 2, "90");
    EXPECT_EQ(form.State("flows").table->Text(2, 4), "-10.500");
    EXPECT_TRUE(form.State("optGraph(3)").enabled);
    form.SetChecked("optGraph(3)", true);
    const std::vector<ChartPoint>& points = form.State("chart").chart->series.back().points;
    ASSERT_EQ(points.size(), 1U);
    EXPECT_EQ(points[0].x, 90);
    EXPECT_EQ(points[0].y, 100.5);
  });
  CALIBRATION_STATS(ormel);
  EXPECT_DOUBLE_EQ(*Flow("River").observed, 90);
  StoreObservedFlow(ormel, river, std::nullopt);
  EXPECT_FALSE(Flow("River").observed.has_value());
}

TEST_F(FlowsTest, AnOlderProjectGetsTheField) {
  ormel.db().Execute("alter table Polygons drop column ObsDischarge");
  EXPECT_FALSE(Flow("River").observed.has_value());
  StoreObservedFlow(ormel, line, -8.25);
  EXPECT_DOUBLE_EQ(*Flow("Gap").observed, -8.25);
  EXPECT_FALSE(Flow("River").observed.has_value());
}

}  // namespace
}  // namespace ormel::test
