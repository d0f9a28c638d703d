// Values at the edge of what can be asked for, and runs that end before their work is done.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <thread>

#include "vadox1/program_run.h"

namespace vadox1 {
namespace {

using test::Labelled;
using test::Outcome;
using test::ReadXtr;
using test::Town;
using testing::HasSubstr;

const std::string kModel =
    " error error.log\n yes\n message message.log\n yes\n echo nul\n quit\n title my town\n aquifer\n base "
    "0\n"
    " permeability 10\n thickness 20\n porosity .25\n uniflow -1.2 0\n reference 900 500 60\n quit\n"
    " layout\n window -2000 -1500 2000 1500\n quit\n"
    " well\n discharge\n 0 0 800 .15 WL_000001\n quit\n"
    " linesink\n discharge\n 100 100 300 100 .5 LS_000004_0001\n quit\n";
const std::string kSolve = " solve 2 0 0 1\n";

std::string Grid(int columns) {
  return " grid\n horizontalpoints " + std::to_string(columns) + "\n go\n surfer my town\n quit\n";
}
std::string Trace(const std::string& time, const std::string& step) {
  return " trace\n file my town\n time " + time + "\n" + step + " points\n 900 0 3 1\n quit\n go\n quit\n";
}

TEST(Edges, a_grid_of_no_columns_a_time_of_nothing_and_a_step_of_nothing_solve) {
  for (const int columns : {0, 1}) {
    Town town;
    ormel::test::WriteAll(town / "my town.GRD", "of an older model");
    const Outcome run = town.Run(kModel + kSolve + Grid(columns) + Trace("0", "") + " stop\n");
    ASSERT_EQ(run.status, 0) << run.fatal;
    EXPECT_FALSE(town.Has("my town.GRD")) << "an older grid must not pass as this one";
    EXPECT_EQ(town.Read("my town.PTH"), "* \r\n");
    EXPECT_THAT(town.Read("message.log"), HasSubstr("no paths were traced"));
    EXPECT_THAT(town.Read("message.log"), HasSubstr("no heads were gridded"));
  }
  Town none, standard;
  ASSERT_EQ(none.Run(kModel + kSolve + Trace("1000", " step 0\n") + " stop\n").status, 0);
  ASSERT_EQ(standard.Run(kModel + kSolve + Trace("1000", "") + " stop\n").status, 0);
  EXPECT_EQ(none.Read("my town.PTH"), standard.Read("my town.PTH"));
  EXPECT_THAT(none.Read("message.log"), HasSubstr("tracing step is 0"));
}

TEST(Edges, a_domain_of_conductivity_0_is_refused_with_its_label) {
  Town town;
  const Outcome run = town.Run(kModel +
                               " inhomogeneity\n transmissivity 0 -9999 -9999 0 -9999 IN_000007_0000\n"
                               " 0 0 IN_000007_0001\n 9 0 IN_000007_0002\n 9 9 IN_000007_0003\n quit\n" +
                               kSolve + " stop\n");
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.fatal, HasSubstr("IN_000007_0000"));
  EXPECT_THAT(run.fatal, HasSubstr("conductivity must be above zero"));
}

TEST(Edges, the_seventh_field_of_a_line_sink_of_given_discharge_is_its_label) {
  Town town;
  ASSERT_EQ(town.Run(kModel + kSolve + " extract\n file x\n linesink discharge\n quit\n stop\n").status, 0);
  const auto record = Labelled(ReadXtr(town.Read("x.XTR")), "LS_000004_0001");
  EXPECT_EQ(record.fields.size(), 7u);
  EXPECT_NEAR(record.Number(5), 100.0, 1e-9);
}

/// Rivers side by side, from south to north.
std::string Rivers(int segments) {
  std::string text = " linesink\n";
  for (int i = 0; i < segments; ++i) {
    if (i % 100 == 0) text += " head\n resistance 0\n width 0 0\n depth 0\n";
    const int x = 90 * (i / 100) + 7 * (i % 3), y = 80 * (i % 100);
    text += " " + std::to_string(x) + " " + std::to_string(y) + " " +
            std::to_string(90 * (i / 100) + 7 * ((i + 1) % 3)) + " " + std::to_string(y + 80) + " " +
            std::to_string(40 + i % 100) + " LS_" + std::to_string(1000000 + i) + "\n";
  }
  return text + " quit\n";
}

// The limit on processor time ends a run that would wait for memory for ever.
TEST(Edges, a_run_short_of_memory_says_so_and_ends) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "needs more room by itself";
#endif
  for (const int megabytes : {80, 180, 340, 480}) {
    Town town;
    const Outcome run = town.Run(kModel + Rivers(1000) + kSolve + Grid(200) + " stop\n", Town::kStem,
                                 "ulimit -t 20; ulimit -v " + std::to_string(1024 * megabytes) + ";");
    EXPECT_EQ(run.status, 1) << megabytes << run.errors;
    EXPECT_THAT(run.fatal, HasSubstr("more memory")) << megabytes;
    EXPECT_FALSE(town.Has("my town.GRD"));
  }
}

TEST(Edges, a_signal_ends_a_large_run_soon_wherever_it_is) {
  for (const int after : {0, 400, 900, 1700}) {
    Town town;
    ormel::test::WriteAll(town / "my town.DAT", kModel + Rivers(20000) + kSolve + " stop\n");
    const pid_t run = town.StartAside();
    while (!town.Has("out.txt") || town.Read("out.txt").empty())
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    std::this_thread::sleep_for(std::chrono::milliseconds(after));
    const auto asked = std::chrono::steady_clock::now();
    ASSERT_EQ(kill(run, SIGTERM), 0);
    int status = 0;
    ASSERT_EQ(waitpid(run, &status, 0), run);
    // A fifth of a second on an idle machine.
    EXPECT_LT(std::chrono::steady_clock::now() - asked, std::chrono::milliseconds(1200)) << after;
    ASSERT_TRUE(WIFEXITED(status)) << after;
    EXPECT_EQ(WEXITSTATUS(status), 2) << after;
    EXPECT_THAT(town.Read("VADOX.OPS"), HasSubstr("interrupted")) << after;
  }
}

}  // namespace
}  // namespace vadox1
