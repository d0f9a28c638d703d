// The run: its decisions, its failures, and what is left of each.
#include "solver/driver.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/layers.h"
#include "core/status.h"
#include "model/model_settings.h"
#include "model/validity.h"
#include "solver/fixture_project.h"
#include "solver/kept_files.h"
#include "solver/run.h"
#include "solver/solve_stamp.h"
#include "text/files.h"

namespace ormel::test {
namespace {

ProcessResult Ended(int exit_code = 0, int signal = 0) {
  ProcessResult result;
  result.started = true;
  result.exit_code = exit_code;
  result.signal = signal;
  return result;
}

/// A solver that writes its files and a contour program that writes its own.
struct SolverProject : FixtureProject {
  SolverProject() {
    InstallPrograms();
    Run("update Model set ViewErrorLog=1, ViewMessageLog=1");
    processes.on_run = [this](const ProcessRequest& request, const auto& line, const auto&) {
      if (request.program.ends_with("CONTOUR.EXE")) {
        WriteAll(dir / "town.CTR", "LEVEL 10\r\n");
        return Ended();
      }
      line("PROGRESS 50 Solving");
      line("something else");
      return solve(request);
    };
    solve = [this](const ProcessRequest&) { return WriteResults(); };
  }
  ProcessResult WriteResults() {
    for (const char* file : {"town.SOL", "town.GRD"}) WriteAll(dir / file, "new");
    WriteAll(dir / "town.PTH", "* \r\n");
    WriteAll(dir / "town.XTR", FullExtraction(ormel));
    WriteAll(dir / "message.log", "solved\n");
    WriteAll(dir / "error.log", "*\n");
    return Ended();
  }
  /// A first solve, so that a solution stands.
  void Solve() {
    ModelRunVadox(ormel, {});
    ASSERT_TRUE(ormel.solution.ValidSolution);
    processes.requests.clear();
    ui.viewed_files.clear();
    ui.boxes.clear();
    view.zooms.clear();
  }
  double WellHead() { return Number("select Head from WLResults where VadoxLabel='WL_000001'"); }

  std::function<ProcessResult(const ProcessRequest&)> solve;
};

TEST(Driver, NewRunSolvesContoursLoadsAndShows) {
  SolverProject p;
  ModelRunVadox(p.ormel, {.AskFirst = true, .ZoomAfter = true, .ViewLogs = true});
  EXPECT_TRUE(p.ui.boxes.empty()) << p.ui.LastText();
  ASSERT_EQ(p.processes.requests.size(), 2U);
  EXPECT_EQ(p.processes.requests[1].arguments, (std::vector<std::string>{"town", "10", "2.5", "30"}));
  const SolutionState& s = p.ormel.solution;
  EXPECT_TRUE(s.ValidSolution && s.GridValid && s.ContoursValid && s.PathlinesValid);
  EXPECT_EQ(p.WellHead(), 21.25);
  EXPECT_EQ(p.Number("select ModelHead from TPResults where VID=500"), 22.4);
  EXPECT_EQ(p.ormel.note, "CURRENT");
  EXPECT_EQ(p.ui.wait_texts.back(), "Computing contours...");
  EXPECT_EQ(p.ui.wait_depth, 0);
  EXPECT_EQ(p.ui.progress, std::vector<double>{0.5});
  EXPECT_EQ(p.view.zooms, std::vector<Zoom>{Zoom::kRedraw});
  EXPECT_TRUE(p.ormel.layers.On(Layer::kContours));
  EXPECT_TRUE(p.ormel.menus.Enabled("RESULTS_TABLE"));
  // The error log says nothing but its first line.
  EXPECT_EQ(p.ui.viewed_files, std::vector<std::string>{p.dir / "message.log"});
  for (const auto& entry : std::filesystem::directory_iterator(p.dir.path()))
    EXPECT_EQ(entry.path().string().find(".before"), std::string::npos) << entry.path();
}

TEST(Driver, DecidesByStateRequestAndAnswer) {
  const struct {
    const char* name;
    SolveRequest request;
    bool solution, sol_file;
    int prompt;  ///< button pressed, -1: no prompt expected
    const char* deck;
    bool logs;
  } cases[] = {
      {"keep", {.KeepSolution = true, .ViewLogs = true}, false, false, -1, "REGRID.DAT", true},
      {"first solve", {.AskFirst = true, .ViewLogs = true}, false, false, -1, "town", true},
      {"solution file gone", {.AskFirst = true, .ViewLogs = true}, true, false, -1, "REGRID.DAT", true},
      {"asked, yes", {.AskFirst = true, .ViewLogs = true}, true, true, 0, "town", true},
      {"asked, no", {.AskFirst = true, .ViewLogs = true}, true, true, 1, "REGRID.DAT", false},
      {"asked, cancel", {.AskFirst = true, .ViewLogs = true}, true, true, 2, nullptr, false},
      {"not asked", {.ViewLogs = false}, true, true, -1, "REGRID.DAT", false},
  };
  for (const auto& c : cases) {
    SolverProject p;
    if (c.solution) p.Solve();
    if (!c.sol_file) std::filesystem::remove(p.dir / "town.SOL");
    if (c.prompt >= 0)
      p.ui.OnForm("SolvePrompt",
                  [&](Form& form) { form.Click("SolveOption(" + std::to_string(c.prompt) + ")"); });
    ModelRunVadox(p.ormel, c.request);
    EXPECT_EQ(p.ui.shown_forms.size(), c.prompt >= 0 ? 1U : 0U) << c.name;
    EXPECT_EQ(!p.ui.viewed_files.empty(), c.logs) << c.name;
    if (c.deck == nullptr) {
      EXPECT_TRUE(p.processes.requests.empty()) << c.name;
      EXPECT_TRUE(p.ormel.solution.ValidSolution) << c.name;
    } else {
      ASSERT_FALSE(p.processes.requests.empty()) << c.name;
      EXPECT_EQ(p.processes.requests[0].arguments.back(), c.deck) << c.name;
    }
  }
}

TEST(Driver, AsksForMoreIterationsThanOne) {
  const struct {
    std::optional<std::string> answer;
    int iterations;
  } cases[] = {{"7", 7}, {std::nullopt, 1}, {"-3", 1}, {"2.9", 2}, {"99999", 32767}};
  for (const auto& c : cases) {
    SolverProject p;
    p.Run("update Model set SOLVERIterations=1");
    p.ui.InputTo("Warning", c.answer);
    ModelRunVadox(p.ormel, {});
    EXPECT_EQ(p.ui.input_boxes.at(0).initial, "2");
    EXPECT_EQ(p.Number("select SOLVERIterations from Model"), c.iterations);
    EXPECT_NE(ReadAll(p.dir / "town.DAT").find(" solve " + std::to_string(c.iterations) + " 0 0 1"),
              std::string::npos);
  }
}

/// What must be as before after a run that does not count.
void ExpectAsBefore(SolverProject& p) {
  EXPECT_EQ(p.WellHead(), 21.25);
  EXPECT_EQ(p.Number("select ModelHead from TPResults where VID=500"), 22.4);
  const SolutionState& s = p.ormel.solution;
  EXPECT_TRUE(s.ValidSolution && s.GridValid && s.ContoursValid && s.PathlinesValid);
  EXPECT_TRUE(p.ormel.menus.Enabled("RESULTS_TABLE"));
  EXPECT_TRUE(p.ormel.layers.On(Layer::kContours));
  for (const char* file : {"town.SOL", "town.GRD", "town.PTH", "town.XTR", "town.CTR", "message.log"}) {
    ASSERT_TRUE(FileExists(p.dir / file)) << file;
    EXPECT_NE(ReadAll(p.dir / file), "half") << file;
  }
  EXPECT_FALSE(FileExists(p.dir / "VADOX.OPS"));
}

TEST(Driver, CancelledRunLeavesEverythingAsItWas) {
  for (const bool again : {true, false}) {
    SolverProject p;
    p.Solve();
    p.ui.cancel = [] { return true; };
    p.processes.on_run = [&](const ProcessRequest&, const auto&, const auto& cancelled) {
      for (const char* file : {"town.SOL", "town.GRD", "town.PTH", "town.XTR"})
        WriteAll(p.dir / file, "half");
      WriteAll(p.dir / "VADOX.OPS", "stopped");
      ProcessResult result = Ended(1);
      result.cancelled = cancelled();
      return result;
    };
    if (again) {
      p.ui.OnForm("SolvePrompt", [](Form& form) { form.Click("SolveOption(0)"); });
      ModelRunVadox(p.ormel, {.AskFirst = true});
    } else {
      p.ui.InputTo("Continue Solution", "5");
      ModelRunVadox(p.ormel, {.ContinueSolve = true});
    }
    ExpectAsBefore(p);
    EXPECT_TRUE(p.ui.boxes.empty());
    EXPECT_NE(p.ormel.feedback.find("cancelled"), std::string::npos);
  }
}

TEST(Driver, ResultsOfAnOlderModelSayThatTheyAre) {
  SolverProject p;
  p.ormel.solution.SolutionTime = 0;
  p.Solve();
  EXPECT_EQ(OlderModelNotice(p.ormel), "");
  p.Run("update Wells set Head=900 where VID=1");
  p.ui.AnswerTo("Model Changed!", {ormel::Answer::kNo});
  InvalidateSolution(p.ormel, true, false);
  EXPECT_TRUE(p.ormel.solution.ValidSolution);
  EXPECT_EQ(p.ormel.note, "OLDER MODEL");

  p.ui.OnForm("SolvePrompt", [](Form& form) { form.Click("SolveOption(1)"); });
  ModelRunVadox(p.ormel, {.AskFirst = true});
  EXPECT_EQ(p.processes.requests.at(0).arguments.back(), "REGRID.DAT");
  EXPECT_EQ(p.ormel.note, "OLDER MODEL") << "nothing has been solved";
  EXPECT_NE(OlderModelNotice(p.ormel), "");
  p.ormel.solution = {};
  EXPECT_EQ(RestoreSolve(p.ormel), "");
  EXPECT_TRUE(p.ormel.solution.OfOlderModel) << "after closing and opening too";

  // The batch program knows nothing but the stamp.
  p.ormel.solution = {};
  ModelRunVadox(p.ormel, {.KeepSolution = true});
  EXPECT_EQ(p.ormel.note, "OLDER MODEL");
  p.ui.OnForm("SolvePrompt", [](Form& form) { form.Click("SolveOption(0)"); });
  ModelRunVadox(p.ormel, {.AskFirst = true});
  EXPECT_EQ(p.ormel.note, "CURRENT");
  EXPECT_EQ(OlderModelNotice(p.ormel), "");
}

TEST(Driver, AStemThatIsAnothersIsNotOverwritten) {
  SolverProject p;
  p.ormel.solution.SolutionTime = 0;
  p.Solve();
  const std::string stamp = ReadAll(p.dir / "town.RUN");
  // A copy of the project that still has the first one's stem.
  p.ormel.project.DBName = p.dir / "town.2025.orm";
  p.ormel.solution = {};
  p.ui.AnswerTo("Model Files in Use", {ormel::Answer::kNo, ormel::Answer::kYes});
  ModelRunVadox(p.ormel, {});
  EXPECT_TRUE(p.processes.requests.empty());
  EXPECT_NE(p.ui.LastText().find("town.orm"), std::string::npos) << p.ui.LastText();
  p.solve = [&](const ProcessRequest& request) {
    EXPECT_EQ(request.arguments.back(), "town.2025");
    WriteAll(p.dir / "town.2025.SOL", "its own");
    WriteAll(p.dir / "town.2025.XTR", FullExtraction(p.ormel));
    WriteAll(p.dir / "town.2025.GRD", "its own");
    WriteAll(p.dir / "town.2025.CTR", "LEVEL 10\r\n");
    WriteAll(p.dir / "town.2025.PTH", "* \r\n");
    return Ended();
  };
  ModelRunVadox(p.ormel, {});
  EXPECT_TRUE(p.ormel.solution.ValidSolution);
  EXPECT_EQ(p.Text("select OrmelBaseName from Project"), "town.2025");
  EXPECT_EQ(ReadAll(p.dir / "town.RUN"), stamp);
  EXPECT_EQ(ReadAll(p.dir / "town.SOL"), "new");
}

TEST(Driver, AnInterruptedRunIsTakenBack) {
  for (const bool committing : {false, true}) {
    SolverProject p;
    p.Solve();
    for (const char* file : {"town.SOL", "town.XTR"}) WriteAll(p.dir / file, "old");
    {
      // What a program that is killed in the middle of a run leaves.
      std::filesystem::create_directory(p.dir / "crash");
      KeptFiles files;
      files.Keep(p.dir / "_RUN.JNL", {{p.dir / "town.SOL", RunFile::How::kCopy},
                                      {p.dir / "town.XTR", RunFile::How::kSetAside},
                                      {p.dir / "town.OUT", RunFile::How::kSetAside}});
      for (const char* file : {"town.SOL", "town.XTR", "town.OUT"}) WriteAll(p.dir / file, "half");
      if (committing) files.Committing();
      for (const char* file : {"_RUN.JNL", "town.SOL.before", "town.XTR.before"})
        std::filesystem::copy_file(p.dir / file, p.dir / ("crash/" + std::string(file)));
    }
    for (const auto& entry : std::filesystem::directory_iterator(p.dir / "crash"))
      std::filesystem::copy_file(entry.path(), p.dir / entry.path().filename().string());
    for (const char* file : {"town.SOL", "town.XTR", "town.OUT"}) WriteAll(p.dir / file, "half");
    WriteAll(p.dir / "town.XTR.4711.tmp", "torn");
    WriteAll(p.dir / "_RUN.JNL.4711-12.tmp", "torn");
    EXPECT_TRUE(TakeBackInterruptedRun(p.ormel));
    EXPECT_EQ(ReadAll(p.dir / "town.SOL"), committing ? "half" : "old");
    EXPECT_EQ(ReadAll(p.dir / "town.XTR"), committing ? "half" : "old");
    EXPECT_EQ(FileExists(p.dir / "town.OUT"), committing) << "was not there before the run";
    for (const char* file :
         {"_RUN.JNL", "_RUN.JNL.4711-12.tmp", "town.SOL.before", "town.XTR.before", "town.XTR.4711.tmp"})
      EXPECT_FALSE(FileExists(p.dir / file)) << file;
    EXPECT_FALSE(TakeBackInterruptedRun(p.ormel));
  }
}

TEST(Driver, RefusedContinuationStartsNothing) {
  SolverProject p;
  p.Solve();
  p.ui.InputTo("Continue Solution", std::nullopt);
  ModelRunVadox(p.ormel, {.ContinueSolve = true});
  EXPECT_TRUE(p.processes.requests.empty());
  EXPECT_TRUE(ReadAll(p.dir / "REGRID.DAT").ends_with(" time          12.5 \r\n"));
  ExpectAsBefore(p);
}

TEST(Driver, MissingSolverIsToldAndLosesNothing) {
  SolverProject p;
  p.Solve();
  std::filesystem::remove(p.dir / "VADOX1.EXE");
  p.processes.environment["Vadox"] = "/opt/vadox";
  p.processes.on_run = [](const ProcessRequest&, const auto&, const auto&) {
    ProcessResult result;
    result.failure = "No such file or directory";
    return result;
  };
  p.ui.OnForm("SolvePrompt", [](Form& form) { form.Click("SolveOption(0)"); });
  p.ui.AnswerTo("Model Changed!", {ormel::Answer::kNo});
  ModelRunVadox(p.ormel, {.AskFirst = true});
  ASSERT_EQ(p.ui.boxes.size(), 3U);
  EXPECT_EQ(p.ui.boxes[0].text, "VADOX1.EXE does not exist in the ormel directory!");
  EXPECT_EQ(p.ui.boxes[1].text, "No such file or directory\n/opt/vadox/VADOX1.EXE");
  EXPECT_EQ(p.ui.boxes[1].icon, Icon::kStop);
  ExpectAsBefore(p);
}

TEST(Driver, FatalStopsAreToldAndLoadNothing) {
  const struct {
    const char* name;
    const char* words;  ///< of VADOX.OPS
    ProcessResult result;
    const char* text;
  } cases[] = {
      {"words", "Line 7 of the deck\nis bad\n", Ended(3),
       "Ormel Encountered a fatal error: \n\nLine 7 of the deck\nis bad\n"},
      {"words and a clean end", "x", Ended(0), "Ormel Encountered a fatal error: \n\nx\n"},
      {"crash", nullptr, Ended(0, 11), "VADOX1.EXE was stopped by signal 11 without a message."},
      {"code", nullptr, Ended(2), "VADOX1.EXE ended with code 2 without a message."},
      {"no results", nullptr, Ended(0), "VADOX1.EXE ended without its results file"},
  };
  for (const auto& c : cases) {
    for (const bool fresh : {true, false}) {
      SolverProject p;
      p.Solve();
      p.solve = [&](const ProcessRequest&) {
        if (c.words != nullptr) WriteAll(p.dir / "VADOX.OPS", c.words);
        return c.result;
      };
      if (fresh) p.ui.OnForm("SolvePrompt", [](Form& form) { form.Click("SolveOption(0)"); });
      ModelRunVadox(p.ormel, {.AskFirst = fresh});
      ASSERT_EQ(p.ui.boxes.size(), 1U) << c.name;
      EXPECT_EQ(p.ui.LastTitle(), "Fatal execution error") << c.name;
      EXPECT_NE(p.ui.LastText().find(c.text), std::string::npos) << c.name << ": " << p.ui.LastText();
      const SolutionState& s = p.ormel.solution;
      EXPECT_FALSE(s.ValidSolution || s.GridValid || s.ContoursValid || s.PathlinesValid) << c.name;
      EXPECT_FALSE(FileExists(p.dir / "VADOX.OPS"));
      EXPECT_EQ(p.WellHead(), 21.25) << c.name;
      for (const char* file : {"town.SOL", "town.GRD", "town.PTH", "town.XTR", "town.CTR"})
        EXPECT_TRUE(FileExists(p.dir / file)) << c.name << ": the old files are back: " << file;
      EXPECT_EQ(p.processes.requests.size(), 1U) << "no contours, " << c.name;
    }
  }
}

/// A file that does not answer for every element, or holds something else, is refused; what stood stays.
TEST(Driver, AFatalStopNamesTheUsersElementAndShowsIt) {
  SolverProject p;
  p.solve = [&](const ProcessRequest&) {
    WriteAll(p.dir / "VADOX.OPS",
             "town.DAT line 7: LS_000002_0101 crosses WL_000001, not WL_999999 or XWL_000001");
    WriteAll(p.dir / "ERROR.LOG", "*\r\nLS_000002_0101 crosses\r\n");
    return Ended(1);
  };
  p.ui.AnswerTo("Zoom to Element", {Answer::kYes});
  ModelRunVadox(p.ormel, {});
  EXPECT_FALSE(p.ormel.solution.ValidSolution);
  const std::string text = p.ui.boxes.front().text;
  EXPECT_NE(text.find("River (LS_000002_0101) crosses Town 1 (WL_000001), not WL_999999 or XWL_000001"),
            std::string::npos)
      << text;
  EXPECT_EQ(p.ormel.selection.SelectedType, Element::kLinesink);
  EXPECT_EQ(p.ormel.selection.pid, 2);
  EXPECT_EQ(p.view.zooms.back(), Zoom::kApplyWindow);
  EXPECT_EQ(ReadAll(p.dir / "ERROR.LOG"), "*\r\nRiver (LS_000002_0101) crosses\r\n");
}

TEST(Driver, WhatCannotBeSolvedIsSaidBeforeTheSolverStarts) {
  SolverProject p;
  p.Run("insert into Vertices(PID,Seq,X,Y) values(8,301,1250,2050)");  // below the triangle's first side
  p.ui.AnswerTo("Zoom to Element", {Answer::kNo});
  ModelRunVadox(p.ormel, {});
  EXPECT_EQ(p.ui.boxes.front().title, "Crossing Lines");
  EXPECT_NE(p.ui.boxes.front().text.find("inhomogeneity Domain 8 (IN_000008) crosses itself"),
            std::string::npos)
      << p.ui.boxes.front().text;
  EXPECT_TRUE(p.processes.requests.empty());

  TestProject empty;
  ModelRunVadox(empty.ormel, {});
  EXPECT_EQ(empty.ui.LastTitle(), "No Elements");
  EXPECT_TRUE(empty.processes.requests.empty());
}

TEST(Driver, DamagedResultsAreRefusedAndTheOldOnesStay) {
  const auto without = [](std::string text, const std::string& part) {
    const std::size_t at = text.find(part);
    EXPECT_NE(at, std::string::npos) << part;
    return text.erase(at, part.size());
  };
  const auto with = [](std::string text, const std::string& part, const std::string& other) {
    return text.replace(text.find(part), part.size(), other);
  };
  SolverProject p;
  p.Solve();
  const std::string good = ReadAll(p.dir / "town.XTR");
  struct Damage {
    const char* what;
    std::string text;
    const char* told;
  };
  const Damage cases[] = {
      {"empty", "", "cut off"},
      {"comments only", "* Results of town\r\n* End of results\r\n", "no record of"},
      {"no end mark", without(good, "* End of results\r\n"), "cut off"},
      {"cut in its last line", good.substr(0, good.size() - 2), "cut off"},
      {"cut in the middle", good.substr(0, good.find("! slurry")), "cut off"},
      {"a foreign label", with(good, "WL_000001", "WL_000777"), "name no element"},
      {"a well left out", without(good, " 250.5,300,0.3,850,21.25,WL_000002\r\n"), "no record of WL_000002"},
      {"a flux line left out", without(good, " FL_000018, 12.75\r\n"), "no record of FL_000018"},
      {"no number", with(good, "850,21.25,WL_000001", "850,nan,WL_000001"), "what is no number"},
      {"an infinite number", with(good, "850,21.25,WL_000001", "850,1e999,WL_000001"), "what is no number"},
      {"another origin", "* Origin 1000 2150\r\n" + good, "another origin"},
  };
  for (const Damage& c : cases) {
    for (const bool fresh : {true, false}) {
      p.ui.boxes.clear();
      p.solve = [&](const ProcessRequest&) {
        p.WriteResults();
        WriteAll(p.dir / "town.XTR", c.text);
        return Ended();
      };
      if (fresh) p.ui.OnForm("SolvePrompt", [](Form& form) { form.Click("SolveOption(0)"); });
      ModelRunVadox(p.ormel, {.AskFirst = fresh});
      EXPECT_EQ(p.ui.LastTitle(), "Fatal execution error") << c.what;
      EXPECT_NE(p.ui.LastText().find(c.told), std::string::npos) << c.what << ": " << p.ui.LastText();
      EXPECT_EQ(ReadAll(p.dir / "town.XTR"), good) << c.what;
      EXPECT_EQ(p.WellHead(), 21.25) << c.what;
      EXPECT_TRUE(p.ormel.solution.ValidSolution) << c.what;
    }
  }
}

TEST(Driver, AnElementThatTheSolverLeftOutIsNoDamage) {
  SolverProject p;
  p.solve = [&](const ProcessRequest&) {
    p.WriteResults();
    std::string text = ReadAll(p.dir / "town.XTR");
    for (std::size_t at; (at = text.find(",IN_000010_")) != std::string::npos;)
      text.erase(text.rfind('\n', at) + 1, text.find('\n', at) - text.rfind('\n', at));
    WriteAll(p.dir / "town.XTR", text);
    WriteAll(p.dir / "error.log", "*\r\nIN_000010_0000 encloses no area: it is left out.\r\n");
    return Ended();
  };
  p.Run("update Model set ViewErrorLog=0");
  ModelRunVadox(p.ormel, {});
  EXPECT_TRUE(p.ormel.solution.ValidSolution) << p.ui.LastText();
  EXPECT_EQ(p.ormel.feedback, "2 elements have no results.");
}

TEST(Driver, ARecordThatIsTooShortAsks) {
  for (const ormel::Answer answer : {ormel::Answer::kNo, ormel::Answer::kYes}) {
    SolverProject p;
    p.solve = [&](const ProcessRequest&) {
      p.WriteResults();
      std::string text = ReadAll(p.dir / "town.XTR");
      text.insert(text.find("! head specified line sinks"), " 1,2,3\r\n");
      WriteAll(p.dir / "town.XTR", text);
      return Ended();
    };
    p.ui.AnswerTo("Import error", {answer});
    ModelRunVadox(p.ormel, {});
    EXPECT_EQ(p.ormel.solution.ValidSolution, answer == ormel::Answer::kYes);
  }
}

TEST(Driver, FailingContourProgramKeepsTheResults) {
  for (const bool missing : {true, false}) {
    SolverProject p;
    if (missing) std::filesystem::remove(p.dir / "CONTOUR.EXE");
    WriteAll(p.dir / "town.CTR", "LEVEL 1\r\n");  // of an older solution
    p.processes.on_run = [&](const ProcessRequest& request, const auto&, const auto&) {
      if (!request.program.ends_with("CONTOUR.EXE")) return p.WriteResults();
      ProcessResult result = Ended(1);
      result.started = !missing;
      return result;
    };
    ModelRunVadox(p.ormel, {});
    EXPECT_EQ(p.ui.boxes.size(), missing ? 2U : 1U);
    EXPECT_TRUE(p.ormel.solution.ValidSolution);
    EXPECT_FALSE(p.ormel.solution.ContoursValid);
    EXPECT_FALSE(FileExists(p.dir / "town.CTR"));
    EXPECT_EQ(p.WellHead(), 21.25);
  }
}

TEST(Driver, WhatIsSwitchedOffLeavesNoFileOfAnotherSolution) {
  SolverProject p;
  p.Solve();
  p.Run("update Model set CONTOURShow=0, TRACECompute=0");
  p.solve = [&](const ProcessRequest&) {
    WriteAll(p.dir / "town.XTR", FullExtraction(p.ormel));
    WriteAll(p.dir / "town.SOL", "new");
    return Ended();
  };
  ModelRunVadox(p.ormel, {});
  EXPECT_TRUE(FileExists(p.dir / "town.GRD")) << "the solution is the same";
  EXPECT_EQ(p.processes.requests.size(), 1U);
  p.ormel.solution.ValidSolution = false;
  ModelRunVadox(p.ormel, {});
  for (const char* file : {"town.GRD", "town.CTR", "town.PTH"})
    EXPECT_FALSE(FileExists(p.dir / file)) << file;
  EXPECT_EQ(p.processes.requests.size(), 2U) << "without a grid there is nothing to contour";
  EXPECT_FALSE(p.ormel.layers.On(Layer::kContours));
  EXPECT_TRUE(p.ormel.solution.ValidSolution);
}

TEST(Driver, ErrorLogIsOfferedWhenItSpeaks) {
  SolverProject p;
  p.Run("update Model set ViewMessageLog=0");
  p.solve = [&](const ProcessRequest&) {
    p.WriteResults();
    WriteAll(p.dir / "error.log", "*\r\nWL_000001 is dry\r\n");
    return Ended();
  };
  ModelRunVadox(p.ormel, {.ViewLogs = true});
  EXPECT_EQ(p.ui.viewed_files, std::vector<std::string>{p.dir / "error.log"});
}

TEST(Driver, ModelFolderThatIsGoneIsToldAndLosesNothing) {
  SolverProject p;
  p.Solve();
  const std::string folder = p.ormel.project.OrmelBasePath;
  p.ormel.project.OrmelBasePath = p.dir / "gone";
  p.ormel.solution.ValidSolution = false;
  ModelRunVadox(p.ormel, {});
  EXPECT_EQ(p.ui.LastTitle(), "Unhandled Error -- Contact the ZRB");
  EXPECT_NE(p.ui.LastText().find("Unhandled error in ModelRunVadox"), std::string::npos);
  EXPECT_NE(p.ui.LastText().find("gone/"), std::string::npos) << p.ui.LastText();
  EXPECT_EQ(p.WellHead(), 21.25);
  EXPECT_TRUE(p.processes.requests.empty());
  p.ormel.project.OrmelBasePath = folder;
}

TEST(Driver, DeckThatCannotBeWrittenLosesNothing) {
  SolverProject p;
  p.Solve();
  p.Run("drop table INResults");  // found missing when others are empty already
  p.ui.OnForm("SolvePrompt", [](Form& form) { form.Click("SolveOption(0)"); });
  p.ui.AnswerTo("Model Changed!", {ormel::Answer::kNo});
  ModelRunVadox(p.ormel, {.AskFirst = true});
  EXPECT_NE(p.ui.boxes.at(0).text.find("Unhandled error in SeedResultRows"), std::string::npos);
  EXPECT_LE(p.ui.wait_depth, 0);
  ExpectAsBefore(p);
}

TEST(Driver, SolutionTimeWantsASolution) {
  SolverProject p;
  SolutionTime(p.ormel);
  EXPECT_EQ(p.ui.LastTitle(), "Can't set time");
  p.Solve();
  p.ui.InputTo("Solution Time", "-1");
  SolutionTime(p.ormel);
  EXPECT_TRUE(p.processes.requests.empty());
  p.ui.InputTo("Solution Time", "30.5");
  SolutionTime(p.ormel);
  EXPECT_EQ(p.ui.input_boxes.back().initial, "12.5");
  EXPECT_NE(ReadAll(p.dir / "REGRID.DAT").find(" time          30.5 \r\n"), std::string::npos);
  EXPECT_NE(ReadAll(p.dir / "REGRID.DAT").find(" message regrid.log\r\n"), std::string::npos);
}

TEST(Driver, RunFilesAndErrorNumbers) {
  SolverProject p;
  for (const int index : {0, 1, 5, 8, -1}) RUN_FILES(p.ormel, index);
  EXPECT_EQ(p.ui.viewed_files,
            (std::vector<std::string>{p.dir / "town.DAT", p.dir / "ERROR.LOG", p.dir / "town.XTR"}));
  OrmelErrorAnalysis(p.ormel, "Oops", 91);
  EXPECT_EQ(p.ui.LastText(), "Oops (error number 91)");
  EXPECT_EQ(p.ui.boxes.back().icon, Icon::kNone);
  OrmelErrorAnalysis(p.ormel, "Oops", 3051);
  EXPECT_TRUE(p.ui.LastText().starts_with("Oops (error number 3051)\n\n The file might be 'read only'."));
  EXPECT_EQ(p.ui.boxes.back().icon, Icon::kStop);
}

}  // namespace
}  // namespace ormel::test
