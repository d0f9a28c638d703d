#include "shell/batch_interface.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <ostream>

#include "core/form.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

struct AnswerWord {
  std::string_view word;
  Answer answer;
};
constexpr std::array kWords{AnswerWord{"ok", Answer::kOk}, AnswerWord{"cancel", Answer::kCancel},
                            AnswerWord{"yes", Answer::kYes}, AnswerWord{"no", Answer::kNo}};

struct ButtonSet {
  Buttons buttons;
  Answer agree, safe;
  std::string_view choices;
};
constexpr std::array kButtonSets{
    ButtonSet{Buttons::kOk, Answer::kOk, Answer::kOk, "OK"},
    ButtonSet{Buttons::kOkCancel, Answer::kOk, Answer::kCancel, "OK"},
    ButtonSet{Buttons::kYesNo, Answer::kYes, Answer::kNo, "Yes"},
    ButtonSet{Buttons::kYesNoCancel, Answer::kYes, Answer::kCancel, "Yes"},
};

const ButtonSet& SetOf(Buttons buttons) {
  for (const ButtonSet& set : kButtonSets)
    if (set.buttons == buttons) return set;
  return kButtonSets.front();
}

std::string_view WordOf(Answer answer) {
  switch (answer) {
    case Answer::kOk:
      return "OK";
    case Answer::kCancel:
      return "Cancel";
    case Answer::kYes:
      return "Yes";
    case Answer::kNo:
      return "No";
  }
  return "";
}

bool Offers(Buttons buttons, Answer answer) {
  switch (buttons) {
    case Buttons::kOk:
      return answer == Answer::kOk;
    case Buttons::kOkCancel:
      return answer == Answer::kOk || answer == Answer::kCancel;
    case Buttons::kYesNo:
      return answer == Answer::kYes || answer == Answer::kNo;
    case Buttons::kYesNoCancel:
      return answer != Answer::kOk;
  }
  return false;
}

bool IsYes(std::string_view text) {
  static constexpr std::array<std::string_view, 5> kYes{"yes", "true", "on", "1", "-1"};
  return std::any_of(kYes.begin(), kYes.end(),
                     [text](std::string_view word) { return EqualNoCase(Trim(text), word); });
}

std::string_view FirstLine(std::string_view text) {
  return text.substr(0, text.find('\n'));
}

/// A control's item by its text, else by its number from 0; -1 when there is no such item.
int ItemIndex(const ControlState& state, std::string_view value) {
  for (std::size_t i = 0; i < state.items.size(); ++i)
    if (EqualNoCase(state.items[i], value)) return static_cast<int>(i);
  return IsNumeric(value) ? static_cast<int>(Val(value)) : -1;
}

std::string ButtonOf(const Form& form, ButtonRole role) {
  for (const ControlSpec& control : form.Controls())
    if (control.role == role) return std::string(control.name);
  return {};
}

}  // namespace

bool ParseBatchAnswer(std::string_view text, BatchAnswer& answer) {
  const std::size_t equals = text.find('=');
  if (equals == std::string_view::npos || Trim(text.substr(0, equals)).empty()) return false;
  answer.key = Trim(text.substr(0, equals));
  answer.value = text.substr(equals + 1);
  return true;
}

bool ParseBatchSetting(std::string_view text, BatchSetting& setting) {
  const std::size_t equals = text.find('=');
  const std::size_t point = text.find('.');
  if (equals == std::string_view::npos || point == std::string_view::npos || point > equals) return false;
  setting.form = Trim(text.substr(0, point));
  setting.control = Trim(text.substr(point + 1, equals - point - 1));
  setting.value = text.substr(equals + 1);
  return !setting.form.empty() && !setting.control.empty();
}

BatchInterface::BatchInterface(BatchOptions options, std::ostream& messages, std::string prefix)
    : options_(std::move(options)),
      messages_(messages),
      prefix_(std::move(prefix)),
      answer_uses_(options_.answers.size(), 0),
      setting_uses_(options_.settings.size(), 0) {}

void BatchInterface::Print(std::string_view title, std::string_view text) {
  EndProgressLine();
  std::string out = prefix_ + ": ";
  if (!title.empty()) out += std::string(title) + ": ";
  for (const char c : text) {
    out += c;
    if (c == '\n') out += "    ";
  }
  messages_ << out << std::endl;
}

void BatchInterface::Say(std::string_view text) {
  Print("", text);
}

const std::string* BatchInterface::TakeAnswer(std::string_view title, std::string_view text) {
  const std::string* last = nullptr;
  for (std::size_t i = 0; i < options_.answers.size(); ++i) {
    const BatchAnswer& answer = options_.answers[i];
    const bool fits = EqualNoCase(answer.key, title) || StartsWithNoCase(text, answer.key);
    if (!fits) continue;
    last = &answer.value;
    if (answer_uses_[i] == 0) {
      ++answer_uses_[i];
      return last;
    }
  }
  return last;  // the last of its key answers from then on
}

void BatchInterface::Unanswered(std::string_view what, std::string_view title, std::string_view text,
                                std::string_view example, std::string_view taken) {
  unanswered_ = true;
  std::string key(title);
  if (key.empty()) key = FirstLine(text);
  Say(std::string(what) + " got no answer and ends with " + std::string(taken) + "; use --answer \"" + key +
      "=" + std::string(example) + "\" to answer it.");
}

Answer BatchInterface::Ask(const Box& box) {
  titles_.push_back(box.title);
  const ButtonSet& set = SetOf(box.buttons);
  if (box.icon == Icon::kStop || box.title.starts_with("Unhandled Error")) failed_ = true;
  const bool informs = box.buttons == Buttons::kOk && box.icon != Icon::kStop && box.icon != Icon::kWarning;
  const std::string* answer = TakeAnswer(box.title, box.text);
  if (!(options_.quiet && informs)) Print(box.title, box.text);
  if (answer != nullptr) {
    for (const AnswerWord& word : kWords)
      if (EqualNoCase(Trim(*answer), word.word) && Offers(box.buttons, word.answer)) return word.answer;
    Say("\"" + *answer + "\" is no answer to \"" + box.title + "\".");
  } else if (options_.yes || box.buttons == Buttons::kOk) {
    return set.agree;
  }
  if (box.buttons != Buttons::kOk)
    Unanswered("the question", box.title, box.text, set.choices, WordOf(set.safe));
  return set.safe;
}

std::optional<std::string> BatchInterface::Ask(const InputBox& box) {
  titles_.push_back(box.title);
  if (const std::string* answer = TakeAnswer(box.title, box.text)) return *answer;
  Print(box.title, box.text);
  if (options_.yes) return box.initial;
  Unanswered("the input box", box.title, box.text, box.initial.empty() ? "text" : box.initial, "Cancel");
  return std::nullopt;
}

std::optional<std::string> BatchInterface::Ask(const FileDialog& dialog) {
  titles_.push_back(dialog.title);
  if (const std::string* answer = TakeAnswer(dialog.title, dialog.title)) return *answer;
  Unanswered("the file dialog", dialog.title, dialog.title, "path", "Cancel");
  return std::nullopt;
}

void BatchInterface::SetControl(Form& form, std::string_view control, const std::string& value) {
  const auto specs = form.Controls();
  const auto spec = std::find_if(specs.begin(), specs.end(), [control](const ControlSpec& candidate) {
    return EqualNoCase(candidate.name, control);
  });
  if (spec == specs.end()) {
    unanswered_ = true;
    Say("the form " + std::string(form.Name()) + " has no control " + std::string(control) + ".");
    return;
  }
  switch (spec->kind) {
    case ControlKind::kCheck:
    case ControlKind::kOption:
      form.SetChecked(spec->name, IsYes(value));
      return;
    case ControlKind::kButton:
      form.Click(spec->name);
      return;
    case ControlKind::kCombo:
    case ControlKind::kList:
      form.Select(spec->name, {ItemIndex(form.State(spec->name), value)});
      return;
    case ControlKind::kMultiList: {
      std::vector<int> chosen;
      for (const std::string& item : ParseString(value, ','))
        chosen.push_back(ItemIndex(form.State(spec->name), item));
      form.Select(spec->name, chosen);
      return;
    }
    case ControlKind::kNumber:
      if (!IsNumeric(value) && !Trim(value).empty()) {
        refused_ = true;
        Say(std::string(form.Name()) + "." + std::string(spec->name) + ": \"" + value +
            "\" is not a number.");
        return;
      }
      form.SetText(spec->name, value);
      return;
    default:
      form.SetText(spec->name, value);
  }
}

void BatchInterface::Use(BatchSetting setting) {
  options_.settings.push_back(std::move(setting));
  setting_uses_.push_back(0);
}

/// Sets what the options say; gives how many of them named this form.
int BatchInterface::Fill(Form& form) {
  int named = 0;
  for (std::size_t i = 0; i < options_.settings.size() && !form.Hidden(); ++i) {
    const BatchSetting& setting = options_.settings[i];
    if (!EqualNoCase(setting.form, form.Name())) continue;
    ++named;
    ++setting_uses_[i];
    SetControl(form, setting.control, setting.value);
  }
  return named;
}

void BatchInterface::ShowForm(Form& form) {
  form.MarkShown();
  refused_ = false;
  const int named = Fill(form);
  if (form.Hidden()) return;
  const std::string accept = ButtonOf(form, ButtonRole::kAccept);
  const std::string reject = ButtonOf(form, ButtonRole::kReject);
  if (named > 0 || options_.yes || reject.empty()) {
    if (!accept.empty() && !refused_) form.Click(accept);
    if (form.Hidden()) return;
    unanswered_ = true;
    Say("the form " + std::string(form.Name()) +
        " did not take these values and was cancelled; use --set \"" + std::string(form.Name()) +
        ".control=value\" to change them.");
  } else {
    unanswered_ = true;
    Say("the form " + std::string(form.Name()) + " got no values and was cancelled; use --set \"" +
        std::string(form.Name()) + ".control=value\", or --yes to take it as it stands.");
  }
  if (!reject.empty()) form.Click(reject);
}

void BatchInterface::PleaseWaitShow(std::string_view text) {
  wait_text_ = text;
}

void BatchInterface::PleaseWaitHide() {
  EndProgressLine();
  wait_text_.clear();
}

void BatchInterface::Progress(double fraction, std::string_view text) {
  if (!options_.terminal || options_.quiet) return;
  constexpr int kWidth = 30;
  std::string bar;
  if (fraction >= 0.0) {
    const int filled = static_cast<int>(std::lround(std::clamp(fraction, 0.0, 1.0) * kWidth));
    bar = "[" + std::string(static_cast<std::size_t>(filled), '#') +
          std::string(static_cast<std::size_t>(kWidth - filled), '.') + "] ";
  }
  messages_ << '\r' << wait_text_ << ' ' << bar << text << "\x1b[K" << std::flush;
  progress_line_ = true;
}

void BatchInterface::EndProgressLine() {
  if (progress_line_) messages_ << "\r\x1b[K" << std::flush;
  progress_line_ = false;
}

void BatchInterface::ViewTextFile(const std::string& path) {
  if (!options_.quiet) Say("see " + path);
}

void BatchInterface::ShowHelp(std::string_view topic) {
  Say("the user guide has a page on " + std::string(topic.empty() ? "its contents" : topic) + ".");
}

std::vector<std::string> BatchInterface::Unused() const {
  std::vector<std::string> unused;
  for (std::size_t i = 0; i < options_.answers.size(); ++i)
    if (answer_uses_[i] == 0 && !options_.answers[i].optional)
      unused.push_back("--answer \"" + options_.answers[i].key + "=" + options_.answers[i].value + "\"");
  for (std::size_t i = 0; i < options_.settings.size(); ++i) {
    const BatchSetting& s = options_.settings[i];
    if (setting_uses_[i] == 0 && !s.optional)
      unused.push_back("--set \"" + s.form + "." + s.control + "=" + s.value + "\"");
  }
  return unused;
}

}  // namespace ormel
