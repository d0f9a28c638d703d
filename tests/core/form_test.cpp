#include "core/form.h"

#include <gtest/gtest.h>

#include "support/fakes.h"

namespace ormel {
namespace {

constexpr ControlSpec kControls[] = {
    {.name = "tbRadius", .kind = ControlKind::kNumber, .caption = "Radius", .unit = "m"},
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
    form.SetText("tbRadius", "0.3 m");
    form.Click("ok");
  });
  RadiusForm form(program.ormel);
  program.ormel.ui().ShowForm(form);
  EXPECT_EQ(form.Result, 1);
  EXPECT_DOUBLE_EQ(form.Number("tbRadius"), 0.3);
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
