// One line of a deck, and the masks of its numbers.
#pragma once

#include <string>
#include <string_view>

#include "text/masks.h"

namespace ormel {

/// Items joined as they are.
class DeckLine {
 public:
  explicit DeckLine(std::string_view text) : text_(text) {}
  DeckLine& Text(std::string_view text) {
    text_ += text;
    return *this;
  }
  DeckLine& Number(const NumberMask& mask, double value) {
    mask.AppendTo(text_, value);
    return *this;
  }
  const std::string& str() const { return text_; }

 private:
  std::string text_;
};

/// The masks that more than one group uses, named by their decimals.
struct DeckMasks {
  NumberMask five{"#.00000E+00"};
  NumberMask five_blank{"#.00000E+00 "};
  NumberMask six_blank{"#.000000E+00 "};
  NumberMask seven{"#.0000000E+00"};
  NumberMask seven_blank{"#.0000000E+00 "};
};

}  // namespace ormel
