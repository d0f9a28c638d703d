#include "core/project_crs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shell/crs_form.h"
#include "shell/project_settings.h"
#include "support/test_project.h"

namespace ormel {
namespace {

using test::TestProject;
using testing::HasSubstr;

void ChooseDutchGrid(Form& form) {
  form.SetText("Search", "rd new amersfoort");
  ASSERT_FALSE(form.State("Systems").items.empty());
  for (std::size_t i = 0; i < form.State("Systems").items.size(); ++i) {
    if (form.State("Systems").items[i].starts_with("EPSG:28992 "))
      form.Select("Systems", {static_cast<int>(i)});
  }
  form.Click("OK");
}

TEST(ProjectCrs, IsChosenInTheSettingsAndToldBesideThePointer) {
  TestProject t;
  EXPECT_FALSE(ProjectCrs(t.ormel));
  EXPECT_EQ(GlobeTextOf(t.ormel, {155000, 463000}).longitude, "");
  t.ormel.solution.ValidSolution = true;
  t.ui.OnForm("CrsForm", ChooseDutchGrid);
  ProjectSettings form(t.ormel);
  form.MarkShown();
  form.Click("ChooseCRS");
  EXPECT_EQ(form.Text("CRS"), "EPSG:28992");
  EXPECT_EQ(form.State("CRSName").caption, "Amersfoort / RD New");
  form.Click("OK");
  EXPECT_TRUE(form.Hidden());
  EXPECT_EQ(t.Text("select CRS from Project"), "EPSG:28992");
  EXPECT_TRUE(t.ormel.solution.ValidSolution) << "no number of the model has changed";
  const GlobeText globe = GlobeTextOf(t.ormel, {155000, 463000});
  EXPECT_THAT(globe.longitude, HasSubstr("5.387"));
  EXPECT_THAT(globe.latitude, HasSubstr("52.155"));
  EXPECT_THAT(globe.latitude, HasSubstr("N"));
}

TEST(ProjectCrs, MustFitTheUnitOfTheMap) {
  TestProject t;
  const auto accepted = [&t](const char* crs) {
    ProjectSettings form(t.ormel);
    form.MarkShown();
    form.SetText("CRS", crs);
    form.Click("OK");
    return form.Hidden();
  };
  EXPECT_FALSE(accepted("EPSG:2264"));  // in feet
  EXPECT_FALSE(accepted("EPSG:4326"));  // in degrees
  EXPECT_FALSE(accepted("nonsense"));
  EXPECT_EQ(StoredCrs(t.ormel), "");
  EXPECT_TRUE(accepted("EPSG:32631"));
  EXPECT_TRUE(accepted(""));
  EXPECT_EQ(CrsFault(Crs::Parse("EPSG:2264"), false), "");
}

TEST(ProjectCrs, ComesToAProjectOfAnOlderVersionWhenOneIsChosen) {
  TestProject t;
  t.ormel.db().Execute("alter table Project drop column CRS");
  ReadProjectState(t.ormel);
  EXPECT_EQ(StoredCrs(t.ormel), "");
  StoreCrs(t.ormel, "");
  EXPECT_FALSE(t.ormel.db().HasField("Project", "CRS"));
  StoreCrs(t.ormel, "EPSG:32631");
  ReadProjectState(t.ormel);
  EXPECT_EQ(ProjectCrs(t.ormel)->code(), "EPSG:32631");
}

}  // namespace
}  // namespace ormel
