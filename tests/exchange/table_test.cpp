// Tables of wells, test points and labels: in, out, and damaged.
#include <gtest/gtest.h>

#include <random>

#include "core/command.h"
#include "exchange/table_exchange.h"
#include "model/observations.h"
#include "model/vertices.h"
#include "model/wells.h"
#include "support/test_project.h"
#include "text/files.h"

namespace ormel::test {
namespace {

struct Tables : ::testing::Test {
  TestProject project;
  Ormel& ormel = project.ormel;
  Tables() { ormel.gui.VertexTolerance = 0.01; }
  std::string File(const std::string& text, const char* name = "in.txt") {
    WriteAll(project.dir / name, text);
    return project.dir / name;
  }
  std::int64_t Rows(const char* table) { return ormel.db().RowCount(table); }
  std::string Dump() {
    std::string text;
    for (const char* sql :
         {"select Label,Head,Radius,HeadSpecified,NParticles,Setback,X,Y from Wells inner join Vertices on "
          "Vertices.VID=Wells.VID order by Label",
          "select Label,ObsHead,X,Y from TestPoints inner join Vertices on Vertices.VID=TestPoints.VID "
          "order by Label",
          "select Text,X,Y,LabelType from TextLabels order by Text"}) {
      RowReader rows(ormel.db(), sql);
      while (rows.Next()) {
        for (int i = 0; i < rows.ColumnCount(); ++i) text += std::string(rows.Text(i)) + "|";
        text += "\n";
      }
    }
    return text;
  }
};

TEST_F(Tables, BothDelimitersCommentsAndEnds) {
  ToolsImportWL(ormel, false,
                File("\xEF\xBB\xBF 100.5, 200 ,-4E2,0.5,Mill Lane, north\r\n* a comment\r\n\r\nend\r\n"
                     "300,400,1d3,1,\"One, two\"\r\n"));
  EXPECT_EQ(project.ui.LastText(), "2 wells were read in.");
  ToolsImportTP(ormel, File("1 2 3.5 North  of the br\u00fccke\n\t5 6 7 TP2\n"));
  EXPECT_EQ(project.ui.LastText(), "2 Test Points were read in.");
  ToolsImportTX(ormel, File("1,2,0,Mill, pond\n3,4,1,River\n"));
  EXPECT_EQ(Dump(),
            "Mill Lane north|-400.0|0.5|0|0|0.0|100.5|200.0|\nOne, two|1000.0|1.0|0|0|0.0|300.0|400.0|\n"
            "North of the br\u00fccke|3.5|1.0|2.0|\nTP2|7.0|5.0|6.0|\n"
            "Mill pond|1.0|2.0|0|\nRiver|3.0|4.0|1|\n");
}

TEST_F(Tables, OutAndInIsTheSameModel) {
  const std::vector<std::string> labels{"Plain", "with, comma", "\"quoted\" \u00e4", " blank ends ", "", "7"};
  double place = 10.0;
  for (const std::string& label : labels) {
    StoreWell(ormel, {.Label = label, .Head = place / 3.0, .Radius = 0.25, .Setback = 0.0}, {place, -place});
    StoreWell(ormel,
              {.Label = label + "h", .HeadSpecified = true, .Head = 90.5, .Radius = 0.25, .Setback = 0.0},
              {-1e6 - place, place});
    StoreTestPoint(ormel, {label, place}, {place, 1234.5678});
    StoreTextLabel(ormel, {.Text = label + "t", .type = LabelType::kHydrography}, {place, 1.0});
    place += 10.0;
  }
  const std::vector<std::string> files{project.dir / "d.wl", project.dir / "h.wl", project.dir / "t.tp",
                                       project.dir / "l.tx"};
  for (int i = 0; i < 4; ++i) EXPORTDB(ormel, i, files[static_cast<std::size_t>(i)]);
  EXPECT_EQ(project.ui.LastText(), "6 Text Labels were written.");
  EXPECT_TRUE(
      ReadAll(files[0]).starts_with("1.000000000E+01 ,-1.000000000E+01 ,3.33333E+00 ,2.50000E-01,Plain\r\n"))
      << ReadAll(files[0]);

  const auto import_all = [&] {
    ToolsImportWL(ormel, false, files[0]);
    project.ui.AnswerTo("Head Specified Wells", {Answer::kYes});
    ToolsImportWL(ormel, true, files[1]);
    ToolsImportTP(ormel, files[2]);
    ToolsImportTX(ormel, files[3]);
  };
  const std::string before = Dump();
  import_all();  // nothing is new
  EXPECT_EQ(Dump(), before);
  EXPECT_EQ(project.ui.LastText(),
            "0 labels were read in.\n6 were skipped because identical\nlabels existed in those locations.");
  for (const char* table : {"Wells", "TestPoints", "TextLabels", "Vertices"})
    ormel.db().Execute(std::string("delete from ") + table);
  LoadDataControls(ormel);
  import_all();
  EXPECT_EQ(Rows("Wells"), 12);
  for (int i = 0; i < 4; ++i) EXPORTDB(ormel, i, files[static_cast<std::size_t>(i)] + "2");
  for (const std::string& file : files) EXPECT_EQ(ReadAll(file), ReadAll(file + "2")) << file;
}

TEST_F(Tables, CloseVerticesAreMovedOnceAndTold) {
  StoreTestPoint(ormel, {"There", 1.0}, {100, 100});
  const std::string file = File("100,100,5,0.3,Well\n200,200,5,0.3,Far\n");
  ToolsImportWL(ormel, false, file);
  EXPECT_EQ(project.Number("select X from Vertices,Wells where Vertices.VID=Wells.VID and Label='Well'"),
            100.01);
  const std::string log = ReadAll(project.dir / "WellVertices.log");
  EXPECT_NE(log.find("Original Location"), std::string::npos);
  EXPECT_NE(log.find(std::string(73, '-') + "\r\nX:\t100\tY:\t100\t | X:\t100.01\tY:\t100.01\r\n"),
            std::string::npos)
      << log;
  EXPECT_EQ(project.ui.viewed_files.size(), 1U);
  ToolsImportWL(ormel, false, file);
  EXPECT_EQ(project.ui.LastText(),
            "0 wells were read in.\n2 were ignored because identical\nwells existed at those locations.");
}

TEST_F(Tables, TheLimitOfWellsEndsTheImport) {
  std::string text;
  for (int i = 0; i <= 2000; ++i) text += std::to_string(i * 10) + ",0,1,0.3,W" + std::to_string(i) + "\n";
  ToolsImportWL(ormel, false, File(text));
  EXPECT_EQ(Rows("Wells"), 2000);
  EXPECT_EQ(project.ui.boxes.at(0).title, "Maximum well limit reached!");
  EXPECT_EQ(project.ui.LastText(), "2000 wells were read in.");
}

TEST_F(Tables, ATakenLabelGetsANumber) {
  ToolsImportWL(ormel, false, File("0,0,1,0.3,Town\n100,0,1,0.3,TOWN\n"));
  EXPECT_EQ(project.Text("select Label from Wells where Label like '*(2)'"), "TOWN (2)");
}

TEST_F(Tables, BadRecordsAreLeftOutOnlyByAgreement) {
  const std::string file =
      File("1,2,3,0.3,A\n1,2\n5,6x,7,0.3,B\n8,9,1,0,C\n10,11,1,0.3,D\n1e300,1,1,1,E\n", "w.wl");
  project.ui.AnswerTo("Error in import", {Answer::kNo});
  ToolsImportWL(ormel, false, file);
  EXPECT_EQ(Rows("Wells"), 0);
  EXPECT_NE(project.ui.LastText().find("Error in record 2 bad syntax\n" + file + ", line 2: has 2 fields"),
            std::string::npos)
      << project.ui.LastText();
  EXPECT_NE(project.ui.LastText().find("3 more records are bad."), std::string::npos);
  project.ui.AnswerTo("Error in import", {Answer::kYes});
  ToolsImportWL(ormel, false, file);
  EXPECT_EQ(Rows("Wells"), 2);
}

TEST_F(Tables, CancelLeavesTheProjectAsItWas) {
  StoreTestPoint(ormel, {"There", 1.0}, {1, 1});
  const std::string before = Dump();
  std::string text;
  for (int i = 0; i < 5000; ++i) text += std::to_string(i * 10) + ",50,1,TP" + std::to_string(i) + "\n";
  int asked = 0;
  project.ui.cancel = [&] { return ++asked > 2; };
  RunCommand(ormel, "import", [&] { ToolsImportTP(ormel, File(text)); });
  EXPECT_EQ(Dump(), before);
  EXPECT_EQ(Rows("Vertices"), 1);
  project.ui.cancel = {};
  ToolsImportTP(ormel, project.dir / "in.txt");  // and goes on working
  EXPECT_EQ(Rows("TestPoints"), 5001);
}

/// One message, with the file and where it helps the line, and nothing else.
TEST_F(Tables, WhatIsNoTable) {
  const std::string good = "1,2,3,0.3,A\n5,6,7,0.3,B\n";
  std::string utf16 = "\xFF\xFE";
  for (const char c : good) utf16 += {c, '\0'};
  struct Case {
    std::string text, says;
  };
  for (const Case& c : {Case{"", "No valid file delimeter found!"},
                        Case{"* comment\n" + good, "No valid file delimeter found!"},
                        Case{utf16, "line 1: is text in UTF-16"},
                        Case{"1,2,3,0.3,Br\xFC"
                             "cke\n",
                             "line 1: holds characters that"},
                        Case{good + std::string("8,9,\0 1,1,x\n", 12), "line 3: holds control characters"},
                        Case{good + std::string(3 << 20, '7') + "\n", "line 3"},
                        Case{std::string("\x7f"
                                         "ELF\x02\x01\x01\0\0\0",
                                         10),
                             "line 1"}}) {
    project.ui.boxes.clear();
    const std::string file = File(c.text, "bad.wl");
    ToolsImportWL(ormel, false, file);
    ASSERT_EQ(project.ui.boxes.size(), 1U) << c.says;
    EXPECT_NE(project.ui.LastText().find(c.says), std::string::npos) << project.ui.LastText();
    EXPECT_NE(project.ui.LastText().find("bad.wl"), std::string::npos);
    EXPECT_EQ(Rows("Wells"), 0);
  }
  ToolsImportWL(ormel, false, project.dir / "none.wl");
  EXPECT_EQ(project.ui.LastText(), "The specified test point file does not exist. ");
}

TEST_F(Tables, CutAndFlippedFilesAreTakenWholeOrNotAtAll) {
  std::string good;
  for (int i = 0; i < 20; ++i)
    good += std::to_string(i * 10) + ".5,7,12,0.3,Well " + std::to_string(i) + "\n";
  std::mt19937 random(11);
  for (int i = 0; i < 500; ++i) {
    std::string text = good;
    if (i % 2 == 0)
      text.resize(random() % text.size());
    else
      text[random() % text.size()] ^= static_cast<char>(1U << (random() % 8));
    const std::size_t boxes = project.ui.boxes.size();
    const std::int64_t before = Rows("Wells");
    project.ui.AnswerTo("Error in import", {Answer::kNo});
    ToolsImportWL(ormel, false, File(text, "cut.wl"));
    ASSERT_EQ(project.ui.boxes.size(), boxes + 1) << text;
    const bool refused = project.ui.LastTitle() == "Error in import";
    if (refused) {
      EXPECT_NE(project.ui.LastText().find("cut.wl, line "), std::string::npos);
      EXPECT_EQ(Rows("Wells"), before);
    }
    if (i % 50 != 0) continue;
    for (const char* table : {"Wells", "Vertices"}) ormel.db().Execute(std::string("delete from ") + table);
    LoadDataControls(ormel);
  }
}

}  // namespace
}  // namespace ormel::test
