// The user of a run without a window: messages go to standard error, answers come from options, and a
// question that nobody answers gets its safe answer.  Nothing here ever waits for a person.
#pragma once

#include <atomic>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/user_interface.h"

namespace ormel {

/// An answer to boxes, input boxes and file dialogs whose title is `key`, or whose text begins with it.
struct BatchAnswer {
  std::string key, value;
  bool optional = false;  ///< no remark when nothing asks for it
};

/// A value of one control of a form: text for fields, "yes" or "no" for checks and options, the item's text
/// or number for lists, anything for a button that is to be pressed.
struct BatchSetting {
  std::string form, control, value;
  bool optional = false;  ///< no remark when the form does not come up
};

struct BatchOptions {
  bool yes = false;       ///< Yes or OK to every question that has no answer of its own
  bool quiet = false;     ///< leave out messages that only inform
  bool terminal = false;  ///< standard error is a terminal: show a progress line
  std::vector<BatchAnswer> answers;
  std::vector<BatchSetting> settings;
};

/// "Title=No" taken apart at its first "="; false when there is none or nothing before it.
bool ParseBatchAnswer(std::string_view text, BatchAnswer& answer);
/// "Form.control=value"; the control may hold an index in brackets.
bool ParseBatchSetting(std::string_view text, BatchSetting& setting);

class BatchInterface : public UserInterface {
 public:
  /// `prefix` stands before each message: the program's name.
  BatchInterface(BatchOptions options, std::ostream& messages, std::string prefix);

  Answer Ask(const Box& box) override;
  std::optional<std::string> Ask(const InputBox& box) override;
  std::optional<std::string> Ask(const FileDialog& dialog) override;
  std::optional<Color> ChooseColor(Color initial) override { return initial; }
  std::optional<FontChoice> ChooseFont(const FontChoice& initial) override { return initial; }
  /// Sets the controls named by the options and presses the accepting button.  A form that no option names
  /// is accepted as it stands with `yes`, else left by its rejecting button.
  void ShowForm(Form& form) override;
  void SetPanel(Panel, std::string_view) override {}
  void SetCaption(std::string_view) override {}
  void PleaseWaitShow(std::string_view text) override;
  void PleaseWaitHide() override;
  void Progress(double fraction, std::string_view text) override;
  bool CancelRequested() override { return cancelled_.load(); }
  void ViewTextFile(const std::string& path) override;
  void ShowHelp(std::string_view topic) override;
  void MenusChanged() override {}

  /// One more value for a control, known only once the project is open.
  void Use(BatchSetting setting);
  /// A message of the program itself, in the same form.
  void Say(std::string_view text);
  /// From a signal handler: the running outside program is to end.
  void RequestCancel() { cancelled_.store(true); }

  /// A question found no answer and got its safe one.
  bool unanswered() const { return unanswered_; }
  /// A failure box or a box with a stop icon was shown.
  bool failed() const { return failed_; }
  /// Titles of the boxes shown, in their order.
  const std::vector<std::string>& titles() const { return titles_; }
  /// Answers and settings that no question and no form asked for: most likely misspelt.
  std::vector<std::string> Unused() const;

 private:
  const std::string* TakeAnswer(std::string_view title, std::string_view text);
  void Unanswered(std::string_view what, std::string_view title, std::string_view text,
                  std::string_view example, std::string_view taken);
  void Print(std::string_view title, std::string_view text);
  void EndProgressLine();
  int Fill(Form& form);
  void SetControl(Form& form, std::string_view control, const std::string& value);

  BatchOptions options_;
  std::ostream& messages_;
  std::string prefix_;
  std::vector<int> answer_uses_, setting_uses_;
  std::vector<std::string> titles_;
  std::string wait_text_;
  std::atomic<bool> cancelled_{false};
  bool progress_line_ = false;
  bool unanswered_ = false;
  bool refused_ = false;  ///< the form that is being filled was given what no control takes
  bool failed_ = false;
};

}  // namespace ormel
