// Ports of the program for tests: a scripted user, and recorders for what stands outside.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "core/form.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/processes.h"
#include "core/settings.h"
#include "core/solver_port.h"
#include "core/user_interface.h"
#include "core/window_commands.h"

namespace ormel::test {

/// A user whose answers are told beforehand.  A question with two or more answers that nobody scripted fails
/// the test and gets its safe answer.
class ScriptedInterface : public UserInterface {
 public:
  /// The next boxes of this title get these answers, one each.
  void AnswerTo(const std::string& title, std::initializer_list<ormel::Answer> answers) {
    for (const ormel::Answer answer : answers) answers_[title].push_back(answer);
  }
  void InputTo(const std::string& title, std::optional<std::string> text) { inputs_[title].push_back(text); }
  /// The next file dialog answers this path; nothing means Cancel.
  void ChooseFile(std::optional<std::string> path) { files_.push_back(std::move(path)); }
  /// What the user does with the next form of this name.  Without one the form is closed by its reject
  /// button.
  void OnForm(const std::string& name, std::function<void(Form&)> act) {
    forms_[name].push_back(std::move(act));
  }

  ormel::Answer Ask(const Box& box) override {
    boxes.push_back(box);
    auto& queue = answers_[box.title];
    if (!queue.empty()) {
      const ormel::Answer answer = queue.front();
      queue.pop_front();
      return answer;
    }
    if (box.buttons == Buttons::kOk) return ormel::Answer::kOk;
    ADD_FAILURE() << "a question that the test does not answer: [" << box.title << "] " << box.text;
    return box.buttons == Buttons::kYesNo ? ormel::Answer::kNo : ormel::Answer::kCancel;
  }
  std::optional<std::string> Ask(const InputBox& box) override {
    input_boxes.push_back(box);
    auto& queue = inputs_[box.title];
    if (queue.empty()) {
      ADD_FAILURE() << "an input box that the test does not answer: [" << box.title << "] " << box.text;
      return std::nullopt;
    }
    auto text = queue.front();
    queue.pop_front();
    return text;
  }
  std::optional<std::string> Ask(const FileDialog& dialog) override {
    file_dialogs.push_back(dialog);
    if (files_.empty()) return std::nullopt;
    auto path = files_.front();
    files_.pop_front();
    return path;
  }
  std::optional<Color> ChooseColor(Color initial) override { return color ? color : std::optional(initial); }
  std::optional<FontChoice> ChooseFont(const FontChoice& initial) override {
    return font ? font : std::optional(initial);
  }
  void ShowForm(Form& form) override {
    form.MarkShown();
    shown_forms.emplace_back(form.Name());
    auto& queue = forms_[std::string(form.Name())];
    if (!queue.empty()) {
      auto act = std::move(queue.front());
      queue.pop_front();
      act(form);
      if (form.Hidden()) return;
    }
    for (const ControlSpec& control : form.Controls())
      if (control.role == ButtonRole::kReject) form.Click(control.name);
    EXPECT_TRUE(form.Hidden()) << "the form " << form.Name() << " stays open after its reject button";
  }
  void SetPanel(Panel panel, std::string_view text) override { panels[panel] = text; }
  void SetCaption(std::string_view text) override { caption = text; }
  void PleaseWaitShow(std::string_view text) override {
    ++wait_depth;
    wait_texts.emplace_back(text);
  }
  void PleaseWaitHide() override { --wait_depth; }
  void Progress(double fraction, std::string_view) override { progress.push_back(fraction); }
  bool CancelRequested() override { return cancel && cancel(); }
  void CopyText(std::string_view text) override { clipboard = text; }
  void ViewTextFile(const std::string& path) override { viewed_files.push_back(path); }
  void ShowHelp(std::string_view topic) override { help_topics.emplace_back(topic); }
  void MenusChanged() override {}

  /// The last box's text, empty when there was none.
  std::string LastText() const { return boxes.empty() ? std::string() : boxes.back().text; }
  std::string LastTitle() const { return boxes.empty() ? std::string() : boxes.back().title; }

  std::vector<Box> boxes;
  std::vector<InputBox> input_boxes;
  std::vector<FileDialog> file_dialogs;
  std::vector<std::string> shown_forms, wait_texts, viewed_files, help_topics;
  std::vector<double> progress;
  std::map<Panel, std::string> panels;
  std::string caption, clipboard;
  std::optional<Color> color;
  std::optional<FontChoice> font;
  std::function<bool()> cancel;
  int wait_depth = 0;

 private:
  std::map<std::string, std::deque<ormel::Answer>> answers_;
  std::map<std::string, std::deque<std::optional<std::string>>> inputs_;
  std::map<std::string, std::deque<std::function<void(Form&)>>> forms_;
  std::deque<std::optional<std::string>> files_;
};

/// Records what was asked of the map.
class FakeView : public MapView {
 public:
  void ZoomActions(Zoom code, const MapRect& rect) override {
    zooms.push_back(code);
    last_rect = rect;
  }
  void ShowPlace(Element element, MapPoint at) override { places.emplace_back(element, at); }
  void ElemTurnOffSelection() override {
    ++selections_off;
    if (ormel == nullptr) return;
    ormel->selection.SelectedType = Element::kNone;
    for (int index = 1; index <= 4; ++index) ormel->menus.Enable("EDIT_CMDS", index, false);
  }
  void ClearMouseMode() override { ++modes_cleared; }
  void TurnOffMenus() override { menus_on = false; }
  void TurnOnMenus() override { menus_on = true; }
  void SetUpToolbar() override {}
  void SetUpLayers() override {}
  void Refresh() override { ++refreshes; }

  Ormel* ormel = nullptr;  ///< whose selection is turned off
  std::vector<Zoom> zooms;
  MapRect last_rect;
  std::vector<std::pair<Element, MapPoint>> places;
  int selections_off = 0, modes_cleared = 0, refreshes = 0;
  bool menus_on = true;
};

class FakeSolver : public Solver {
 public:
  void ModelRunVadox(const SolveRequest& request) override { runs.push_back(request); }
  void ModelRunWHPAs() override { ++whpa_runs; }
  void RunContour() override { ++contour_runs; }

  std::vector<SolveRequest> runs;
  int whpa_runs = 0, contour_runs = 0;
};

/// Outside programs that do what the test says.
class FakeProcesses : public Processes {
 public:
  ProcessResult Run(const ProcessRequest& request, const std::function<void(const std::string&)>& line,
                    const std::function<bool()>& cancelled) override {
    requests.push_back(request);
    if (on_run) return on_run(request, line, cancelled);
    ProcessResult result;
    result.started = true;
    return result;
  }
  std::string ProgramFolder() const override { return program_folder; }
  std::string Environment(const std::string& name) const override {
    const auto it = environment.find(name);
    return it == environment.end() ? std::string() : it->second;
  }
  std::string CurrentDirectory() const override { return current_directory; }

  std::function<ProcessResult(const ProcessRequest&, const std::function<void(const std::string&)>&,
                              const std::function<bool()>&)>
      on_run;
  std::vector<ProcessRequest> requests;
  std::map<std::string, std::string> environment;
  std::string program_folder, current_directory;
};

/// A window whose clipboard holds what the program has copied.
class FakeWindow : public WindowCommands {
 public:
  FakeWindow() = default;
  explicit FakeWindow(const std::string& copied) : copied_(&copied) {}
  void Exit() override { ++exits; }
  void FilePrintSetup() override {}
  void FilePrint() override {}
  void CopyImage() override {}
  void SaveMapAs() override {}
  void ShowReleaseNotes() override {}
  std::string ClipboardText() override { return copied_ == nullptr ? std::string() : *copied_; }

  int exits = 0;

 private:
  const std::string* copied_ = nullptr;
};

class FakeSettings : public Settings {
 public:
  std::string GetSetting(std::string_view key, std::string_view default_value) const override {
    const auto it = values.find(std::string(key));
    return it == values.end() ? std::string(default_value) : it->second;
  }
  void SaveSetting(std::string_view key, std::string_view value) override {
    values[std::string(key)] = std::string(value);
  }
  std::map<std::string, std::string> values;
};

class FakeClock : public Clock {
 public:
  ClockTime Now() const override { return now; }
  ClockTime now{2024, 6, 15, 10, 30, 0};
};

/// A controller with fake ports and no project.
struct TestController {
  ScriptedInterface ui;
  FakeView view;
  FakeSolver solver;
  FakeProcesses processes;
  FakeSettings settings;
  FakeClock clock;
  Ormel ormel;

  TestController() {
    ormel.ports = {&ui, &view, &solver, &processes, &settings, &clock};
    view.ormel = &ormel;
  }
};

}  // namespace ormel::test
