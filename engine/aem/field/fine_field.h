// The field where very many points of the same ground are asked: cells below those of FarField, made when
// they are first asked and kept.
//
// A cell of radius r about c holds what all sources farther than kClear r give to it,
//   Phi = Re omega(z) + rate/4 |z - c|^2,     omega = sum over n = 0 ... kTerms of l_n ((z - c)/r)^n,
// the second term for the areas that hold the whole cell; sources nearer are summed in closed form.  Sources
// that a cell is clear of and its parent was not are added by Cauchy's integral over the circle of radius r.
// Cutting at kTerms and the discrete integral leave less than kClear^-kTerms, 3e-10, of what these sources
// give, beside the error of FarField.  (Own derivation.)
//
// What a cell holds depends on its place alone, so that answers do not depend on the order of questions.
#pragma once

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include "aem/field/farfield.h"

namespace aem::detail {

class FineField {
 public:
  /// From the present strengths; keeps a reference to the system and holds for as long as they do not change.
  explicit FineField(const System& system);
  ~FineField();
  FineField(const FineField&) = delete;
  FineField& operator=(const FineField&) = delete;

  /// System::SteadyField.  From any thread.
  Flow At(Complex at, Complex toward) const;
  /// Made so far.
  std::size_t Cells() const { return count_.load(); }

 private:
  struct Cell;

  Cell* Top(int leaf) const;
  Cell* Child(Cell& parent, int quarter) const;
  Cell* MakeTop(int leaf) const;
  Cell* MakeChild(const Cell& parent, int quarter) const;
  /// Adds the sources, and the background of `cell` without the areas near it where asked for.
  void Absorb(Cell& cell, const std::vector<int>& sources, bool background) const;
  /// Sources count on from those of FarField: areas, then disks.
  Flow One(int source, Complex at, Complex toward) const;
  double Distance(int source, Complex at) const;
  /// Of an area or disk that holds the place; 0 of all else [L/d].
  double RateAt(int source, Complex at) const;

  const System& s_;
  std::shared_ptr<const FarField> far_;
  int first_area_ = 0, first_disk_ = 0, past_ = 0;
  std::unique_ptr<std::atomic<Cell*>[]> tops_;  ///< one a cell of FarField
  mutable std::array<std::mutex, 64> making_;
  mutable std::atomic<std::size_t> count_{0};
};

}  // namespace aem::detail
