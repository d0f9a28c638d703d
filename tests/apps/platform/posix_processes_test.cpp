// Outside programs: what they get, what comes back, and how they end.
#include "platform/posix_processes.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <thread>
#include <vector>

#include "support/temp_dir.h"

namespace ormel::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

struct ProcessesTest : ::testing::Test {
  TempDir dir;
  PosixProcesses processes{"/programs"};
  std::vector<std::string> lines;

  ProcessResult Shell(const std::string& script, std::vector<std::string> more = {},
                      const std::function<bool()>& cancelled = {}) {
    std::vector<std::string> arguments{"-c", script};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return processes.Run(
        {"/bin/sh", arguments, dir.path().string()},
        [this](const std::string& line) { lines.push_back(line); }, cancelled);
  }
};

TEST_F(ProcessesTest, GivesLinesFolderArgumentsAndExitCode) {
  const std::string odd = "a \"b\" $HOME `x` 'y'\\";
  const ProcessResult result =
      Shell("pwd; printf '%s\\n' \"$0\"; printf 'cr\\r\\n'; printf 'no end'; cat; exit 7", {odd});
  EXPECT_TRUE(result.started);
  EXPECT_EQ(result.exit_code, 7);
  EXPECT_EQ(result.signal, 0);
  EXPECT_FALSE(result.cancelled);
  EXPECT_EQ(lines, (std::vector<std::string>{dir.path().string(), odd, "cr", "no end"}));
}

TEST_F(ProcessesTest, SaysWhyAProgramDidNotStart) {
  const ProcessResult missing = processes.Run({dir / "none", {}, ""}, {}, {});
  EXPECT_FALSE(missing.started);
  EXPECT_EQ(missing.failure, "No such file or directory");
  WriteAll(dir / "text", "no program");
  EXPECT_FALSE(processes.Run({dir / "text", {}, ""}, {}, {}).started);
  EXPECT_FALSE(processes.Run({"/bin/true", {}, dir / "no folder"}, {}, {}).started);
}

TEST_F(ProcessesTest, TellsASignalFromAnExit) {
  const ProcessResult result = Shell("kill -SEGV $$");
  EXPECT_TRUE(result.started);
  EXPECT_EQ(result.signal, SIGSEGV);
}

TEST_F(ProcessesTest, EndsACancelledProgramCleanlyAndOtherwiseForGood) {
  processes.grace = milliseconds(300);
  const auto ready = [this] { return !lines.empty(); };
  const ProcessResult clean =
      Shell("trap 'echo bye; exit 5' INT; echo ready; while :; do sleep 0.05; done", {}, ready);
  EXPECT_TRUE(clean.cancelled);
  EXPECT_EQ(clean.exit_code, 5);
  EXPECT_EQ(lines.back(), "bye");

  lines.clear();
  const auto start = steady_clock::now();
  const ProcessResult deaf = Shell("trap '' INT; echo ready; while :; do sleep 0.05; done", {}, ready);
  EXPECT_TRUE(deaf.cancelled);
  EXPECT_EQ(deaf.signal, SIGKILL);
  EXPECT_GE(steady_clock::now() - start, milliseconds(300));
}

TEST_F(ProcessesTest, EndsAChildThatItsProgramLeavesBehind) {
  const auto start = steady_clock::now();
  const ProcessResult result = Shell("echo first; (sleep 0.6; touch late) & exit 0");
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(lines, std::vector<std::string>{"first"});
  EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(10));
  std::this_thread::sleep_for(milliseconds(900));
  EXPECT_FALSE(std::filesystem::exists(dir.path() / "late")) << "the child outlives its program";
}

TEST_F(ProcessesTest, HandsOnALineWithoutEndInPieces) {
  Shell("head -c 300000 /dev/zero | tr '\\0' x");
  std::size_t size = 0;
  for (const std::string& line : lines) {
    EXPECT_LE(line.size(), 64U * 1024U);
    size += line.size();
  }
  EXPECT_EQ(size, 300000U);
}

TEST_F(ProcessesTest, LeavesNoProgramBehindWhenTheListenerFails) {
  EXPECT_THROW(processes.Run({"/bin/sh", {"-c", "echo x; sleep 0.4; touch late"}, dir.path().string()},
                             [](const std::string&) { throw std::runtime_error("full"); }, {}),
               std::runtime_error);
  std::this_thread::sleep_for(milliseconds(700));
  EXPECT_FALSE(std::filesystem::exists(dir / "late"));
}

TEST_F(ProcessesTest, OneHoldsALockAtATime) {
  const std::string file = dir / "lock";
  std::shared_ptr<void> first = processes.Lock(file);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(PosixProcesses().Lock(file), nullptr);
  // A program that the holder has started does not hold it.
  Shell("sleep 0");
  first.reset();
  EXPECT_FALSE(std::filesystem::exists(file)) << "nothing of a lock stays";
  EXPECT_NE(PosixProcesses().Lock(file), nullptr);
  EXPECT_NE(processes.Lock(dir / "no folder/lock"), nullptr) << "the run itself tells what is amiss there";
  // The holder's end, whatever it is, frees it.
  const pid_t child = fork();
  if (child == 0) {
    const std::shared_ptr<void> held = PosixProcesses().Lock(file);
    kill(getpid(), SIGKILL);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_NE(processes.Lock(file), nullptr);
}

TEST(OwnFolder, IsThatOfTheTestProgram) {
  EXPECT_TRUE(std::filesystem::exists(OwnProgramFolder() + "/test_platform"));
  EXPECT_EQ(PosixProcesses().ProgramFolder(), OwnProgramFolder());
}

}  // namespace
}  // namespace ormel::test
