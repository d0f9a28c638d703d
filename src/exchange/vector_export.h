// What a vector file is to hold: the dialog that the DXF and the boundary line exports share.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "exchange/figures.h"
#include "model/dialog.h"

namespace ormel {

/// A choice of the dialog, by its number.
enum class VectorMode : int { kContours = 0, kPathlines = 1, kZones = 2, kElements = 3 };

struct VectorChoice {
  std::string_view word;     ///< in scripts
  std::string_view code;     ///< code word
  std::string_view control;  ///< of the dialog
  std::string_view caption;
};
inline constexpr std::array kVectorChoices{
    VectorChoice{"contours", "CONTOURS", "chkExportSelection(0)", "Contour Lines"},
    VectorChoice{"pathlines", "PATHLINES", "chkExportSelection(1)", "Particle Paths"},
    VectorChoice{"zones", "CAPZONES", "chkExportSelection(2)", "Wellhead Protection Areas"},
    VectorChoice{"elements", "ELEMENTS", "chkExportSelection(3)", "Elements"}};

/// Kinds of the elements of a file, in the order of the file.
inline constexpr std::array kElementOrder{Source::kWells, Source::kDomains, Source::kLinesinks,
                                          Source::kBarriers};

class VectorExport : public OkCancelForm {
 public:
  VectorExport(Ormel& ormel, std::string FileMode);
  std::string Title() const override;
  std::string_view Name() const override { return "VectorExport"; }
  std::span<const ControlSpec> Controls() const override;

  std::string FileMode;  ///< "DXF" or "BLN"
  VectorMode mode = VectorMode::kContours;

 private:
  bool Ok() override;
};

/// What an export has written.
struct VectorReport {
  std::size_t written = 0;
  std::size_t left_out = 0;  ///< lines with fewer than two different points
};

}  // namespace ormel
