// Runs the real command line program in a folder of its own.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "platform/posix_processes.h"
#include "support/temp_dir.h"

namespace ormel::test {

struct Outcome {
  int code = -1;
  std::string out, err;
};

struct OrmelcmdTest : ::testing::Test {
  TempDir dir;
  std::string program = std::string(ORMEL_BIN_DIR) + "/ormelcmd";

  OrmelcmdTest() { setenv("XDG_CONFIG_HOME", (dir / "config").c_str(), 1); }

  Outcome Run(std::vector<std::string> arguments, const std::function<bool()>& cancelled = {}) {
    Outcome outcome;
    arguments.insert(arguments.begin(), {"-c", "exec \"$0\" \"$@\" 2>err.txt", program});
    PosixProcesses processes;
    const ProcessResult result = processes.Run(
        {"/bin/sh", arguments, dir.path().string()},
        [&outcome](const std::string& line) { outcome.out += line + "\n"; }, cancelled);
    outcome.code = result.signal != 0 ? -result.signal : result.exit_code;
    outcome.err = ReadAll(dir / "err.txt");
    return outcome;
  }
  /// Fails the test when the program does.
  std::string Do(const std::vector<std::string>& arguments) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.code, 0) << arguments[0] << ": " << outcome.err;
    return outcome.out;
  }
  /// A small model in metres: one well in a uniform flow, ready to be solved.
  void MakeTown() {
    Do({"new", "town.orm", "--description", "Town"});
    Do({"set", "town.orm", "Model.AQBase=0", "Model.AQThickness=10", "Model.AQHydCond=10",
        "Model.CONTOURShow=1", "Model.CONTOURMinimum=0", "Model.CONTOURMaximum=60",
        "Model.CONTOURInterval=1"});
    Do({"add", "well", "town.orm", "--at", "0,0", "--label", "O'Brien, north", "--rate", "400", "--radius",
        "0.5", "--particles", "8", "--start-elevation", "5"});
    Do({"add", "uniformflow", "town.orm", "--at", "0,1000", "--head", "30", "--gradient", "0.002",
        "--direction", "0"});
    Do({"window", "town.orm", "--window", "-600,-500,600,500"});
  }
};

}  // namespace ormel::test
