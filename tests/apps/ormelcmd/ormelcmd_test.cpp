// From a new project to capture zones by the program itself.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <numbers>

#include "ormelcmd/run.h"
#include "store/database.h"

namespace ormel::test {
namespace {

using ::testing::Test;

TEST_F(OrmelcmdTest, FromANewProjectToHeadsPicturesAndTables) {
  MakeTown();
  EXPECT_NE(Run({"results", "town.orm"}).err.find("has not been solved yet"), std::string::npos);
  Do({"add", "testpoint", "town.orm", "--at", "100,0", "--label", "T1", "--head", "29"});
  Do({"solve", "town.orm"});

  // Confined: h = h0 - i (x - x0) + Q / (2 pi T) ln(r / r0), with T = 100 m2/d and r0 = 1000 m.
  const std::string heads = Do({"results", "town.orm", "--table", "testpoints", "--csv"});
  const double expected = 30.0 - 0.002 * 100.0 + 400.0 / (2.0 * std::numbers::pi * 100.0) * std::log(0.1);
  ASSERT_EQ(heads.find("Label,X,Y,ObsHead,ModelHead,Difference\nT1,100,0,29,"), 0U) << heads;
  const double head = std::stod(heads.substr(heads.find("29,") + 3));
  EXPECT_NEAR(head, expected, 1e-4);

  const std::string wells = Do({"results", "town.orm", "--table", "wells"});
  EXPECT_NE(wells.find("O'Brien, north"), std::string::npos) << wells;
  EXPECT_NE(Do({"results", "town.orm", "--csv"}).find("\"O'Brien, north\",0,0,0.5"), std::string::npos);

  Do({"render", "town.orm", "map.png", "--size", "400x300", "--title", "Küste", "--legend", "--scale-bar",
      "--north-arrow"});
  const std::string png = ReadAll(dir / "map.png");
  ASSERT_GT(png.size(), 1000U);
  EXPECT_EQ(png.substr(1, 3), "PNG");
  EXPECT_EQ(png.substr(16, 8), std::string("\0\0\1\x90\0\0\1\x2c", 8)) << "400 by 300";
  Do({"render", "town.orm", "map.svg", "--layers", "elements"});
  Do({"render", "town.orm", "paths.svg", "--layers", "elements,pathlines"});
  EXPECT_GT(ReadAll(dir / "paths.svg").size(), ReadAll(dir / "map.svg").size() + 1000);
}

TEST_F(OrmelcmdTest, ASolveCountsUntilTheModelChanges) {
  MakeTown();
  Do({"solve", "town.orm"});
  Do({"window", "town.orm", "--window", "-100,-100,100,100"});
  Do({"results", "town.orm"});  // a window is no change of the model
  Do({"solve", "town.orm", "--continue", "1"});
  Do({"set", "town.orm", "Model.TRACEMaxTime=100"});
  EXPECT_EQ(Run({"render", "town.orm", "map.png"}).code, 1);
  EXPECT_FALSE(std::filesystem::exists(dir / "map.png"));
  EXPECT_EQ(Run({"results", "town.orm"}).code, 1);
  EXPECT_EQ(Run({"solve", "town.orm", "--continue", "1"}).code, 1);
  Do({"results", "town.orm", "--stale"});
  Do({"render", "town.orm", "map.png", "--no-results"});
  Do({"solve", "town.orm", "--reload"});
  Do({"render", "town.orm", "map.png"});
}

TEST_F(OrmelcmdTest, EveryKindOfElementIsStored) {
  MakeTown();
  Do({"add", "well", "town.orm", "--at", "300,0", "--label", "Pond", "--head", "31", "--pond", "--radius",
      "20"});
  Do({"add", "barrier", "town.orm", "--label", "Wall", "--points", "200,200 300,200;300,300", "--color",
      "#FF8000"});
  Do({"add", "inhomogeneity", "town.orm", "--label", "Clay", "--conductivity", "0.5", "--recharge", "0.001",
      "--points", "-400,-400", "-300,-400", "-300,-300"});
  Do({"add", "linesink", "town.orm", "--label", "River", "--heads", "29", "28", "--points",
      "-500,400 0,450 500,400", "--width", "5"});
  Do({"add", "particles", "town.orm", "--points", "0,100 0,120", "--backward", "--elevation", "3"});
  Do({"add", "testpoint", "town.orm", "--at", "1,2", "--label", "T", "--head", "30"});
  Do({"add", "fluxline", "town.orm", "--label", "F", "--points", "0,0 1,1"});
  Do({"add", "text", "town.orm", "--text", "Fluß", "--at", "5,6", "--bold"});
  const auto query = [this](const std::string& sql) { return Do({"sql", "town.orm", "--csv", sql}); };
  EXPECT_EQ(query("select HeadSpecified,Pond,Head from Wells where Label='Pond'"),
            "HeadSpecified,Pond,Head\n1,1,31\n");
  EXPECT_EQ(query("select Closed,Color from NoFlowStrings"), "Closed,Color\n0,33023\n");
  EXPECT_EQ(query("select ChangeK,ChangeR,ChangeP,HydCond from Inhomogeneities"),
            "ChangeK,ChangeR,ChangeP,HydCond\nTrue,True,False,0.5\n");
  EXPECT_EQ(query("select StartingHead,EndingHead,Width from LinesinkStrings"),
            "StartingHead,EndingHead,Width\n29,28,5\n");
  EXPECT_EQ(query("select count(*) as N,max(Elevation) as E,max(Forward) as F from Particles"),
            "N,E,F\n2,3,0\n");
  EXPECT_EQ(query("select Text,FontBold from TextLabels"), "Text,FontBold\nFluß,True\n");
  EXPECT_EQ(query("select count(*) as N from Vertices where PID>0"), "N\n11\n");
}

TEST_F(OrmelcmdTest, OutlinesCaptureZonesOfTheSolvedModel) {
  MakeTown();
  EXPECT_EQ(Run({"whpa", "outline", "town.orm"}).code, 1);
  Do({"solve", "town.orm"});
  EXPECT_NE(Run({"whpa", "outline", "town.orm", "--well", "South"}).err.find("no pumping well \"South\""),
            std::string::npos);
  Do({"whpa", "outline", "town.orm", "--years", "1", "2", "--tolerance", "0.01"});
  const std::string zones = Do({"sql", "town.orm", "--csv", "select Label from Capzones order by Label"});
  EXPECT_EQ(zones, "Label\n\"O'Brien, north 1 year\"\n\"O'Brien, north 2 years\"\n");
  EXPECT_NE(Do({"whpa", "list", "town.orm"}).find("1 year"), std::string::npos);
  Do({"render", "town.orm", "map.png", "--size", "200x100"});  // the solve still stands
}

TEST_F(OrmelcmdTest, DelineatesEachKindOfSimpleArea) {
  MakeTown();
  const std::string well = "O'Brien, north";
  const auto rows = [&] {
    return Do(
        {"sql", "town.orm", "--csv", "select Type,Radius>0 as Circle,T>1 as Long from WHPAs order by Type"});
  };
  Do({"whpa", "arbitrary", "town.orm", "--well", well, "--radius", "250"});
  EXPECT_EQ(Do({"sql", "town.orm", "--csv", "select Type,Radius from WHPAs"}), "Type,Radius\n1,250\n");

  const std::vector<std::string> calculated{"whpa",       "calculated", "town.orm",    "--well", well,
                                            "--porosity", "0.25",       "--thickness", "20",     "--ambient"};
  const auto with = [&](std::vector<std::string> more) {
    more.insert(more.begin(), calculated.begin(), calculated.end());
    return Run(more);
  };
  EXPECT_EQ(with({"0.1", "--time", "365"}).code, 0);
  EXPECT_NE(rows().find("2,1,0"), std::string::npos);
  EXPECT_EQ(with({"0.8", "--time", "3650", "--direction", "180"}).code, 0);
  EXPECT_NE(rows().find("2,0,1"), std::string::npos);
  const std::string stem =
      Do({"sql", "town.orm", "--csv", "select WHPAText from WHPAs where Type=2"}).substr(9);
  EXPECT_TRUE(std::filesystem::exists(dir / (stem.substr(0, stem.find('\n')) + ".PTH"))) << stem;
  Do({"whpa", "rerun", "town.orm"});
  EXPECT_EQ(Do({"sql", "town.orm", "--csv", "select count(*) as N from Zones"}), "N\n0\n");
  EXPECT_EQ(with({"0.8", "--time", "3650", "--direction", "180", "--outline"}).code, 0);
  EXPECT_NE(Do({"sql", "town.orm", "--csv", "select Label from Capzones"}).find(well + " WHPA 10 years"),
            std::string::npos);
  // Another time of travel than the one that is traced needs a word from the user.
  EXPECT_EQ(with({"0.8", "--time", "5000", "--direction", "180"}).code, 1);
  const auto agreed_time =
      with({"0.8", "--time", "5000", "--direction", "180", "--answer", "Time of Travel=Yes"});
  EXPECT_EQ(agreed_time.code, 0) << agreed_time.err;
  EXPECT_NE(agreed_time.out.find("traced for 5000 days"), std::string::npos) << agreed_time.out;

  // Both kinds of pathlines exclude one another: without an answer nothing changes.
  const std::vector<std::string> multiple{"whpa",      "multiple",    "town.orm",
                                          "--well",    well,          "--porosity",
                                          "0.25",      "--thickness", "20",
                                          "--ambient", "0.3",         "--direction",
                                          "180",       "--stream",    "-400,10 -500,2000",
                                          "--head",    "20",          "--conductivity",
                                          "12"};
  EXPECT_EQ(Run(multiple).code, 1);
  EXPECT_NE(rows().find("2,0,1"), std::string::npos);
  std::vector<std::string> agreed = multiple;
  agreed.insert(agreed.end(), {"--answer", "Warning=OK"});
  Do(agreed);
  EXPECT_NE(rows().find("3,0,0"), std::string::npos);
  EXPECT_EQ(Do({"sql", "town.orm", "--csv", "select count(*) as N from Wells where Label like 'Mirror_*'"}),
            "N\n1\n");
  for (const char* kind : {"arbitrary", "calculated", "multiple", "rerun", "outline"})
    EXPECT_EQ(Run({"whpa", kind, "--help"}).code, 0) << kind;
  EXPECT_EQ(Run({"whpa", "arbitrary", "town.orm", "--well", "Nobody", "--radius", "3"}).code, 1);
  EXPECT_EQ(Run({"whpa", "calculated", "town.orm"}).code, 2);
}

TEST_F(OrmelcmdTest, ExportsADeck) {
  MakeTown();
  Do({"deck", "town.orm", "deck.DAT"});
  const std::string deck = ReadAll(dir / "deck.DAT");
  EXPECT_NE(deck.find(" aquifer"), std::string::npos) << deck;
  EXPECT_NE(deck.find("WL_"), std::string::npos) << deck;
}

TEST_F(OrmelcmdTest, ChangesListsAndDeletesElementsOfEveryKind) {
  MakeTown();
  Do({"add", "linesink", "town.orm", "--label", "River", "--points", "-400,-300 0,-350 400,-300", "--heads",
      "28", "27", "--routed", "--inflow", "1500", "--end-of-stream"});
  Do({"add", "barrier", "town.orm", "--label", "Wall", "--points", "100,100 200,200"});
  Do({"add", "inhomogeneity", "town.orm", "--label", "Gravel", "--points", "-90,-90 90,-90 90,90",
      "--conductivity", "40"});
  Do({"add", "testpoint", "town.orm", "--label", "P1", "--at", "50,0", "--head", "29"});
  Do({"add", "particles", "town.orm", "--points", "10,20 30,40"});
  Do({"add", "fluxline", "town.orm", "--label", "Line", "--points", "0,200 100,200"});
  Do({"add", "capturezone", "town.orm", "--label", "Zone", "--points", "0,0 9,0 9,9"});
  Do({"add", "text", "town.orm", "--text", "Hill", "--at", "5,5"});
  // On a vertex: moved off it, and told.
  EXPECT_NE(Run({"add", "testpoint", "town.orm", "--label", "P2", "--at", "0,0", "--head", "29"})
                .err.find("another vertex stands at 0,0"),
            std::string::npos);
  EXPECT_EQ(Do({"sql", "town.orm", "select Routing,EndStream,EndInflow from LinesinkStrings", "--csv"}),
            "Routing,EndStream,EndInflow\n1,1,1500\n");

  const std::string well = "O'Brien, north";
  Do({"set", "well", "town.orm", "--label", well, "Head=500", "NParticles=6", "X=7"});
  Do({"set", "linesink", "town.orm", "--label", "River", "EndingHead=26", "Overlandflow=20", "AutoSWIZC=1"});
  Do({"set", "barrier", "town.orm", "--label", "Wall", "Label=Clay wall"});
  Do({"set", "inhomogeneity", "town.orm", "--label", "Gravel", "HydCond=55", "Porosity=0.3"});
  Do({"set", "testpoint", "town.orm", "--where", "Label=P1", "ObsHead=28.5"});
  Do({"set", "particle", "town.orm", "--all", "Forward=no"});
  Do({"set", "fluxline", "town.orm", "--label", "Line", "Label=Gate"});
  Do({"set", "capturezone", "town.orm", "--label", "Zone", "Label=Zone 1"});
  Do({"set", "text", "town.orm", "--label", "Hill", "Text=Hills"});
  Do({"set", "uniformflow", "town.orm", "Gradient=0.003"});
  EXPECT_EQ(
      Do({"sql", "town.orm",
          "select Head,NParticles,(select X from Vertices where Vertices.VID=Wells.VID) as X from Wells",
          "--csv"}),
      "Head,NParticles,X\n500,6,7\n");
  const std::string list = Do({"list", "well", "town.orm", "--json"});
  EXPECT_NE(list.find("\"Label\": \"O'Brien, north\""), std::string::npos) << list;
  EXPECT_NE(list.find("\"Head\": 500"), std::string::npos) << list;
  EXPECT_NE(Do({"list", "linesink", "town.orm", "--csv"}).find("\"-400.0,-300.0 0.0,-350.0 400.0,-300.0\""),
            std::string::npos)
      << Do({"list", "linesink", "town.orm", "--csv"});
  EXPECT_EQ(Do({"sql", "town.orm", "select UNIFLOWGradient from Model", "--csv"}),
            "UNIFLOWGradient\n0.003\n");

  for (const auto& [kind, label] :
       std::vector<std::pair<std::string, std::string>>{{"well", well},
                                                        {"linesink", "River"},
                                                        {"barrier", "Clay wall"},
                                                        {"inhomogeneity", "Gravel"},
                                                        {"testpoint", "P1"},
                                                        {"fluxline", "Gate"},
                                                        {"capturezone", "Zone 1"},
                                                        {"text", "Hills"}})
    Do({"delete", kind, "town.orm", "--label", label});
  EXPECT_EQ(Run({"delete", "particle", "town.orm", "--where", "Forward=0"}).code, 1) << "two fit";
  Do({"delete", "particle", "town.orm", "--all"});
  EXPECT_EQ(Do({"sql", "town.orm", "select count(*) as N from Vertices", "--csv"}), "N\n2\n")
      << "the second test point and the reference point";
}

TEST_F(OrmelcmdTest, LooksIntoASolutionAtAPointAndAlongAPath) {
  MakeTown();
  Do({"solve", "town.orm", "--quiet", "--step", "5", "--max-time", "900"});
  EXPECT_EQ(Do({"sql", "town.orm", "select TRACEStep,TRACEMaxTime from Model", "--csv"}),
            "TRACEStep,TRACEMaxTime\n5,900\n");
  const std::string values = Do({"inspect", "town.orm", "-300", "100"});
  EXPECT_NE(values.find("\nHead: 29.8"), std::string::npos) << values;
  const std::string path = Do({"trace", "town.orm", "-300", "100"});
  EXPECT_EQ(path.find("x,y,elevation,days\n-300"), 0U) << path;
  EXPECT_GT(std::count(path.begin(), path.end(), '\n'), 5);
  Do({"render", "town.orm", "wells.png", "--layers", "wells", "--size", "200x200"});
  Do({"render", "town.orm", "overlay.png", "--layers", "overlay", "--overlay", "error", "--size", "200x200"});
}

TEST_F(OrmelcmdTest, ReadsNoProjectOfANewerVersion) {
  MakeTown();
  { Database::Open(dir / "town.orm").Execute("update Project set ProjectVersion=300"); }
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"sql", "town.orm", "select 1"},
                                                    {"results", "town.orm"},
                                                    {"whpa", "list", "town.orm"},
                                                    {"list", "well", "town.orm"}}) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.code, 1) << arguments[0];
    EXPECT_NE(outcome.err.find("was written by a newer version"), std::string::npos) << outcome.err;
  }
}

}  // namespace
}  // namespace ormel::test
