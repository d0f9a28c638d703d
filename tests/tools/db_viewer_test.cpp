// The database viewer: what it asks, shows, refuses and changes.
#include "tools/db_viewer.h"

#include <gtest/gtest.h>

#include "core/table.h"
#include "store/database.h"
#include "support/test_project.h"

namespace ormel::test {
namespace {

constexpr const char* kTitle = "Ormel Database Viewer";

struct ViewerProject : TestProject {
  ViewerProject() {
    ormel.db().Execute("insert into Wells(VID,Label,Head,Radius) values(3,'North',10,0.3)");
    ormel.db().Execute("insert into Wells(VID,Label,Head,Radius) values(9,'East',20,0.3)");
    ormel.solution.ValidSolution = true;
  }
  void View(std::function<void(Form&)> act) {
    ui.AnswerTo(kTitle, {ormel::Answer::kYes});
    ui.OnForm("DBViewer", std::move(act));
    DBViewDatabase(ormel);
  }
};

std::size_t ColumnOf(const Table& table, const std::string& name) {
  for (std::size_t i = 0; i < table.columns().size(); ++i)
    if (table.columns()[i].name == name) return i;
  ADD_FAILURE() << "no column " << name;
  return 0;
}

TEST(DBViewer, AsksFirstAndShowsBaseTables) {
  ViewerProject p;
  p.ui.AnswerTo(kTitle, {ormel::Answer::kNo});
  DBViewDatabase(p.ormel);
  EXPECT_TRUE(p.ui.shown_forms.empty());
  EXPECT_TRUE(p.ui.LastText().ends_with("Do you wish to start the database viewer?"));
  p.View([](Form& form) {
    for (int i = 0; i < static_cast<int>(form.State("TABLES").items.size()); ++i) form.Select("TABLES", {i});
    form.Select("TABLES", {10});
    EXPECT_EQ(form.State("grid").caption, "Table: Wells");
    const Table& wells = *form.State("grid").table;
    EXPECT_EQ(wells.Rows(), 2U);
    EXPECT_FALSE(wells.columns()[ColumnOf(wells, "Label")].number);
    EXPECT_TRUE(wells.columns()[ColumnOf(wells, "Head")].number);
    EXPECT_FALSE(form.State("grid").editable);
  });
  EXPECT_TRUE(p.view.zooms.empty());
}

TEST(DBViewer, ShowsAQueryRefusesOthersAndSurvivesFaults) {
  ViewerProject p;
  p.View([&](Form& form) {
    form.SetChecked("OPTIONS", true);
    p.ui.InputTo("SQL Query", "select Label, 2*Head as Twice from Wells where Label like 'N*'");
    form.Click("SQL");
    EXPECT_EQ(form.State("grid").caption,
              "SQL: select Label, 2*Head as Twice from Wells where Label like 'N*'");
    EXPECT_EQ(form.State("grid").table->Text(0, 1), "20");
    EXPECT_FALSE(form.State("grid").editable) << "a query has no rows to change";
    p.ui.InputTo("SQL Query", " delete from Wells");
    form.Click("SQL");
    EXPECT_EQ(p.ui.LastTitle(), "SQL Query");
    p.ui.InputTo("SQL Query", "select nothing from nowhere");
    form.Click("SQL");
    EXPECT_EQ(p.ui.LastTitle(), "Unhandled Error -- Contact the ZRB");
    EXPECT_NE(p.ui.LastText().find("nowhere"), std::string::npos) << p.ui.LastText();
    EXPECT_EQ(form.State("grid").table->Rows(), 1U) << "what was shown stays";
    EXPECT_FALSE(form.Hidden());
    for (const auto& text : {std::optional<std::string>(), std::optional<std::string>(" ")}) {
      p.ui.InputTo("SQL Query", text);
      form.Click("SQL");
    }
  });
  EXPECT_EQ(p.Number("select count(*) from Wells"), 2);
}

TEST(DBViewer, ChangesARowOnlyWhenAllowed) {
  ViewerProject p;
  p.ui.AnswerTo("Model Changed!", {ormel::Answer::kYes});
  p.View([&](Form& form) {
    form.Select("TABLES", {10});
    const std::size_t label = ColumnOf(*form.State("grid").table, "Label");
    const std::size_t head = ColumnOf(*form.State("grid").table, "Head");
    form.EditCell("grid", 0, head, "11.5");
    EXPECT_EQ(p.Number("select sum(Head) from Wells"), 30);
    form.SetChecked("OPTIONS", true);
    form.SortTable("grid", label, false);  // East first
    form.EditCell("grid", 0, head, "25");
    EXPECT_EQ(p.Number("select Head from Wells where VID=9"), 25);
    EXPECT_EQ(form.State("grid").table->Text(0, head), "25");
    form.EditCell("grid", 1, label, std::string(80, 'x'));  // longer than the field
    EXPECT_EQ(p.ui.LastTitle(), "Unhandled Error -- Contact the ZRB");
    EXPECT_EQ(form.State("grid").table->Text(1, label), "North");
  });
  EXPECT_EQ(p.Text("select Label from Wells where VID=3"), "North");
  EXPECT_FALSE(p.ormel.solution.ValidSolution) << "the model is another one now";
  EXPECT_EQ(p.view.zooms, std::vector<Zoom>{Zoom::kRedrawInPlace});
}

}  // namespace
}  // namespace ormel::test
