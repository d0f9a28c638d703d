#include "core/status.h"

#include "core/ormel.h"
#include "core/user_interface.h"

namespace ormel {

void Activity(Ormel& ormel, std::string_view text) {
  ormel.activity = text;
  ormel.ui().SetPanel(Panel::kActivity, text);
}

void Feedback(Ormel& ormel, std::string_view text) {
  ormel.feedback = text;
  ormel.ui().SetPanel(Panel::kFeedback, text);
}

void Note(Ormel& ormel, std::string_view text) {
  ormel.note = text;
  ormel.ui().SetPanel(Panel::kNote, text);
}

const std::string& Activity(const Ormel& ormel) {
  return ormel.activity;
}
const std::string& Feedback(const Ormel& ormel) {
  return ormel.feedback;
}

void NoteSolution(Ormel& ormel) {
  const SolutionState& solution = ormel.solution;
  if (!solution.ValidSolution) return Note(ormel, "");
  Note(ormel, solution.OfOlderModel ? "OLDER MODEL" : "CURRENT");
}

std::string OlderModelNotice(const Ormel& ormel) {
  if (!ormel.solution.ValidSolution || !ormel.solution.OfOlderModel) return {};
  return "These results are of an older model: it has been changed since it was solved.";
}

void SelectStatus(Ormel& ormel) {
  Activity(ormel, "Select");
  Feedback(ormel, "Click mouse button to select element");
}

void PleaseWaitShow(Ormel& ormel, std::string_view text) {
  ormel.ui().PleaseWaitShow(text.empty() ? std::string_view("Redrawing...") : text);
}

void PleaseWaitHide(Ormel& ormel) {
  ormel.ui().PleaseWaitHide();
}

std::string Lines(std::initializer_list<std::string_view> lines) {
  std::string text;
  for (const std::string_view& line : lines) {
    if (&line != lines.begin()) text += '\n';
    text += line;
  }
  return text;
}

void Inform(Ormel& ormel, std::string_view title, std::string_view text, Icon icon) {
  ormel.ui().Ask(Box{std::string(title), std::string(text), Buttons::kOk, icon});
}

void Inform(Ormel& ormel, std::string_view title, std::string_view text) {
  Inform(ormel, title, text, Icon::kNone);
}

bool AskYesNo(Ormel& ormel, std::string_view title, std::string_view text, Icon icon) {
  return ormel.ui().Ask(Box{std::string(title), std::string(text), Buttons::kYesNo, icon}) == Answer::kYes;
}

bool AskOkCancel(Ormel& ormel, std::string_view title, std::string_view text, Icon icon) {
  return ormel.ui().Ask(Box{std::string(title), std::string(text), Buttons::kOkCancel, icon}) == Answer::kOk;
}

}  // namespace ormel
