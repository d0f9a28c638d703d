// The zones block through the solver: what it writes, what it leaves out, what it refuses.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <thread>

#include "program_run.h"

namespace vadox1::test {
namespace {

/// Two wells in an aquifer of porosity times thickness 2.5; the second one gives water.
std::string DeckWith(const std::string& zones) {
  return " error e.log\n yes\n message m.log\n yes\n echo nul\n quit\n aquifer\n base 0\n permeability 20\n "
         "thickness 10\n"
         " porosity 0.25\n reference 5000 5000 500\n quit\n layout\n window -500 -500 500 500\n quit\n "
         "well\n discharge\n"
         " 10 20 400 0.3 WL_000001\n 3000 20 -50 0.3 WL_000002\n quit\n solve 1 0 0 1\n save town\n y\n" +
         zones + " stop\n";
}

TEST(ProgramZones, WritesRingsAndTheirBalance) {
  Town town;
  const Outcome outcome =
      town.Run(DeckWith(" zones\n file town\n y\n tolerance 0.002\n times 365 100\n well 10 20\n well 3000 "
                        "20\n well 7 7\n go\n quit\n"));
  ASSERT_EQ(outcome.status, 0) << outcome.fatal << outcome.errors;
  const std::string errors = town.Read("e.log");
  EXPECT_NE(errors.find("takes no water"), std::string::npos) << errors;
  EXPECT_NE(errors.find("No well stands at 7, 7"), std::string::npos) << errors;
  std::istringstream file(town.Read("town.ZNS"));
  int zones = 0, wells = 0;
  bool done = false;
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line);
    std::string keyword;
    words >> keyword;
    wells += keyword == "WELL";
    done = keyword == "DONE";
    if (keyword != "ZONE") continue;
    double time = 0, area = 0, pumped = 0, pores = 0;
    words >> time >> area >> pumped >> pores;
    EXPECT_EQ(time, zones++ == 0 ? 100 : 365);
    EXPECT_NEAR(pumped, 400 * time, 1e-6);
    EXPECT_NEAR(area * 2.5 / pumped, 1.0, 1e-3);
    EXPECT_NEAR(pores / pumped, 1.0, 1e-3);
  }
  EXPECT_EQ(wells, 1);
  EXPECT_EQ(zones, 2);
  EXPECT_TRUE(done);
}

/// Wells that compete, 24 in rows, with a stream of 120 segments among them: zones that take the program
/// long.
std::string HeavyDeck() {
  std::ostringstream deck, wells;
  deck << " error e.log\n yes\n message m.log\n yes\n echo nul\n quit\n aquifer\n base 0\n permeability 20\n "
          "thickness 10\n porosity 0.25\n uniflow 0.4 0.1\n reference 9000 9000 100\n quit\n layout\n window "
          "-4000 -4000 4000 4000\n quit\n well\n discharge\n";
  for (int i = 0; i < 24; ++i) {
    const int x = 400 * (i % 8) - 1500, y = 450 * (i / 8) - 900;
    deck << " " << x << " " << y << " " << 60 + 37 * (i % 7) << " 0.3 WL_" << 100001 + i << "\n";
    wells << " well " << x << " " << y << "\n";
  }
  deck << " quit\n linesink\n head\n";
  for (int i = 0; i < 120; ++i)
    deck << " " << -2000 + 30 * i << " " << 80 * (i % 2) + 200 << " " << -1970 + 30 * i << " "
         << 80 * ((i + 1) % 2) + 200 << " 99.5 LS_" << 100001 + i << "\n";
  deck << " quit\n solve 1 0 0 1\n zones\n file town\n y\n times 730 3650 36500\n"
       << wells.str() << " go\n quit\n stop\n";
  return deck.str();
}

/// Processor time of a process so far [s].
double ProcessorTime(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/stat");
  std::string text((std::istreambuf_iterator<char>(file)), {});
  std::istringstream fields(text.substr(text.rfind(')') + 1));
  std::string word;
  double user = 0.0, system = 0.0;
  for (int i = 0; i < 11; ++i) fields >> word;
  fields >> user >> system;
  return (user + system) / double(sysconf(_SC_CLK_TCK));
}

TEST(ProgramZones, StopAtOnceWhenTold) {
  Town town;
  std::string text;
  for (const char c : HeavyDeck()) text += c == '\n' ? std::string("\r\n") : std::string(1, c);
  ormel::test::WriteAll(town / (std::string(Town::kStem) + ".DAT"), text);
  const pid_t process = town.StartAside();
  ASSERT_GT(process, 0);
  // Until outlining has begun.
  std::string output;
  const auto shows = [&](const char* word) { return output.find(word) != std::string::npos; };
  for (int i = 0; i < 30000 && !shows("Capture zones of"); ++i) {
    usleep(2'000);
    if (town.Has("out.txt")) output = town.Read("out.txt");
    if (kill(process, 0) != 0) break;
  }
  ASSERT_TRUE(shows("Capture zones of")) << output;
  const double before = ProcessorTime(process);
  kill(process, SIGINT);
  int status = 0;
  rusage used{};
  ASSERT_EQ(wait4(process, &status, 0, &used), process);
  const double all = double(used.ru_utime.tv_sec + used.ru_stime.tv_sec) +
                     1e-6 * double(used.ru_utime.tv_usec + used.ru_stime.tv_usec);
  EXPECT_FALSE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_LT((all - before) / std::max(1u, std::thread::hardware_concurrency()), 0.2)
      << "seconds of each core that the program took from being told to stop";
  EXPECT_FALSE(town.Has("town.ZNS"));
  EXPECT_EQ(town.HalfFiles(), 0);
}

TEST(ProgramZones, RefusesABlockThatMakesNoSense) {
  const std::pair<const char*, const char*> decks[] = {
      {" zones\n times 365\n well 10 20\n go\n quit\n", "\"file\" must stand before"},
      {" zones\n file town\n y\n well 10 20\n go\n quit\n", "\"times\" must stand before"},
      {" zones\n file town\n y\n times 365 0\n", "must be greater than zero"},
      {" zones\n file town\n y\n tolerance 2\n", "not above 0.1"},
      {" zones\n file town\n y\n times 365\n boundary 1 1 1 1\n", "one and the same"},
      {" zones\n 1 2 3\n", "Numbers cannot stand here (zones)"}};
  for (const auto& [zones, words] : decks) {
    Town town;
    const Outcome outcome = town.Run(DeckWith(zones));
    EXPECT_NE(outcome.status, 0) << zones;
    EXPECT_NE(outcome.fatal.find(words), std::string::npos) << outcome.fatal;
    EXPECT_FALSE(town.Has("town.ZNS"));
  }
}

}  // namespace
}  // namespace vadox1::test
