#include "core/form.h"

#include <gtest/gtest.h>

#include "support/fakes.h"

namespace ormel {
namespace {

constexpr ControlSpec kControls[] = {
    {.name = "tbLabel", .kind = ControlKind::kText, .caption = "&Label:", .longest = 4},
    {.name = "tbRadius",
     .kind = ControlKind::kNumber,
     .caption = "Radius",
     .unit = "m",
     .range = {0.0, 100.0, true}},
    {.name = "opt(0)", .kind = ControlKind::kOption, .caption = "Head", .group = "kind"},
    {.name = "opt(1)", .kind = ControlKind::kOption, .caption = "Discharge", .group = "kind"},
    {.name = "other", .kind = ControlKind::kOption, .caption = "Other", .group = "another"},
    {.name = "list", .kind = ControlKind::kMultiList},
    {.name = "ok", .kind = ControlKind::kButton, .caption = "OK", .role = ButtonRole::kAccept},
    {.name = "cancel", .kind = ControlKind::kButton, .caption = "Cancel", .role = ButtonRole::kReject},
};

class RadiusForm : public Form {
 public:
  explicit RadiusForm(Ormel& ormel) : Form(ormel) {
    InitControls();
    PutCheck("opt(0)", true);
    PutCheck("other", true);
    Mutable("list").items = {"A", "B", "C"};
  }
  std::string Title() const override { return "Radius"; }
  std::string_view Name() const override { return "RadiusForm"; }
  std::span<const ControlSpec> Controls() const override { return kControls; }
  std::vector<std::string> changes;

 protected:
  void Changed(std::string_view name) override { changes.emplace_back(name); }
  void Pressed(std::string_view name) override {
    FillEmptyNumbers();
    if (name == "ok" && Number("tbRadius") <= 0) {
      Refuse("tbRadius", "Bad Entry", "Radius must be greater than 0.");
      return;
    }
    Result = name == "ok" ? 1 : 2;
    Hide();
  }
};

TEST(Form, RefusesAndKeepsOpenUntilTheFieldIsRight) {
  test::TestController program;
  program.ui.OnForm("RadiusForm", [&](Form& form) {
    form.SetText("tbRadius", "");
    form.Click("ok");
    EXPECT_FALSE(form.Hidden());
    EXPECT_EQ(form.FocusedControl(), "tbRadius");
    EXPECT_EQ(form.Text("tbRadius"), "0");
    EXPECT_EQ(program.ui.LastTitle(), "Bad Entry");
    form.SetText("tbRadius", "0.3");
    form.Click("ok");
  });
  RadiusForm form(program.ormel);
  program.ormel.ui().ShowForm(form);
  EXPECT_EQ(form.Result, 1);
  EXPECT_DOUBLE_EQ(form.Number("tbRadius"), 0.3);
}

TEST(Form, AsksAboutATextThatIsNotWhollyANumber) {
  test::TestController program;
  RadiusForm form(program.ormel);
  const ControlSpec& radius = kControls[1];
  struct Row {
    const char *text, *mark;
  };
  for (const Row& row : {Row{"1,200", "reads as 1"}, Row{"25%", "reads as 25"}, Row{"0,3", "reads as 0"},
                         Row{"1 2", "reads as 12"}, Row{"abc", "reads as 0"}, Row{"1e999", "too large"},
                         Row{" 12 ", ""}, Row{"-1.5e2", ""}, Row{"", ""}}) {
    form.SetText("tbRadius", row.text);
    EXPECT_EQ(ReadsAs(radius, form.State("tbRadius")), row.mark) << row.text;
  }
  form.MarkShown();
  form.SetText("tbRadius", "12abc");
  program.ui.AnswerTo("Not Wholly a Number", {Answer::kNo, Answer::kYes});
  form.Click("ok");
  EXPECT_FALSE(form.Hidden());
  EXPECT_EQ(form.FocusedControl(), "tbRadius");
  EXPECT_TRUE(program.ui.boxes.back().safe_default) << "Enter takes nothing that nobody meant";
  EXPECT_TRUE(program.ui.LastText().starts_with("Radius: \"12abc\" reads as 12.")) << program.ui.LastText();
  form.Click("ok");
  EXPECT_TRUE(form.Hidden());
  EXPECT_EQ(form.Result, 1);
}

TEST(Form, RefusesWhatIsOutOfRangeOrTooLong) {
  test::TestController program;
  RadiusForm form(program.ormel);
  struct Row {
    const char *label, *radius, *title, *text;
  };
  for (const Row& row :
       {Row{"abcde", "1", "Too Long",
            "Label has 5 characters; no more than 4 can be stored.\nPlease enter a shorter text."},
        Row{"\u00e4\u00f6\u00fc\u00df", "1e300", "Out of Range",
            "Radius must be between 0 and 100 m.\nPlease enter a new value."},
        Row{"a", "1e999", "Out of Range", "Radius must be between 0 and 100 m.\nPlease enter a new value."},
        Row{"a", "-1", "Bad Entry", "Radius must be greater than 0."}, Row{"a", "100", "", ""}}) {
    program.ui.boxes.clear();
    form.MarkShown();
    form.SetText("tbLabel", row.label);
    form.SetText("tbRadius", row.radius);
    form.Click("ok");
    EXPECT_EQ(program.ui.LastTitle(), row.title) << row.label << row.radius;
    EXPECT_EQ(program.ui.LastText(), row.text);
    EXPECT_EQ(form.Hidden(), row.title[0] == 0);
  }
  form.MarkShown();
  form.SetText("tbRadius", "12abc");
  form.Click("cancel");
  EXPECT_TRUE(form.Hidden()) << "Cancel asks nothing";
}

TEST(Form, TellsOnlyWhatTheUserChanged) {
  test::TestController program;
  RadiusForm form(program.ormel);
  form.SetChecked("opt(1)", true);
  form.SetChecked("opt(1)", true);
  EXPECT_FALSE(form.Checked("opt(0)")) << "options of one group exclude one another";
  EXPECT_TRUE(form.Checked("other")) << "those of another group stay";
  form.SetText("tbRadius", "");
  form.LeaveField("tbRadius");
  form.Select("list", {2, 7, -1});
  EXPECT_EQ(form.Text("list"), "C");
  EXPECT_EQ(form.changes, (std::vector<std::string>{"opt(1)", "tbRadius", "list"}));
  EXPECT_THROW(form.SetText("no such control", "1"), std::logic_error);
}

}  // namespace
}  // namespace ormel
