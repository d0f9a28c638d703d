// Lines of the extraction file: numbers with ten significant digits, divided by commas.
#pragma once

#include <string>
#include <string_view>

namespace vadox1 {

/// Builds one record: a first character that tells its kind, then fields divided by commas.
class Record {
 public:
  /// ' ' an element, '@' a test point.
  explicit Record(char kind) : text_(1, kind) {}
  Record& Add(double value);
  Record& Add(int value);
  Record& Add(std::string_view text);
  /// The record with its line end.
  std::string Line() const { return text_ + "\r\n"; }

 private:
  void Divide();
  std::string text_;
  bool first_ = true;
};

}  // namespace vadox1
