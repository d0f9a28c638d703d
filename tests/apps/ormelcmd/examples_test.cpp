// The shipped example projects, solved by the program itself: what a newcomer sees first has to be right.
#include <cmath>
#include <filesystem>
#include <sstream>

#include "ormelcmd/run.h"

namespace ormel::test {
namespace {

struct ExamplesTest : OrmelcmdTest {
  /// The column of a table of results, by its heading.
  std::vector<double> Column(const std::string& project, const std::string& table, const std::string& name) {
    std::istringstream text(Do({"results", project, "--table", table, "--csv"}));
    const auto cells = [](const std::string& line) {
      std::vector<std::string> parts(1);
      bool quoted = false;
      for (const char c : line) {
        if (c == '"') quoted = !quoted;
        if (c == ',' && !quoted)
          parts.emplace_back();
        else if (c != '"')
          parts.back() += c;
      }
      return parts;
    };
    std::string line;
    std::getline(text, line);
    const std::vector<std::string> heading = cells(line);
    std::size_t at = 0;
    while (at < heading.size() && heading[at] != name) ++at;
    std::vector<double> column;
    while (std::getline(text, line)) column.push_back(std::stod(cells(line).at(at)));
    EXPECT_FALSE(column.empty()) << table << ' ' << name;
    return column;
  }
  void Solve(const std::string& name) {
    std::filesystem::copy_file(std::string(ORMEL_SOURCE_DIR) + "/examples/" + name, dir / name);
    Do({"solve", "--yes", name});
  }
};

double Sum(const std::vector<double>& values) {
  double sum = 0.0;
  for (const double v : values) sum += v;
  return sum;
}

TEST_F(ExamplesTest, MeetTheirObservedHeads) {
  struct Case {
    const char* name;
    double close;  ///< to the observed heads, root of the mean square [length of the project]
  };
  for (const Case& c : {Case{"example.orm", 0.25}, Case{"basin and range.orm", 2.0}}) {
    Solve(c.name);
    double squares = 0.0;
    const std::vector<double> differences = Column(c.name, "testpoints", "Difference");
    for (const double d : differences) squares += d * d;
    EXPECT_LT(std::sqrt(squares / static_cast<double>(differences.size())), c.close) << c.name;
    EXPECT_GT(std::filesystem::file_size(
                  dir / (std::string(c.name).substr(0, std::string(c.name).size() - 3) + "CTR")),
              1000U)
        << c.name;
  }
}

TEST_F(ExamplesTest, TheClosedBasinLosesWhatItGets) {
  Solve("basin and range.orm");
  // 0.002 ft/d on 88.7e6 square feet and 0.0015 ft/d on 44.4e6: nothing passes the bedrock.
  const double recharge = 0.002 * 88.7e6 + 0.0015 * 44.4e6;
  const double out = Sum(Column("basin and range.orm", "wells", "Discharge")) +
                     Sum(Column("basin and range.orm", "linesinks", "Discharge"));
  EXPECT_NEAR(out / recharge, 1.0, 0.002);
  // Clay at 4,345 ft: confined under the fans, drained around the wells.
  const std::vector<double> heads = Column("basin and range.orm", "testpoints", "ModelHead");
  EXPECT_GT(heads.front(), 4345.0);
  for (const double head : Column("basin and range.orm", "wells", "Head")) EXPECT_LT(head, 4345.0);
}

TEST_F(OrmelcmdTest, TheWindowSaysThatItFindsNoDisplay) {
  program = "/usr/bin/env";
  const Outcome outcome = Run({"-u", "QT_QPA_PLATFORM", "-u", "WAYLAND_DISPLAY", "DISPLAY=nowhere.invalid:77",
                               std::string(ORMEL_BIN_DIR) + "/ormel"});
  EXPECT_EQ(outcome.code, 4);
  EXPECT_EQ(outcome.err.find("ormel: no window can be opened: the display cannot be reached"), 0U)
      << outcome.err;
  EXPECT_NE(outcome.err.find("ormelcmd"), std::string::npos) << outcome.err;
}

}  // namespace
}  // namespace ormel::test
