// What a user can do only with results: the one list of menu items that a solution enables.
#pragma once

#include <span>
#include <string_view>

namespace ormel {

struct Ormel;

struct ResultItem {
  std::string_view control;
  int index;
};

std::span<const ResultItem> ResultItems();
/// All of them: the solution has come, or has gone.
void EnableResultItems(Ormel& ormel, bool on);

}  // namespace ormel
