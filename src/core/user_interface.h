// What the program asks of whoever sits in front of it: a window, a batch run, or a script in a test.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/types.h"

namespace ormel {

struct Chart;
class Form;

enum class Buttons { kOk, kOkCancel, kYesNo, kYesNoCancel };
enum class Icon { kNone, kInformation, kQuestion, kWarning, kStop };
enum class Answer { kOk, kCancel, kYes, kNo };

/// A modal box.  `text` holds its lines separated by '\n'.
struct Box {
  std::string title;
  std::string text;
  Buttons buttons = Buttons::kOk;
  Icon icon = Icon::kNone;
  bool safe_default = false;  ///< Enter presses No or Cancel
};

struct InputBox {
  std::string title;
  std::string text;
  std::string initial;
};

/// A file dialog.  `filter` is pairs of caption and pattern separated by '|'.
struct FileDialog {
  bool save = false;
  std::string title;
  std::string default_extension;
  std::string filter;
  std::string directory;
  std::string file_name;
};

struct FontChoice {
  std::string name = "Arial";
  int size = 10;  ///< points
  bool bold = false, italic = false;
};

/// The status bar's panels, by number.
enum class Panel { kActivity = 1, kFeedback = 2, kNote = 3, kX = 4, kY = 5 };

class UserInterface {
 public:
  virtual ~UserInterface() = default;

  virtual Answer Ask(const Box& box) = 0;
  /// The text, or nothing when the user cancelled.
  virtual std::optional<std::string> Ask(const InputBox& box) = 0;
  /// The full path, or nothing when the user cancelled.
  virtual std::optional<std::string> Ask(const FileDialog& dialog) = 0;
  virtual std::optional<Color> ChooseColor(Color initial) = 0;
  virtual std::optional<FontChoice> ChooseFont(const FontChoice& initial) = 0;

  /// Shows the form modally until it hides itself through Ok, Cancel or one of its buttons.
  virtual void ShowForm(Form& form) = 0;

  virtual void SetPanel(Panel panel, std::string_view text) = 0;
  virtual void SetCaption(std::string_view caption) = 0;

  virtual void PleaseWaitShow(std::string_view text) = 0;
  virtual void PleaseWaitHide() = 0;
  /// `fraction` 0 to 1, or below 0 when unknown.
  virtual void Progress(double fraction, std::string_view text) = 0;
  /// True once the user has pressed Cancel in the wait box.
  virtual bool CancelRequested() = 0;

  /// Puts a text on the clipboard, where there is one.
  virtual void CopyText(std::string_view /*text*/) {}
  /// Puts the picture of a chart on the clipboard, where there is one.
  virtual void CopyChart(const Chart& /*chart*/) {}
  /// Opens a text file in a viewer; the program goes on.
  virtual void ViewTextFile(const std::string& path) = 0;
  /// Opens the user guide at a topic; empty for its contents.
  virtual void ShowHelp(std::string_view topic) = 0;
  virtual void MenusChanged() = 0;
};

}  // namespace ormel
