// The zones block through the solver: what it writes, what it leaves out, what it refuses.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>

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
