#include "vadox1/records.h"

#include <fmt/format.h>

namespace vadox1 {

void Record::Divide() {
  if (!first_) text_ += ",";
  first_ = false;
}

Record& Record::Add(double value) {
  Divide();
  // Adding zero turns a negative zero into a plain one.
  text_ += fmt::format("{:17.9E}", value + 0.0);
  return *this;
}

Record& Record::Add(int value) {
  Divide();
  text_ += fmt::format("{:8}", value);
  return *this;
}

Record& Record::Add(std::string_view text) {
  Divide();
  text_ += " ";
  text_ += text;
  return *this;
}

}  // namespace vadox1
