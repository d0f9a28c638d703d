#include "core/ask_number.h"

#include <cmath>

#include "core/ormel.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {

bool AcceptAsNumber(Ormel& ormel, const std::string& field, const std::string& text) {
  const std::string number = NumberText(Val(text));
  return ormel.ui().Ask(Box{
             .title = "Not Wholly a Number",
             .text = field + ": \"" + text + "\" reads as " + number +
                     ".\nA number has a point before its decimals and nothing between its digits.\nTake " +
                     number + "?",
             .buttons = Buttons::kYesNo,
             .icon = Icon::kWarning,
             .safe_default = true}) == Answer::kYes;
}

std::optional<double> AskNumber(Ormel& ormel, InputBox box) {
  while (true) {
    const std::optional<std::string> answer = ormel.ui().Ask(box);
    if (!answer || Trim(*answer).empty()) return std::nullopt;
    const double value = Val(*answer);
    if (!std::isfinite(value)) return std::nullopt;
    if (IsNumeric(*answer) || AcceptAsNumber(ormel, box.title, *answer)) return value;
    if (box.initial == *answer) return std::nullopt;  // a script that has no other answer
    box.initial = *answer;
  }
}

}  // namespace ormel
