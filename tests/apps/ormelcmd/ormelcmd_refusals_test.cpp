// What the command line program refuses, and that nothing is lost or left hanging by it.
#include <chrono>
#include <filesystem>
#include <thread>

#include "ormelcmd/run.h"

namespace ormel::test {
namespace {

namespace fs = std::filesystem;

struct Wrong {
  std::vector<std::string> arguments;
  int code;
  const char* words;  ///< somewhere on standard error
};

TEST_F(OrmelcmdTest, RefusesWithACodeAndASentence) {
  MakeTown();
  const std::string before = ReadAll(dir / "town.orm");
  const std::vector<Wrong> rows{
      {{}, 2, "subcommand"},
      {{"frobnicate"}, 2, "--help"},
      {{"new"}, 2, "project"},
      {{"results", "town.orm", "--table", "streams"}, 2, "streams"},
      {{"solve", "none.orm"}, 1, "--answer \"No Such File=Yes\""},
      {{"add", "well", "none.orm", "--at", "1,1", "--label", "x"}, 1, "ormelcmd new"},
      {{"new", "town.orm"}, 1, "--answer \"File Exists=OK\""},
      {{"new", "p.DAT"}, 1, "which would replace the project"},
      {{"new", "error.log", "--portable"}, 1, "which would replace the project"},
      {{"add", "well", "town.orm", "--at", "9,9", "--label", "bell\a"}, 1, "control character (number 7)"},
      {{"set", "town.orm", "Model.AQPorosity=2"}, 1, "Porosity must be greater than 0"},
      {{"set", "town.orm", "Model.AQBase=abc"}, 1, "is not a number"},
      {{"set", "town.orm", "Wells.Head=1"}, 1, "only fields of Model and Project"},
      {{"set", "town.orm", "Model.AQBase=5", "Model.Foo=1"}, 1, "no field \"Foo\""},
      {{"set", "town.orm", "Model.AQBase=1,200"}, 1, "is not a number"},
      {{"set", "town.orm", "Model.AQBase=1e300"}, 1, "Base Elevation must be between -10000000 and 10000000"},
      {{"set", "town.orm", "Model.SOLVERX0=1"}, 1, "Model.SOLVERX0 is kept by the program"},
      {{"set", "town.orm", "Project.Updated=1"}, 1, "Project.Updated is kept by the program"},
      {{"set", "town.orm", "Model.MARGINLeft=50"}, 1, "between 0 and 20"},
      {{"set", "town.orm", "Project.OrmelBaseName=a/b"}, 1, "base name"},
      {{"set", "well", "town.orm", "--label", "nobody", "Head=1"}, 1, "there is no such well"},
      {{"set", "well", "town.orm", "Head=1"}, 1, "--label, --id or --where"},
      {{"set", "well", "town.orm", "--label", "O'Brien, north", "Head=12abc"}, 1, "is not a number"},
      {{"set", "well", "town.orm", "--label", "O'Brien, north", "Radius=0"}, 1, "Radius must be greater"},
      {{"set", "well", "town.orm", "--label", "O'Brien, north", "VID=7"}, 1, "VID of a well is kept"},
      {{"set", "well", "town.orm", "--label", "O'Brien, north", "Label=Mirror_x"}, 1, "image well"},
      {{"delete", "well", "town.orm", "--where", "Head=1"}, 1, "there is no such well"},
      {{"list", "well", "town.orm", "--where", "Hed=1"}, 1, "--where takes Field=value"},
      {{"add", "inhomogeneity", "town.orm", "--label", "x", "--points", "0,0 9,9 9,0 0,9"},
       1,
       "crosses itself"},
      {{"add", "text", "town.orm", "--at", "1,1", "--text", ""}, 1, "nothing was added"},
      {{"inspect", "town.orm", "0", "0"}, 1, "there is no solution to look into"},
      {{"add", "well", "town.orm", "--at", "1;1", "--label", "x"}, 1, "--at"},
      {{"add", "well", "town.orm", "--at", "9,9", "--label", "o'brien, NORTH"}, 1, "already exists"},
      {{"add", "well", "town.orm", "--at", "9,9", "--label", "x", "--radius", "0"},
       1,
       "Radius must be greater"},
      {{"add", "barrier", "town.orm", "--label", "x", "--points", "1,1"}, 1, "at least 2"},
      {{"add", "linesink", "town.orm", "--label", "x", "--points", "1,1 2,2"}, 1, "--heads or --densities"},
      {{"window", "town.orm", "--window", "1,1,0,2"}, 1, "left must be below right"},
      {{"sql", "town.orm", "delete from Wells"}, 1, "rows"},
      {{"sql", "town.orm", "select Foo from Wells"}, 1, "Foo"},
      {{"sql", "err.txt", "select 1"}, 1, "err.txt"},
      {{"render", "town.orm", "map.png", "--size", "10"}, 1, "--size"},
      {{"render", "town.orm", "map.png", "--layers", "foo"}, 1, "the layers are"},
      {{"render", "town.orm", "no/map.png", "--no-results"}, 1, "no/map.png"},
      {{"render", "town.orm", "map.bmp", "--no-results"}, 1, "map.bmp"},
      {{"solve", "town.orm", "--answer", "nonsense"}, 1, "Title=Answer"},
  };
  for (const Wrong& row : rows) {
    const Outcome outcome = Run(row.arguments);
    const std::string what = row.arguments.empty() ? "" : row.arguments[0] + " ... " + row.arguments.back();
    EXPECT_EQ(outcome.code, row.code) << what << ": " << outcome.err;
    EXPECT_NE(outcome.err.find(row.words), std::string::npos) << what << ": " << outcome.err;
    EXPECT_EQ(outcome.err.find("ormelcmd: "), 0U) << what << ": " << outcome.err;
  }
  EXPECT_FALSE(fs::exists(dir / "none.orm"));
  // The content is what it was; looking at the project may have stored its window again.
  EXPECT_EQ(Do({"sql", "town.orm", "select AQBase,AQPorosity from Model", "--csv"}),
            "AQBase,AQPorosity\n0,0.2\n");
  EXPECT_EQ(Do({"sql", "town.orm", "select count(*) as N from Vertices", "--csv"}), "N\n2\n");
  EXPECT_EQ(ReadAll(dir / "town.orm").size(), before.size());
}

TEST_F(OrmelcmdTest, AnswersOpenOtherWays) {
  Do({"new", "town.orm"});
  Do({"new", "town.orm", "--overwrite"});
  Do({"new", "town.orm", "--yes"});
  EXPECT_NE(
      Run({"new", "x.orm", "--answer", "Titel=Yes"}).err.find("nothing asked for --answer \"Titel=Yes\""),
      std::string::npos);
  EXPECT_EQ(Do({"solve", "--help"}).find("solve"), Do({"solve", "--help"}).find("solve"));
  EXPECT_NE(Do({"--version"}).find("ormelcmd "), std::string::npos);
}

TEST_F(OrmelcmdTest, MovedProjectAsksOnceForItsFolder) {
  Do({"new", "town.orm"});
  Do({"new", "free.orm", "--portable"});
  fs::create_directory(dir / "elsewhere");
  for (const std::string name : {"town.orm", "free.orm"}) fs::rename(dir / name, dir / ("elsewhere/" + name));
  const Outcome asked = Run({"window", "elsewhere/town.orm", "--extents"});
  EXPECT_EQ(asked.code, 1);
  EXPECT_NE(asked.err.find("not set in the same place"), std::string::npos) << asked.err;
  Do({"window", "elsewhere/town.orm", "--extents", "--answer", "Ormel=Yes"});
  Do({"window", "elsewhere/town.orm", "--extents"});
  Do({"window", "elsewhere/free.orm", "--extents"});
}

TEST_F(OrmelcmdTest, AReadOnlyProjectIsLookedAtAndNotChanged) {
  MakeTown();
  fs::permissions(dir / "town.orm", fs::perms::owner_read);
  const std::string before = ReadAll(dir / "town.orm");
  Do({"render", "town.orm", "map.svg", "--no-results"});
  Do({"whpa", "list", "town.orm"});
  for (const std::vector<std::string>& change :
       {std::vector<std::string>{"add", "well", "town.orm", "--at", "9,9", "--label", "x"},
        {"solve", "town.orm"},
        {"window", "town.orm", "--extents"}}) {
    const Outcome refused = Run(change);
    EXPECT_EQ(refused.code, 1) << change[0];
    EXPECT_NE(refused.err.find("read-only"), std::string::npos) << refused.err;
  }
  EXPECT_EQ(ReadAll(dir / "town.orm"), before);
}

TEST_F(OrmelcmdTest, TablesHoldNoFormula) {
  MakeTown();
  Do({"add", "well", "town.orm", "--at", "9,9", "--label", "=1+2", "--rate", "-5", "--radius", "0.1"});
  EXPECT_NE(Do({"sql", "town.orm", "select Label,Head from Wells", "--csv"}).find("\n'=1+2,"),
            std::string::npos);
}

/// The program with another solver beside it.
struct OtherSolverTest : OrmelcmdTest {
  OtherSolverTest() {
    MakeTown();
    fs::create_directory(dir / "bin");
    fs::copy_file(program, dir / "bin/ormelcmd");
    program = dir / "bin/ormelcmd";
  }
  void PutSolver(const std::string& script) {
    WriteAll(dir / "bin/VADOX1.EXE", "#!/bin/sh\n" + script + "\n");
    fs::permissions(dir / "bin/VADOX1.EXE", fs::perms::owner_all);
  }
};

TEST_F(OtherSolverTest, SolverThatFailsGivesCodeThree) {
  const Outcome missing = Run({"solve", "town.orm"});
  EXPECT_EQ(missing.code, 3) << missing.err;
  EXPECT_NE(missing.err.find("VADOX1.EXE does not exist in the ormel directory!"), std::string::npos);
  for (const char* script : {"kill -SEGV $$", "echo 'bad aquifer' >VADOX.OPS; exit 1", "exit 0"}) {
    PutSolver(script);
    const Outcome failed = Run({"solve", "town.orm"});
    EXPECT_EQ(failed.code, 3) << script << ": " << failed.err;
    EXPECT_EQ(Run({"results", "town.orm"}).code, 1) << script;
  }
}

TEST_F(OtherSolverTest, InterruptEndsTheSolverAndLeavesEverythingAsItWas) {
  fs::copy_file(std::string(ORMEL_BIN_DIR) + "/CONTOUR.EXE", dir / "bin/CONTOUR.EXE");
  fs::copy_file(std::string(ORMEL_BIN_DIR) + "/VADOX1.EXE", dir / "bin/VADOX1.EXE");
  Do({"solve", "town.orm"});
  const std::string wells = Do({"results", "town.orm"});
  PutSolver("trap 'touch interrupted; exit 1' INT\ntouch running\nwhile :; do sleep 0.05; done");
  const Outcome outcome = Run({"solve", "town.orm"}, [this] { return fs::exists(dir / "running"); });
  EXPECT_EQ(outcome.code, 1) << outcome.err;
  EXPECT_NE(outcome.err.find("cancelled"), std::string::npos) << outcome.err;
  EXPECT_TRUE(fs::exists(dir / "interrupted"));
  EXPECT_EQ(Do({"results", "town.orm"}), wells);
  // A cancelled solve keeps nothing, its number of iterations neither.
  fs::remove(dir / "running");
  const std::string iterations = "select SOLVERIterations from Model";
  const std::string setting = Do({"sql", "town.orm", iterations});
  EXPECT_EQ(
      Run({"solve", "town.orm", "--iterations", "9"}, [this] { return fs::exists(dir / "running"); }).code,
      1);
  EXPECT_EQ(Do({"sql", "town.orm", iterations}), setting);
}

TEST_F(OtherSolverTest, WhatTheSolverLeavesOutIsTold) {
  fs::copy_file(std::string(ORMEL_BIN_DIR) + "/VADOX1.EXE", dir / "bin/REAL.EXE");
  fs::copy_file(std::string(ORMEL_BIN_DIR) + "/CONTOUR.EXE", dir / "bin/CONTOUR.EXE");
  const std::string vid = Do({"sql", "town.orm", "select VID from Wells", "--csv"}).substr(4);
  std::string label = "WL_000000";
  label.replace(label.size() - (vid.size() - 1), vid.size() - 1, vid.substr(0, vid.size() - 1));
  PutSolver("\"$(dirname \"$0\")/REAL.EXE\" \"$@\"; echo '" + label +
            " (line 7): has no screen: it is left out' >ERROR.LOG");
  const Outcome solved = Run({"solve", "town.orm"});
  EXPECT_EQ(solved.code, 0) << solved.err;
  EXPECT_NE(solved.err.find("O'Brien, north (" + label + ") (line 7): has no screen: it is left out"),
            std::string::npos)
      << solved.err;
}

}  // namespace
}  // namespace ormel::test
