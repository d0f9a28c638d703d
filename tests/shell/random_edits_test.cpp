// Commands at random through the dispatcher and the pointer, on the projects that come with the program:
// every step can be taken back and forth, and a program that is killed loses no finished command.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <thread>

#include "core/command.h"
#include "core/window_commands.h"
#include "document/document.h"
#include "document/fingerprint.h"
#include "shell/lifecycle.h"
#include "shell/menus.h"
#include "shell/random_user.h"
#include "support/fakes.h"
#include "support/model_dump.h"
#include "support/recording_device.h"
#include "support/temp_dir.h"
#include "view/mouse.h"

namespace ormel::test {
namespace {

constexpr std::array kExamples{"example.orm", "basin and range.orm"};

int Steps(int otherwise) {
  const char* steps = std::getenv("ORMEL_UNDO_STEPS");
  return steps == nullptr ? otherwise : std::atoi(steps);
}

struct Choice {
  int weight;
  const char* control;
  int index;
};
constexpr std::array kChoices{
    Choice{8, "ELEM_NEW", 1},   Choice{8, "ELEM_NEW", 2},   Choice{6, "ELEM_NEW", 3},
    Choice{6, "ELEM_NEW", 4},   Choice{3, "ELEM_CMDS", 3},  Choice{4, "MODEL_CMDS", 1},
    Choice{5, "MODEL_CMDS", 4}, Choice{5, "MODEL_CMDS", 5}, Choice{5, "MODEL_CMDS", 6},
    Choice{5, "DrawCZ", 0},     Choice{6, "ADDTEXT", 0},    Choice{9, "EDIT_CMDS", 1},
    Choice{9, "EDIT_CMDS", 2},  Choice{9, "EDIT_CMDS", 3},  Choice{6, "EDIT_CMDS", 4},
    Choice{1, "DELETEALL", 1},  Choice{1, "DELETEALL", 2},  Choice{1, "DELETEALL", 3},
    Choice{1, "DELETEALL", 4},  Choice{1, "DELETEALL", 5},  Choice{1, "DELETEALL", 6},
    Choice{1, "DeleteWHPA", 0}, Choice{1, "DeleteWHPA", 1}, Choice{1, "DeleteWHPA", 2},
    Choice{1, "DeleteWHPA", 3}, Choice{3, "WHPA", 0},       Choice{4, "WHPA", 1},
    Choice{4, "WHPA", 2},       Choice{2, "FILE_CMDS", 4},  Choice{1, "EDITORGRID", 1},
    Choice{1, "ZOOM_CMDS", 1},  Choice{2, "ZOOM_CMDS", 3},  Choice{1, "layermenu", 9},
    Choice{9, "UNDO", 0},       Choice{7, "REDO", 0},       Choice{6, "COPY", 0},
    Choice{6, "PASTE", 0},      Choice{1, "SELECTALL", 0}};

/// The program on a copy of an example, with one user.
struct Program {
  Program(const std::string& path, unsigned seed) : user(seed) {
    ormel.ports = {&user, &map, &solver, &processes, &settings, &clock, &window, &document};
    RunCommand(ormel, "FileOpenProject", [&] { FileOpenProject(ormel, path); });
    ormel.selection.radius_squared *= 20.0;  // a click finds something more often
  }
  ~Program() { FileCloseProject(ormel); }

  DevicePoint Somewhere() { return {user.dice.Below(400), user.dice.Below(400)}; }
  /// Mostly on an element.
  DevicePoint Target() {
    if (user.dice.Chance(30)) return Somewhere();
    const std::int64_t count = ormel.db().RowCount("Vertices");
    if (count == 0) return Somewhere();
    RowReader rows(ormel.db(), "select X,Y from Vertices order by VID limit 1 offset ?",
                   {user.dice.Below(static_cast<int>(count))});
    return rows.Next() ? map.vg().vgGDIWorldToDevice(rows.Double(0), rows.Double(1)) : Somewhere();
  }

  void Click(MouseButton button, DevicePoint at) {
    Map_MouseDown(map, button, 0, at);
    Map_MouseUp(map, button, 0, at);
  }
  void DragABox(int shift) {
    const DevicePoint corner = Target();
    const DevicePoint other{corner.x + 4 + user.dice.Below(60), corner.y + 4 + user.dice.Below(60)};
    Map_MouseDown(map, MouseButton::kLeft, shift, corner);
    Map_MouseMove(map, MouseButton::kLeft, shift, other);
    Map_MouseUp(map, MouseButton::kLeft, shift, other);
  }
  void DoMenu() {
    int total = 0;
    for (const Choice& choice : kChoices) total += choice.weight;
    int at = user.dice.Below(total);
    for (const Choice& choice : kChoices) {
      at -= choice.weight;
      if (at < 0) {
        Dispatch(ormel, choice.control, choice.index);
        return;
      }
    }
  }
  /// One act of the user, which may be part of a longer one.  A solution on view is that of the model, or the
  /// user was asked and kept it.
  void Do() {
    if (ormel.mouse.MouseMode != MouseMode::kDigitize && user.dice.Chance(10)) {
      ormel.solution.ValidSolution = true;
      ormel.solution.OfOlderModel = false;
      ormel.solution.solved = SolvedModel{FingerprintOf(ormel)};
    }
    DoOne();
    if (ormel.mouse.MouseMode == MouseMode::kDigitize || ormel.solution.OfOlderModel) return;
    if (!ormel.solution.ValidSolution ||
        FingerprintOf(ormel).solution == ormel.solution.solved->model.solution)
      return;
    user.failures +=
        "a model that has changed kept its solution unasked, behind " + document.UndoName() + "\n";
    ormel.solution.ValidSolution = false;
  }
  void DoOne() {
    Dice& dice = user.dice;
    const MouseState& mouse = ormel.mouse;
    if (mouse.MovePending) {
      Map_MouseDown(map, MouseButton::kLeft, 0, Somewhere());
      Map_MouseMove(map, MouseButton::kLeft, 0, Somewhere());
      Map_MouseUp(map, MouseButton::kLeft, 0, Somewhere());
    } else if (mouse.MouseMode != MouseMode::kSelect) {
      const int what = dice.Below(100);
      if (what < 60)
        Click(MouseButton::kLeft, dice.Chance(20) ? Target() : Somewhere());
      else if (what < 80)
        Click(MouseButton::kRight, Somewhere());
      else if (what < 95)
        Map_KeyDown(map, MapKey::kBackspace);
      else
        Map_KeyDown(map, MapKey::kEscape);
    } else if (dice.Chance(10)) {
      DragABox(dice.Chance(50) ? kShiftKey : 0);
    } else if (dice.Chance(50)) {
      Click(MouseButton::kLeft, Target());
    } else {
      DoMenu();
    }
  }
  void Settle() {
    for (int i = 0; i < 3; ++i) Map_KeyDown(map, MapKey::kEscape);
  }
  std::string Dump() { return DumpModel(ormel.db()); }

  RandomUser user;
  FakeWindow window{user.copied};
  FakeSolver solver;
  FakeProcesses processes;
  FakeSettings settings;
  FakeClock clock;
  Ormel ormel;
  Document document{ormel};
  RecordingSurface surface;
  MapViewImpl map{ormel, &surface};
};

std::string CopyOf(const TempDir& dir, const std::string& example, const std::string& name) {
  const std::string path = dir / name;
  std::filesystem::copy_file(std::string(ORMEL_SOURCE_DIR) + "/examples/" + example, path);
  return path;
}

/// The dumps by the number of steps that are done.
class Timeline {
 public:
  explicit Timeline(Program& program) : program_(program), dumps_{program.Dump()} {}

  /// False when the program is not where its history says.
  testing::AssertionResult Check() {
    const History& history = program_.document.history();
    if (history.open()) return testing::AssertionSuccess();
    const std::size_t now = history.position();
    const std::string dump = program_.Dump();
    if (now > at_ + 1 || now + 1 < at_) return testing::AssertionFailure() << "more than one step at once";
    const bool added = now == at_ + 1 && !program_.document.CanRedo() && history.size() == now &&
                       (dumps_.size() <= now || dumps_[now] != dump);
    if (added) {
      dumps_.resize(now);
      dumps_.push_back(dump);
    } else if (dumps_[now] != dump) {
      return testing::AssertionFailure()
             << "at " << now << " of " << history.size() << ": " << FirstDifference(dumps_[now], dump);
    }
    at_ = now;
    return testing::AssertionSuccess();
  }
  const std::string& At(std::size_t step) const { return dumps_[step]; }

 private:
  Program& program_;
  std::vector<std::string> dumps_;
  std::size_t at_ = 0;
};

TEST(RandomEdits, all_can_be_undone_and_done_again) {
  for (const char* example : kExamples) {
    for (unsigned seed = 1; seed <= 2; ++seed) {
      SCOPED_TRACE(std::string(example) + ", seed " + std::to_string(seed));
      TempDir dir;
      Program program(CopyOf(dir, example, "copy.orm"), seed);
      ASSERT_TRUE(program.ormel.project.ProjectOpen);
      Timeline timeline(program);
      for (int step = 0; step < Steps(300); ++step) {
        program.Do();
        const auto checked = timeline.Check();
        ASSERT_TRUE(checked) << checked.message() << "\nstep " << step << ", last step "
                             << program.document.UndoName();
        ASSERT_EQ(program.user.failures, "") << "step " << step;
      }
      program.Settle();
      const auto settled = timeline.Check();
      ASSERT_TRUE(settled) << settled.message();
      const std::size_t steps = program.document.history().position();
      EXPECT_GT(steps, 10U);
      for (std::size_t i = steps; i > 0; --i) {
        ASSERT_TRUE(Dispatch(program.ormel, "UNDO"));
        const std::string dump = program.Dump();
        ASSERT_EQ(dump == timeline.At(i - 1), true) << FirstDifference(timeline.At(i - 1), dump);
      }
      EXPECT_FALSE(Dispatch(program.ormel, "UNDO"));
      for (std::size_t i = 1; i <= steps; ++i) {
        ASSERT_TRUE(Dispatch(program.ormel, "REDO"));
        ASSERT_EQ(program.Dump() == timeline.At(i), true) << i;
      }
      EXPECT_EQ(program.user.failures, "");
    }
  }
}

/// Does steps for ever and tells the number of those that are finished through the pipe.
[[noreturn]] void WorkUntilKilled(const std::string& path, unsigned seed, int pipe) {
  Program program(path, seed);
  for (std::int32_t done = 1;; ++done) {
    program.Do();
    if (write(pipe, &done, sizeof done) != sizeof done) _exit(1);
  }
}

TEST(RandomEdits, a_killed_program_opens_in_its_last_finished_command) {
  for (unsigned round = 0; round < 4; ++round) {
    const std::string example = kExamples[round % kExamples.size()];
    const unsigned seed = 100 + round;
    TempDir dir;
    const std::string path = CopyOf(dir, example, "killed.orm");
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      close(ends[0]);
      WorkUntilKilled(path, seed, ends[1]);
    }
    close(ends[1]);
    // Somewhere within a command that follows one of these.
    const std::int32_t wanted = 20 + static_cast<std::int32_t>(round) * 17;
    std::int32_t done = 0;
    while (done < wanted && read(ends[0], &done, sizeof done) == sizeof done) {
    }
    std::this_thread::sleep_for(std::chrono::microseconds(300 * (1 + round * 7)));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    while (read(ends[0], &done, sizeof done) == sizeof done) {
    }
    close(ends[0]);
    ASSERT_GE(done, wanted);

    Database killed = Database::Open(path);
    const std::string found = DumpModel(killed);
    killed.Close();
    // The same user again: behind as many steps, or within the next one.
    Program again(CopyOf(dir, example, "again.orm"), seed);
    for (std::int32_t i = 0; i < done; ++i) again.Do();
    const std::string last = again.Dump();
    again.Do();
    EXPECT_TRUE(found == last || found == again.Dump())
        << "after " << done << " steps: " << FirstDifference(last, found);
  }
}

}  // namespace
}  // namespace ormel::test
