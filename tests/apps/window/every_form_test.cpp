// Each form model of the program through the one renderer: what is shown is what the form holds, what is
// typed reaches it, and Escape leaves it.
#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "analysis/calibration_form.h"
#include "analysis/report_form.h"
#include "exchange/feature_import_form.h"
#include "model/barriers.h"
#include "model/delete.h"
#include "model/inhomogeneities.h"
#include "model/linesinks.h"
#include "model/model_settings.h"
#include "model/observation_forms.h"
#include "model/uniform_flow.h"
#include "model/well_form.h"
#include "ormel/form_dialog.h"
#include "ormel/output_forms.h"
#include "shell/about.h"
#include "shell/crs_form.h"
#include "shell/gui_options_form.h"
#include "shell/new_database_wizard.h"
#include "shell/project_settings.h"
#include "shell/welcome.h"
#include "solver/inspection_forms.h"
#include "tools/db_viewer.h"
#include "tools/info_panels.h"
#include "tools/result_viewer.h"
#include "view/restore_window_form.h"
#include "view/results_overlay.h"
#include "whpa/forms.h"
#include "whpa/outline_command.h"
#include "whpa/step_forms.h"
#include "window/window_fixture.h"

namespace ormel {
namespace {

using Forms = std::vector<std::unique_ptr<Form>>;

template <class F, class... Arguments>
void Add(Forms& forms, Ormel& ormel, Arguments&&... arguments) {
  forms.push_back(std::make_unique<F>(ormel, std::forward<Arguments>(arguments)...));
}

/// One of each kind that a user can meet.
Forms AllForms(Ormel& ormel) {
  Forms forms;
  Add<WellProperties>(forms, ormel);
  Add<LinesinkString>(forms, ormel);
  Add<NoFlowString>(forms, ormel);
  Add<Inhomogeneity>(forms, ormel);
  Add<UniformFlow>(forms, ormel);
  Add<TestPointProperties>(forms, ormel);
  Add<ParticleProperties>(forms, ormel);
  Add<TextLabelDialog>(forms, ormel);
  Add<FluxInspectDialog>(forms, ormel, "Label:", std::string("F1"));
  Add<LSConfirm>(forms, ormel, "Delete?");
  Add<ModelSettings>(forms, ormel);
  Add<SolvePrompt>(forms, ormel);
  Add<About>(forms, ormel);
  Add<Welcome>(forms, ormel);
  Add<GUIOptions>(forms, ormel);
  Add<NewDatabaseWizard>(forms, ormel);
  Add<ProjectSettings>(forms, ormel);
  Add<CrsForm>(forms, ormel);
  Add<FeatureImportForm>(forms, ormel);
  Add<RestoreWindowForm>(forms, ormel);
  Add<ResultOverlay>(forms, ormel, OverlaySettings{});
  Add<WHPAArbitrary>(forms, ormel, std::vector<WhpaWell>(2));
  Add<WHPACalculated>(forms, ormel, std::vector<WhpaWell>(2));
  Add<WHPAMultiple>(forms, ormel, std::vector<WhpaWell>(2));
  Add<WHPACentric>(forms, ormel, 100.0, 0.05);
  Add<WHPAEccentric>(forms, ormel, 100.0, 30.0, 0.5, 45.0);
  Add<WHPAStream>(forms, ormel);
  Add<WHPAUniform>(forms, ormel, 2.0, 45.0);
  Add<OutlineCaptureZoneForm>(forms, ormel, std::vector<CaptureWell>(2));
  Add<Inspector>(forms, ormel);
  Add<SolverIntegrity>(forms, ormel, IntegrityValues{});
  Add<ResultViewer>(forms, ormel);
  Add<DBViewer>(forms, ormel);
  Add<LSInfo>(forms, ormel);
  Add<INInfo>(forms, ormel);
  Add<PrintSetup>(forms, ormel, MapExtras{}, true);
  Add<SaveMap>(forms, ormel, MapExtras{}, 1600, 96);
  Add<CalibrationStats>(forms, ormel, CalibrationData{});
  Add<ReportForm>(forms, ormel, "the model has not been solved");
  return forms;
}

class EveryFormTest : public test::WindowTest {
 protected:
  /// Brings the control's page forward; null for a control that is not to be seen.
  static QWidget* Reach(FormDialog& dialog, const ControlSpec& spec) {
    auto* widget =
        dialog.findChild<QWidget*>(QString::fromUtf8(spec.name.data(), static_cast<int>(spec.name.size())));
    EXPECT_NE(widget, nullptr) << spec.name;
    if (auto* tabs = dialog.findChild<QTabWidget*>(); tabs != nullptr && !spec.tab.empty())
      for (int i = 0; i < tabs->count(); ++i)
        if (tabs->widget(i)->isAncestorOf(widget)) tabs->setCurrentIndex(i);
    return widget != nullptr && widget->isVisible() && widget->isEnabled() ? widget : nullptr;
  }
};

TEST_F(EveryFormTest, TypingAndTickingReachTheModelAndEscapeLeavesIt) {
  Start(town);
  int typed = 0, ticked = 0;
  for (const std::unique_ptr<Form>& form : AllForms(program->ormel)) {
    SCOPED_TRACE(std::string(form->Name()));
    FormDialog dialog(*form, &program->window);
    form->MarkShown();
    dialog.show();
    QApplication::processEvents();
    EXPECT_TRUE(form->Title().starts_with(dialog.windowTitle().toStdString()))
        << "but for the hint at the key";
    EXPECT_FALSE(dialog.windowTitle().isEmpty() && !form->Title().empty());
    for (const ControlSpec& spec : form->Controls()) {
      SCOPED_TRACE(std::string(spec.name));
      QWidget* widget = Reach(dialog, spec);
      const ControlState& state = form->State(spec.name);
      if (widget == nullptr) {
        EXPECT_FALSE(state.visible && state.enabled && spec.kind != ControlKind::kLabel);
        continue;
      }
      if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
        EXPECT_EQ(edit->text().toStdString(), state.text);
        edit->selectAll();
        QTest::keyClicks(edit, "7");
        EXPECT_EQ(form->Text(spec.name), "7");
        ++typed;
      } else if (spec.kind == ControlKind::kCheck) {
        const bool before = state.checked;
        static_cast<QAbstractButton*>(widget)->click();
        EXPECT_EQ(form->Checked(spec.name), !before);
        ++ticked;
      }
    }
    QTest::keyClick(&dialog, Qt::Key_Escape);
    EXPECT_TRUE(form->Hidden());
    EXPECT_FALSE(dialog.isVisible());
  }
  EXPECT_GT(typed, 40);
  EXPECT_GT(ticked, 15);
}

TEST_F(EveryFormTest, TabGoesDownThePageAndMissesNothing) {
  Start(town);
  for (const std::unique_ptr<Form>& form : AllForms(program->ormel)) {
    SCOPED_TRACE(std::string(form->Name()));
    FormDialog dialog(*form, &program->window);
    form->MarkShown();
    dialog.show();
    dialog.activateWindow();
    QApplication::processEvents();
    std::set<QWidget*> wanted, visited;
    for (auto* widget : dialog.findChildren<QWidget*>()) {
      const bool kind =
          qobject_cast<QLineEdit*>(widget) != nullptr || qobject_cast<QCheckBox*>(widget) != nullptr ||
          qobject_cast<QComboBox*>(widget) != nullptr || qobject_cast<QPushButton*>(widget) != nullptr;
      if (kind && widget->isVisible() && widget->isEnabled()) wanted.insert(widget);
    }
    int last = -1;
    for (std::size_t step = 0; step < 2 * wanted.size() + 20; ++step) {
      QWidget* at = dialog.focusWidget();
      ASSERT_NE(at, nullptr);
      visited.insert(at);
      if (wanted.count(at) != 0 && qobject_cast<QPushButton*>(at) == nullptr && step < wanted.size()) {
        const int y = at->mapTo(&dialog, QPoint(0, at->height())).y();
        EXPECT_GE(y + 12, last) << at->objectName().toStdString() << " is above the one before";
        last = y;
      }
      QTest::keyClick(at, Qt::Key_Tab);
    }
    for (QWidget* widget : wanted)
      EXPECT_TRUE(visited.count(widget) != 0) << widget->objectName().toStdString() << " is not reached";
    dialog.reject();
  }
}

}  // namespace
}  // namespace ormel
