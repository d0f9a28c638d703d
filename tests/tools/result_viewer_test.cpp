// The results as tables: columns, units, numbers that are none, and what leaves the viewer.
#include "tools/result_viewer.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/publisher.h"
#include "core/table.h"
#include "solver/result_rows.h"
#include "store/database.h"
#include "support/test_project.h"
#include "tools/results_tables.h"
#include "tools/zone_table.h"

namespace ormel::test {
namespace {

/// Keeps the document.
struct PrintingPublisher : Publisher {
  std::string ChartPng(const Chart&, const PictureShape&) override { return {}; }
  std::string MapPng(const PictureShape&, const std::optional<MapRect>&) override { return {}; }
  std::string SaveChart(const Chart&, const std::string&) override { return {}; }
  std::string SavePdf(const std::string& text, const PageStyle&, const std::string& to,
                      const std::function<bool(double)>&) override {
    html = text;
    path = to;
    return failure;
  }
  std::string html, path, failure;
};

struct ResultsProject : TestProject {
  ResultsProject() {
    ResultRows rows(ormel.db());
    rows.Linesink("Mühl, \"old\"", "LS_000001_0101", {10, 0}, {0, 0}, 20);
    rows.Linesink("Given", "LS_000002_0101", {20, 0}, {0, 0}, kNoSpecifiedHead);
    rows.Linesink("Dry", "LS_000003_0101", {30, 0}, {0, 0}, 21);
    Run("update LSResults set CalculatedHead=20.0004,Discharge=123.456789012,Error=4E-04 where X1=10");
    Run("update LSResults set CalculatedHead=-9999 where X1=30");
    for (const char* head : {"0", "1"}) {
      Run(std::string("insert into Wells(Label,VID,Head,Radius,HeadSpecified) values('W',4") + head +
          ",5,0.3," + head + ")");
      rows.Well("W", std::string("WL_00004") + head, {0, 0}, 7);
    }
    Run("insert into TPResults(Label,VID,ObsHead,ModelHead,Difference) values('MW',7,22,21.5,0.5)");
  }
  void Run(const std::string& sql) { ormel.db().Execute(sql); }
  std::string saved() { return ReadAll(dir / "out.csv"); }
};

std::string Row(const Table& table, std::size_t row) {
  std::string text;
  for (std::size_t i = 0; i < table.columns().size(); ++i)
    text += table.columns()[i].name + "=" + table.Text(row, i) + " ";
  return text;
}

TEST(ResultViewer, EveryTableHasItsColumnsInTheStore) {
  TestProject p;
  for (const ResultsTable& results : ResultsTables()) {
    EXPECT_EQ(ReadResults(p.ormel, results)->columns().size(), results.columns.size()) << results.name;
    for (const ResultsColumn& column : results.columns)
      EXPECT_TRUE(p.ormel.db().HasField(results.name, column.field)) << results.name << '.' << column.field;
  }
}

TEST(ResultViewer, ShowsWhatThereIsAndNoZerosThatAreNoResults) {
  ResultsProject p;
  p.ui.OnForm("ResultViewer", [&](Form& form) {
    EXPECT_EQ(form.Text("cboTable"), "Wells (2)") << "the first table that has rows";
    const Table& wells = *form.State("grid").table;
    EXPECT_EQ(wells.Text(0, 5) + "|" + wells.Text(1, 5), "|7.000") << "a given discharge, a given head";
    form.Select("cboTable", {1});
    EXPECT_EQ(form.Text("cboTable"), "Linesinks (3)");
    const Table& lines = *form.State("grid").table;
    EXPECT_EQ(lines.columns()[7].caption, "Discharge\n[m^3/day]");
    const std::string first = Row(lines, 0), given = Row(lines, 1), dry = Row(lines, 2);
    EXPECT_NE(first.find("CalculatedHead=20.000 Discharge=123.457 "), std::string::npos) << first;
    EXPECT_NE(first.find("Error=4.0000E-04"), std::string::npos) << first;
    EXPECT_NE(given.find("SpecifiedHead= CalculatedHead= Discharge= Width="), std::string::npos) << given;
    EXPECT_NE(dry.find("CalculatedHead=dry"), std::string::npos) << dry;
    form.Select("cboTable", {4});
    EXPECT_NE(Row(*form.State("grid").table, 0).find("Difference=0.500"), std::string::npos);
    form.Select("cboTable", {2});
    EXPECT_FALSE(form.State("Copy").enabled);
    EXPECT_FALSE(form.State("Export").enabled);
  });
  ViewResultsTable(p.ormel);
}

TEST(ResultViewer, SavesAndCopiesInThePresentOrder) {
  ResultsProject p;
  WriteAll(p.dir / "out.csv", "old");
  p.ui.OnForm("ResultViewer", [&](Form& form) {
    form.Select("cboTable", {1});
    form.SortTable("grid", 0, false);
    form.Select("grid", {0});
    form.Click("Copy");
    EXPECT_EQ(p.ui.clipboard.substr(p.ui.clipboard.find('\n') + 1),
              "Dry\t30\t0\t0\t0\t21\t-9999\t0\t0\t0\t0\t0\tLS_000003_0101\n");
    p.ui.ChooseFile(p.dir / "out.csv");
    p.ui.AnswerTo("File Exists", {ormel::Answer::kNo});
    form.Click("Export");
    EXPECT_EQ(p.saved(), "old");
    p.ui.ChooseFile(p.dir / "out.csv");
    p.ui.AnswerTo("File Exists", {ormel::Answer::kYes});
    form.Click("Export");
    p.ui.ChooseFile(p.dir / "no such folder/out.csv");
    form.Click("Export");
    EXPECT_EQ(p.ui.LastTitle(), "Save Table As");
    EXPECT_NE(p.ui.LastText().find("no such folder/out.csv"), std::string::npos) << p.ui.LastText();
    EXPECT_FALSE(form.Hidden());
  });
  ViewResultsTable(p.ormel);
  EXPECT_EQ(p.ui.file_dialogs[0].file_name, "LSResults.csv");
  EXPECT_EQ(
      p.saved(),
      "Label,X1,Y1,X2,Y2,SpecifiedHead,CalculatedHead,Discharge,Width,Resistance,Depth,Error,VadoxLabel\r\n"
      "Dry,30,0,0,0,21,-9999,0,0,0,0,0,LS_000003_0101\r\n"
      "Given,20,0,0,0,,,,,,,,LS_000002_0101\r\n"
      "\"Mühl, \"\"old\"\"\",10,0,0,0,20,20.0004,123.456789012,0,0,0,0.0004,LS_000001_0101\r\n");
}

TEST(ZoneTableForm, PrintsItsRowsOnPages) {
  TestProject project;
  Database& db = project.ormel.db();
  db.Execute("insert into Capzones (PID,Label) values (7,'<Mill> 5 years')");
  db.Execute(
      "insert into Zones (PID,Well,Years,Pumped,Pores,Tolerance) values (7,'<Mill>',5.0,100.0,80.0,0.002)");
  EXPECT_FALSE(ZoneTable(project.ormel).State("Print").enabled) << "there is nobody who could";
  PrintingPublisher publisher;
  project.ormel.ports.publisher = &publisher;
  project.ui.ChooseFile("zones.pdf");
  project.ui.ChooseFile("zones.pdf");
  ZoneTable form(project.ormel);
  form.Click("Print");
  EXPECT_EQ(publisher.path, "zones.pdf");
  EXPECT_NE(publisher.html.find(">&lt;Mill&gt; 5 years</td>"), std::string::npos) << publisher.html;
  EXPECT_NE(publisher.html.find("Time<br>years</th>"), std::string::npos);
  EXPECT_NE(publisher.html.find(">80.0</td>"), std::string::npos);
  publisher.failure = "The disk is full.";
  form.Click("Print");
  EXPECT_NE(project.ui.LastText().find("The disk is full."), std::string::npos);
}

}  // namespace
}  // namespace ormel::test
