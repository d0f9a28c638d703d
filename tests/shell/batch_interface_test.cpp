// Questions without a person: answers by options, safe answers, and what is said about them.
#include "shell/batch_interface.h"

#include <sstream>

#include "shell/new_database_wizard.h"
#include "shell/welcome.h"
#include "solver/inspection_forms.h"
#include "support/fakes.h"

namespace ormel::test {
namespace {

FileDialog Dialog(const char* title) {
  FileDialog dialog;
  dialog.title = title;
  return dialog;
}

struct Question {
  const char* name;
  Buttons buttons;
  bool yes;
  std::vector<BatchAnswer> answers;
  Answer expected;
  bool unanswered;
};

const Question kQuestions[] = {
    {"message", Buttons::kOk, false, {}, Answer::kOk, false},
    {"nobody answers yes or no", Buttons::kYesNo, false, {}, Answer::kNo, true},
    {"nobody answers ok", Buttons::kOkCancel, false, {}, Answer::kCancel, true},
    {"nobody answers three", Buttons::kYesNoCancel, false, {}, Answer::kCancel, true},
    {"yes to all", Buttons::kYesNoCancel, true, {}, Answer::kYes, false},
    {"ok to all", Buttons::kOkCancel, true, {}, Answer::kOk, false},
    {"answer beats yes", Buttons::kYesNo, true, {{"Title", "No"}}, Answer::kNo, false},
    {"by title in other case", Buttons::kYesNo, false, {{"tITLE", " yes "}}, Answer::kYes, false},
    {"by the text's beginning", Buttons::kYesNo, false, {{"Shall the", "Yes"}}, Answer::kYes, false},
    {"for another box", Buttons::kYesNo, false, {{"Other", "Yes"}}, Answer::kNo, true},
    {"a button that is not there", Buttons::kYesNo, false, {{"Title", "OK"}}, Answer::kNo, true},
    {"no answer at all", Buttons::kYesNo, true, {{"Title", "perhaps"}}, Answer::kNo, true},
};

TEST(BatchInterface, AnswersBoxesByOptionsAndElseSafely) {
  for (const Question& q : kQuestions) {
    std::ostringstream out;
    BatchOptions options;
    options.yes = q.yes;
    options.answers = q.answers;
    BatchInterface ui(options, out, "ormelcmd");
    EXPECT_EQ(ui.Ask(Box{"Title", "Shall the file go?\nSecond line", q.buttons, Icon::kQuestion}), q.expected)
        << q.name;
    EXPECT_EQ(ui.unanswered(), q.unanswered) << q.name;
    EXPECT_EQ(out.str().find("ormelcmd: Title: Shall the file go?\n    Second line\n"), 0U) << out.str();
    if (q.unanswered && q.answers.empty()) {
      EXPECT_NE(out.str().find("use --answer \"Title="), std::string::npos) << out.str();
    }
  }
}

TEST(BatchInterface, SeveralAnswersOfOneTitleComeInTheirOrderAndTheLastStays) {
  std::ostringstream out;
  BatchOptions options;
  options.answers = {{"T", "Yes"}, {"T", "No"}, {"Mispelt", "Yes"}, {"Maybe", "Yes", true}};
  BatchInterface ui(options, out, "x");
  const Box box{"T", "text", Buttons::kYesNo, Icon::kNone};
  EXPECT_EQ(ui.Ask(box), Answer::kYes);
  EXPECT_EQ(ui.Ask(box), Answer::kNo);
  EXPECT_EQ(ui.Ask(box), Answer::kNo);
  EXPECT_EQ(ui.Unused(), std::vector<std::string>{"--answer \"Mispelt=Yes\""});
}

TEST(BatchInterface, AnswersInputsAndFileDialogs) {
  std::ostringstream out;
  BatchOptions options;
  options.answers = {{"Continue Solution", "12"}, {"Save As", "/a/b=c.orm"}};
  BatchInterface ui(options, out, "x");
  EXPECT_EQ(ui.Ask(InputBox{"Continue Solution", "Number:", "1"}), "12");
  EXPECT_EQ(ui.Ask(Dialog("Save As")), "/a/b=c.orm");
  EXPECT_FALSE(ui.unanswered());
  EXPECT_EQ(ui.Ask(InputBox{"Warning", "Number:", "2"}), std::nullopt);
  EXPECT_TRUE(ui.unanswered());
  options.yes = true;
  BatchInterface agreeing(options, out, "x");
  EXPECT_EQ(agreeing.Ask(InputBox{"Warning", "Number:", "2"}), "2");
  EXPECT_EQ(agreeing.Ask(Dialog("Open")), std::nullopt) << "no path can be guessed";
}

TEST(BatchInterface, FillsFormsAndNeverLeavesOneOpen) {
  TestController c;
  std::ostringstream out;
  BatchOptions options;
  options.settings = {{"newdatabasewizard", "tbDesc", "a=b"}, {"NewDatabaseWizard", "optbasemap(0)", "yes"}};
  BatchInterface ui(options, out, "x");
  c.ormel.ports.ui = &ui;
  NewDatabaseWizard wizard(c.ormel);
  ui.ShowForm(wizard);
  EXPECT_EQ(wizard.Result, NewDatabaseWizard::kOk);
  EXPECT_EQ(wizard.Description(), "a=b");
  EXPECT_FALSE(wizard.BasemapMeters());
  EXPECT_FALSE(ui.unanswered());

  for (const BatchSetting& setting :
       {BatchSetting{"NewDatabaseWizard", "tbDesc", std::string(300, 'x')},
        BatchSetting{"Other", "tbDesc", "x"}, BatchSetting{"NewDatabaseWizard", "noSuchControl", "x"}}) {
    BatchOptions wrong;
    wrong.settings = {setting};
    BatchInterface refusing(wrong, out, "x");
    c.ormel.ports.ui = &refusing;
    NewDatabaseWizard form(c.ormel);
    refusing.ShowForm(form);
    EXPECT_TRUE(form.Hidden()) << setting.control;
    EXPECT_TRUE(refusing.unanswered()) << setting.control;
  }
}

TEST(BatchInterface, RefusesATextThatIsNoNumberEvenWithYes) {
  TestController c;
  for (const auto& [text, result] : {std::pair{"1,5", 2}, std::pair{"1.5", 1}}) {
    std::ostringstream out;
    BatchOptions options;
    options.yes = true;
    options.settings = {{"Inspector", "dataStepSize", text}};
    BatchInterface ui(options, out, "ormelcmd");
    Inspector form(c.ormel);
    ui.ShowForm(form);
    EXPECT_EQ(form.Result, result) << text;
    EXPECT_EQ(ui.unanswered(), result == 2);
    EXPECT_EQ(out.str().find("\"1,5\" is not a number") != std::string::npos, result == 2) << out.str();
  }
}

TEST(BatchInterface, KnowsFailuresFromMessages) {
  std::ostringstream out;
  BatchOptions quiet;
  quiet.quiet = true;
  BatchInterface ui(quiet, out, "x");
  ui.Ask(Box{"T", "just so", Buttons::kOk, Icon::kInformation});
  EXPECT_TRUE(out.str().empty());
  EXPECT_FALSE(ui.failed());
  ui.Ask(Box{"Unhandled Error -- Contact the ZRB", "Unhandled error in X", Buttons::kOk, Icon::kNone});
  EXPECT_TRUE(ui.failed());
}

TEST(BatchOptions, AreTakenApartAtTheFirstSigns) {
  BatchAnswer answer;
  EXPECT_TRUE(ParseBatchAnswer("Save As=/a=b", answer));
  EXPECT_EQ(answer.value, "/a=b");
  BatchSetting setting;
  EXPECT_TRUE(ParseBatchSetting("Well.tbData(3)=0.5", setting));
  EXPECT_EQ(setting.control, "tbData(3)");
  EXPECT_EQ(setting.value, "0.5");
  for (const char* bad : {"", "=", "noequals", " =x"}) EXPECT_FALSE(ParseBatchAnswer(bad, answer)) << bad;
  for (const char* bad : {"a=b", "a.b", ".b=1", "a.=1", "a=b.c"})
    EXPECT_FALSE(ParseBatchSetting(bad, setting)) << bad;
}

}  // namespace
}  // namespace ormel::test
