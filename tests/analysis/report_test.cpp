// Reports of a small project: sections, cells, refusals, progress and cancel.
#include "analysis/report.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "analysis/report_form.h"
#include "analysis/zones.h"
#include "core/table.h"
#include "model/observations.h"
#include "model/wells.h"
#include "support/test_project.h"

namespace ormel::test {
namespace {

struct ReportTest : testing::Test {
  TestProject project;
  Ormel& ormel = project.ormel;

  ReportTest() {
    StoreWell(ormel, {.Label = "Mill <1> & Co", .Head = 1234.5, .Radius = 0.3}, {100.25, 200});
    const std::vector<MapPoint> square{{0, 0}, {300, 0}, {300, 200}, {0, 200}};
    StoreCapzone(ormel, "Mill <1> & Co 10 years", square);
    StoreCapzone(ormel, "by hand 3 years", square);
  }
  std::string Description(const std::string& text) {
    std::ofstream(project.dir / "d.txt") << text;
    return project.dir / "d.txt";
  }
  ReportRequest Request(const std::string& description) {
    ReportRequest request;
    request.path = project.dir / "out.html";
    request.description = description;
    request.reason = "the model has been changed";
    return request;
  }
  std::string Written(const ReportRequest& request) {
    const ReportOutcome outcome = WriteReport(ormel, request);
    EXPECT_EQ(outcome.end, ReportEnd::kWritten) << outcome.failure;
    return ReadAll(request.path);
  }
};

TEST_F(ReportTest, CellsCarryAllDigitsTextsAreHarmlessAndHeadsHaveUnits) {
  const std::string html = Written(Request(
      Description("@title T\n@section w | Wells\n<p>{select count(*) from Wells} well in {project.file}</p>\n"
                  "@table W\n@select Label, Head/3 as Q, null as N from Wells\n@column Label | Well\n"
                  "@column Q | Rate | discharge | 0.0\n@column N | Nothing\n@end\n")));
  EXPECT_NE(html.find("<h2>1&nbsp; Wells</h2>"), std::string::npos);
  EXPECT_NE(html.find("<span class=\"value\" data-value=\"1\">1</span> well in town.orm"), std::string::npos);
  EXPECT_NE(html.find("colspan=\"3\">Table 1. W</th></tr>\n<tr><th align=\"left\">Well</th><th class=\"n\" "
                      "align=\"right\">Rate<br>"
                      "[m<sup>3</sup>/day]</th><th align=\"left\">Nothing</th></tr>\n</thead>"),
            std::string::npos)
      << html;
  EXPECT_NE(html.find("<tr><td>Mill &lt;1&gt; &amp; Co</td><td class=\"n\" align=\"right\" "
                      "data-value=\"411.5\">411.5</td><td></td></tr>"),
            std::string::npos)
      << html;
}

TEST_F(ReportTest, SectionsOfResultsSayWhyTheyAreEmptyAndOthersCanBeLeftOut) {
  const std::string description = Description(
      "@section a | First\n<p>one</p>\n@section r | Results | results\n<p>two</p>\n@section b | "
      "Last\n{contents}\n");
  ReportRequest request = Request(description);
  std::string html = Written(request);
  EXPECT_EQ(html.find("two"), std::string::npos);
  EXPECT_NE(html.find("no valid results, because the model has been changed."), std::string::npos);
  request.results = true;
  request.without = {"A"};
  html = Written(request);
  EXPECT_EQ(html.find("one"), std::string::npos);
  EXPECT_NE(html.find("two"), std::string::npos);
  EXPECT_NE(html.find("2&nbsp; <a href=\"#b\">Last</a>"), std::string::npos);
  request.without = {"z"};
  EXPECT_EQ(WriteReport(ormel, request).failure, "There is no section \"z\"; the sections are a, r, b.");
}

TEST_F(ReportTest, RefusalsNameFileLineAndRemedyAndLeaveTheOldReport) {
  std::ofstream(project.dir / "out.html") << "old";
  struct Case {
    const char* description;
    const char* words;
  };
  for (const Case& c :
       {Case{"@section a | A\n@table t\n@source nothing\n@column L\n@end\n",
             "d.txt, line 2: there is no computed table"},
        Case{"@section a | A\n@table t\n@select Label from Wells\n@column Q\n@end\n", "no field \"Q\""},
        Case{"@section a | A\n@table t\n@select Nope from Wells\n@column Nope\n@end\n", "d.txt, line 2: "},
        Case{"@section a | A\n<p>{who}</p>\n", "there is no value \"who\""},
        Case{"@section a | A\n@picture map | 300x300\n", "cannot draw the picture"},
        Case{"@section a | A\n@nonsense\n", "d.txt, line 2"}}) {
    const ReportOutcome outcome = WriteReport(ormel, Request(Description(c.description)));
    EXPECT_EQ(outcome.end, ReportEnd::kFailed) << c.description;
    EXPECT_NE(outcome.failure.find(c.words), std::string::npos) << outcome.failure;
  }
  ReportRequest request = Request(project.dir / "missing.txt");
  EXPECT_NE(WriteReport(ormel, request).failure.find("missing.txt: there is no such file"), std::string::npos)
      << WriteReport(ormel, request).failure;
  request.path = project.dir / "out.doc";
  EXPECT_NE(WriteReport(ormel, request).failure.find(".pdf or .html"), std::string::npos);
  EXPECT_EQ(ReadAll(project.dir / "out.html"), "old");
}

TEST_F(ReportTest, CancelLeavesNoFile) {
  int looks = 0;
  project.ui.cancel = [&looks] { return ++looks > 2; };
  const ReportOutcome outcome = WriteReport(
      ormel,
      Request(Description("@section a | A\n<p>1</p>\n@section b | B\n<p>2</p>\n@section c | C\n<p>3</p>\n")));
  EXPECT_EQ(outcome.end, ReportEnd::kCancelled);
  EXPECT_FALSE(std::filesystem::exists(project.dir / "out.html"));
  EXPECT_EQ(project.ui.progress.size(), 3U);
  EXPECT_EQ(project.ui.wait_depth, 0);
}

TEST_F(ReportTest, ZonesTellWellTimeAreaAndExtent) {
  const auto zones = ZonesTable(ormel);
  ASSERT_EQ(zones->Rows(), 2U);
  const auto at = [&](std::size_t row, std::string_view name) {
    for (std::size_t i = 0; i < zones->columns().size(); ++i)
      if (zones->columns()[i].name == name) return zones->At(row, i);
    return Value("no such column");
  };
  EXPECT_TRUE(at(1, "Well").IsNull()) << "there is no well \"by hand\"";
  EXPECT_EQ(at(0, "Well").AsText(), "Mill <1> & Co");
  EXPECT_EQ(at(0, "Years").AsDouble(), 10);
  EXPECT_EQ(at(0, "Area").AsDouble(), 60000);
  EXPECT_EQ(at(0, "Perimeter").AsDouble(), 1000);
  EXPECT_EQ(at(0, "Width").AsDouble(), 300);
  EXPECT_EQ(at(0, "North").AsDouble(), 200);
}

TEST_F(ReportTest, ChecksOfZonesAreSharesOfWhatIsPumped) {
  EXPECT_EQ(ZoneChecksTable(ormel)->Rows(), 0U);
  Database& db = ormel.db();
  if (!db.HasTable("Zones"))
    db.Execute(
        "create table Zones(PID integer,Well text,Part integer,Years double,Area double,Pumped double,Pores "
        "double,Recharge double,Surface double,Edge double,LeftOut double,Shared double,Balance double,"
        "Tolerance double,Ends text,Made text)");
  db.Execute(
      "insert into "
      "Zones(PID,Well,Years,Area,Pumped,Pores,Recharge,Surface,Edge,LeftOut,Shared,Balance,Tolerance,"
      "Ends,Made) select PID,'Mill',10.0,60000.0,2000.0,1500.0,400.0,80.0,0.0,20.0,7.0,0.0005,0.002,"
      "'32 at the time','2026' from Capzones where Label like 'Mill*'");
  const auto zones = ZonesTable(ormel);
  EXPECT_EQ(zones->At(0, 1).AsText(), "Mill") << "the table's well stands before the label's";
  const auto checks = ZoneChecksTable(ormel);
  ASSERT_EQ(checks->Rows(), 1U);
  EXPECT_EQ(checks->At(0, 0).AsText(), "Mill <1> & Co 10 years");
  EXPECT_DOUBLE_EQ(checks->At(0, 4).AsDouble(), 0.2);
  EXPECT_DOUBLE_EQ(checks->At(0, 6).AsDouble(), 75);
  EXPECT_DOUBLE_EQ(checks->At(0, 10).AsDouble(), 1);
  EXPECT_EQ(checks->At(0, 12).AsText(), "32 at the time");
}

TEST_F(ReportTest, LongAppendicesAreWrittenOnRequestAndHoldEachVertexOnce) {
  const std::string text =
      "@section a | Elements\n@table E\n@source coordinates\n@column Label | L\n@column Coordinates | "
      "C\n@empty none"
      "\n@end\n@section b | Zones | on request\n@table Z\n@source outlines\n@column Label | L\n"
      "@column Vertices | V\n@column Coordinates | C\n@end\n";
  ReportRequest request = Request(Description(text));
  const std::string usual = Written(request);
  EXPECT_NE(usual.find("none"), std::string::npos) << "zones are no elements";
  EXPECT_EQ(usual.find("Zones"), std::string::npos);
  request.with = {"B"};
  const std::string whole = Written(request);
  const std::string ring = ">4</td><td>0 0; 300 0; 300 200; 0 200</td></tr>";
  const std::size_t first = whole.find(ring);
  ASSERT_NE(first, std::string::npos) << whole;
  EXPECT_NE(whole.find(ring, first + 1), std::string::npos) << "the second zone has a row of its own";

  ReportForm form(ormel, "");
  form.SetText("tbDescription", request.description);
  EXPECT_EQ(form.State("listSections").selected, (std::vector<int>{0}));
  form.Select("listSections", {0, 1});
  EXPECT_EQ(form.Request().with, (std::vector<std::string>{"b"}));
  EXPECT_TRUE(form.Request().without.empty());
}

TEST_F(ReportTest, TheFormOffersTheSectionsAndRemembersWhichWereLeftOut) {
  project.ui.OnForm("Report", [](Form& form) {
    const ControlState& list = form.State("listSections");
    ASSERT_GT(list.items.size(), 10U);
    EXPECT_EQ(list.items.front(), "Title Page");
    form.Select("listSections", {});
    form.Click("OK");
    EXPECT_FALSE(form.Hidden()) << "nothing is selected";
    form.Select("listSections", {3, 4});
    form.Click("OK");
  });
  project.ui.ChooseFile(project.dir / "town.html");
  REPORT(ormel, "the model has not been solved");
  const std::string html = ReadAll(project.dir / "town.html");
  EXPECT_NE(html.find("Protection Areas by Formula</h2>"), std::string::npos) << project.ui.LastText();
  EXPECT_EQ(html.find("id=\"title\""), std::string::npos);
  const ReportForm again(ormel, "");
  EXPECT_EQ(again.State("listSections").selected, (std::vector<int>{3, 4}));
}

}  // namespace
}  // namespace ormel::test
