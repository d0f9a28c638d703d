// A results table with its rows by their labels.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "store/recordset.h"

namespace ormel {

class Database;

/// Finds rows through a table of labels made once, so that loading is linear.  Labels compare without regard
/// to case; of several rows of one label the first counts.
class ResultTable {
 public:
  ResultTable(Database& db, std::string_view table, std::string_view key = "VadoxLabel");

  /// Stands on the row of a label; false when there is none.
  bool Find(std::string_view label);
  void Edit() { rows_.Edit(); }
  void Set(std::string_view column, double value) { rows_.Set(column, Value(value)); }
  double Number(std::string_view column) const { return rows_.Get(column).AsDouble(); }
  void Update() { rows_.Update(); }
  /// Adds the keys of the rows that expect a result and that Find has not met, in their order.
  void AddUnanswered(std::vector<std::string>& labels) const;

 private:
  struct Row {
    Bookmark mark;
    std::string label{};
    bool expected = true;
    bool met = false;
  };
  Recordset rows_;
  std::unordered_map<std::string, Row> by_label_;
};

}  // namespace ormel
