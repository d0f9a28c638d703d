// The tables of menu items and toolbar buttons, and their dispatch.
#include "shell/menus.h"

#include <filesystem>
#include <set>

#include "core/layers.h"
#include "core/window_commands.h"
#include "support/test_project.h"

namespace ormel::test {
namespace {

TEST(MenuTable, EveryItemStandsOnceBehindItsParent) {
  std::set<std::pair<std::string_view, int>> seen;
  std::set<std::string_view> shortcuts;
  for (const MenuItem& item : MenuItems()) {
    const std::string name = std::string(item.control) + "(" + std::to_string(item.index) + ")";
    EXPECT_TRUE(item.parent.empty() || seen.contains({item.parent, item.parent_index})) << name;
    EXPECT_TRUE(seen.insert({item.control, item.index}).second) << name << " stands twice";
    EXPECT_EQ(item.caption.empty() && !LayerOf(item.control, item.index), item.control == "RECENT") << name;
    EXPECT_TRUE(item.shortcut.empty() || shortcuts.insert(item.shortcut).second) << name;
    EXPECT_FALSE(HasSubmenu(item) && item.run != nullptr) << name << " is a submenu with a command";
  }
}

TEST(MenuTable, ButtonsStandForItemsAndHaveDrawings) {
  const std::filesystem::path icons = std::filesystem::path(ORMEL_SOURCE_DIR) / "apps/ormel/icons";
  std::set<std::string_view> keys;
  for (const ToolbarButton& button : ToolbarButtons()) {
    EXPECT_TRUE(keys.insert(button.key).second) << button.key;
    EXPECT_FALSE(button.tip.empty()) << button.key;
    EXPECT_TRUE(std::filesystem::exists(icons / (std::string(button.icon) + ".svg"))) << button.icon;
    if (button.control.empty()) {
      EXPECT_NE(button.run, nullptr) << button.key;
    } else {
      EXPECT_NE(FindMenuItem(button.control, button.index), nullptr) << button.key;
    }
  }
}

TEST(Menus, WithoutAProjectOnlyWhatNeedsNoneIsEnabled) {
  TestController c;
  for (const MenuItem& item : MenuItems())
    if ((item.flags & kNeedsProject) != 0) {
      EXPECT_FALSE(ItemEnabled(c.ormel, item)) << item.control;
      EXPECT_FALSE(Dispatch(c.ormel, item.control, item.index)) << item.control;
    }
  EXPECT_TRUE(ItemEnabled(c.ormel, *FindMenuItem("FILE_CMDS", 0)));
  EXPECT_FALSE(Dispatch(c.ormel, "NO_SUCH_MENU"));
  EXPECT_TRUE(c.view.zooms.empty());
}

TEST(Menus, MissingCommandsAreDisabledAndSaySo) {
  TestProject p;
  for (const MenuItem& item : MenuItems()) {
    const bool missing = item.run == nullptr && !HasSubmenu(item);
    if (!missing) continue;
    EXPECT_FALSE(ItemEnabled(p.ormel, item)) << item.control;
    EXPECT_EQ(ItemTip(p.ormel, item), "not available in this version") << item.control;
  }
  EXPECT_EQ(ItemTip(p.ormel, *FindMenuItem("FILE_CMDS", 0)), "");
}

TEST(Menus, WindowCommandsNeedAWindow) {
  TestController c;
  EXPECT_FALSE(Dispatch(c.ormel, "FILE_CMDS", 7));
  FakeWindow window;
  c.ormel.ports.window = &window;
  EXPECT_TRUE(Dispatch(c.ormel, "FILE_CMDS", 7));
  EXPECT_EQ(window.exits, 1);
}

TEST(Menus, DisabledMenusDisableTheirItemsAndButtons) {
  TestProject p;
  const MenuItem& zoom = *FindMenuItem("ZOOM_CMDS", 1);
  const ToolbarButton& button = *FindToolbarButton("WINDOWZOOMIN");
  EXPECT_TRUE(ItemEnabled(p.ormel, zoom));
  EXPECT_TRUE(ButtonEnabled(p.ormel, button));
  p.ormel.menus.Enable("WINDOWMENU", false);
  EXPECT_FALSE(ItemEnabled(p.ormel, zoom));
  EXPECT_FALSE(DispatchButton(p.ormel, "WINDOWZOOMIN"));
  p.ormel.menus.Enable("WINDOWMENU", true);
  EXPECT_TRUE(DispatchButton(p.ormel, "WINDOWZOOMIN"));
  EXPECT_TRUE(DispatchButton(p.ormel, "WINDOWSCROLLUP"));
  EXPECT_EQ(p.view.zooms, (std::vector{Zoom::kIn, Zoom::kUp}));
}

TEST(Menus, ResultsNeedAValidSolution) {
  TestProject p;
  EXPECT_FALSE(Dispatch(p.ormel, "MODEL_CMDS", 3));
  p.ormel.solution.ValidSolution = true;
  EXPECT_FALSE(Dispatch(p.ormel, "HSE", 0));
  EXPECT_TRUE(Dispatch(p.ormel, "MODEL_CMDS", 3));
  ASSERT_EQ(p.solver.runs.size(), 1U);
  EXPECT_TRUE(p.solver.runs[0].ContinueSolve && p.solver.runs[0].KeepSolution);
}

TEST(Menus, FailureInACommandIsToldAndTheProgramGoesOn) {
  TestProject p;
  p.ormel.db().Execute("drop table Inhomogeneities");
  EXPECT_TRUE(Dispatch(p.ormel, "MODELSIZE"));
  EXPECT_EQ(p.ui.LastTitle(), "Unhandled Error -- Contact the ZRB");
  EXPECT_NE(p.ui.LastText().find("Unhandled error in "), std::string::npos);
  EXPECT_TRUE(Dispatch(p.ormel, "ZOOM_CMDS", 2));
}

TEST(Menus, RecentProjectsAreCaptionsOfTheirItems) {
  TestController c;
  c.settings.values = {{"Recent1", "/a/R&D.orm"}};
  EXPECT_EQ(ItemCaption(c.ormel, *FindMenuItem("RECENT", 0)), "&1 /a/R&&D.orm");
  EXPECT_EQ(ItemCaption(c.ormel, *FindMenuItem("RECENT", 1)), "");
}

}  // namespace
}  // namespace ormel::test
