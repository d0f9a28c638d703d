// The groups of elements in a deck, for the files that write them.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/types.h"
#include "solver/vertex_table.h"
#include "store/bulk.h"
#include "text/files.h"
#include "text/masks.h"

namespace ormel {

struct Ormel;
class Database;

/// One line of a deck: items joined as they are.
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

/// Rows of the results tables, made under the labels of the deck; the loader fills them.
class ResultRows {
 public:
  /// `wells_and_linesinks` false: only the rows of domains and barriers.
  ResultRows(Database& db, bool wells_and_linesinks);
  void Well(const std::string& label, const std::string& deck_label, MapPoint at, double specified_head);
  void Linesink(const std::string& label, const std::string& deck_label, MapPoint from, MapPoint to,
                double specified_head);
  void Inhomogeneity(const std::string& label, const std::string& deck_label);
  void Barrier(const std::string& label, const std::string& deck_label);

 private:
  std::optional<BulkInsert> wells_, linesinks_;
  BulkInsert inhomogeneities_, barriers_;
};

/// What the groups share while a deck is written.
struct DeckContext {
  Ormel& ormel;
  Database& db;
  TextFileWriter& deck;
  const VertexTable& vertices;
  ResultRows& rows;
  bool for_export = false;
  int recommended_iterations = 1;
  DeckMasks masks{};

  void Line(const DeckLine& line) { deck.Line(line.str()); }
  void Recommend(int iterations) { recommended_iterations = std::max(recommended_iterations, iterations); }
};

void WriteInhomogeneities(DeckContext& context);
void WriteBarriers(DeckContext& context);
void WriteWells(DeckContext& context);
void WriteLinesinks(DeckContext& context);

}  // namespace ormel
