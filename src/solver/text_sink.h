// Where the lines of a deck go.
#pragma once

#include <string>
#include <string_view>

#include "text/files.h"

namespace ormel {

class TextSink {
 public:
  TextSink() = default;
  virtual ~TextSink() = default;
  TextSink(const TextSink&) = delete;
  TextSink& operator=(const TextSink&) = delete;
  /// One line, without its end.
  virtual void Line(std::string_view line) = 0;
};

/// Lines of a file; the caller commits the file.  Throws FileError.
class FileSink final : public TextSink {
 public:
  explicit FileSink(TextFileWriter& file) : file_(file) {}
  void Line(std::string_view line) override { file_.Line(line); }

 private:
  TextFileWriter& file_;
};

/// Lines in memory, each with CR LF behind it.
class StringSink final : public TextSink {
 public:
  void Line(std::string_view line) override {
    text_ += line;
    text_ += "\r\n";
  }
  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

}  // namespace ormel
