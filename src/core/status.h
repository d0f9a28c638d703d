// Boxes, panels of the status bar and the wait box.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace ormel {

struct Ormel;
enum class Icon;

void Activity(Ormel& ormel, std::string_view text);
void Feedback(Ormel& ormel, std::string_view text);
void Note(Ormel& ormel, std::string_view text);
const std::string& Activity(const Ormel& ormel);
const std::string& Feedback(const Ormel& ormel);

/// Puts into the third panel what the results on view are: "CURRENT", "OLDER MODEL", or nothing.
void NoteSolution(Ormel& ormel);
/// What every table, report and picture of results says while they are those of an older model; else empty.
std::string OlderModelNotice(const Ormel& ormel);

/// "Select" and "Click mouse button to select element".
void SelectStatus(Ormel& ormel);

void PleaseWaitShow(Ormel& ormel, std::string_view text);
void PleaseWaitHide(Ormel& ormel);

/// The wait box for the length of a block.
class PleaseWait {
 public:
  PleaseWait(Ormel& ormel, std::string_view text) : ormel_(ormel) { PleaseWaitShow(ormel, text); }
  ~PleaseWait() { PleaseWaitHide(ormel_); }
  PleaseWait(const PleaseWait&) = delete;
  PleaseWait& operator=(const PleaseWait&) = delete;

 private:
  Ormel& ormel_;
};

/// Joins the lines of a box.
std::string Lines(std::initializer_list<std::string_view> lines);

/// A box with an OK button.
void Inform(Ormel& ormel, std::string_view title, std::string_view text);
void Inform(Ormel& ormel, std::string_view title, std::string_view text, Icon icon);
/// Yes and No; true for Yes.
bool AskYesNo(Ormel& ormel, std::string_view title, std::string_view text, Icon icon);
/// OK and Cancel; true for OK.
bool AskOkCancel(Ormel& ormel, std::string_view title, std::string_view text, Icon icon);

}  // namespace ormel
