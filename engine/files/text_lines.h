// A text file as lines and items, read once from front to back whatever it holds.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace files {

/// The whole file.  Throws FileError (output_file.h) when it cannot be read.
std::string ReadWholeFile(const std::string& path);

/// Walks the lines of a text.  CR LF, LF and CR end a line; a byte order mark at the start and everything
/// from a control-Z on are passed over.  The text must outlive the walker.
class LineWalker {
 public:
  explicit LineWalker(std::string_view text);
  /// Moves to the next line; false at the end.
  bool Next();
  std::string_view line() const { return line_; }
  /// Number of the present line, from 1.
  int number() const { return number_; }

 private:
  std::string_view rest_;
  std::string_view line_;
  int number_ = 0;
};

/// Items of a line that are divided by blanks and tabs.  Views into `line`.
void SplitItems(std::string_view line, std::vector<std::string_view>& items);

/// `text` without blanks and tabs at both ends.
std::string_view Trim(std::string_view text);

/// `text` fit for a message: control bytes as '?', cut behind `longest` characters with "...".
std::string Printable(std::string_view text, std::size_t longest = 160);

}  // namespace files
