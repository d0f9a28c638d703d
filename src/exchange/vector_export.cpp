#include "exchange/vector_export.h"

namespace ormel {
namespace {

constexpr auto kControls = [] {
  std::array<ControlSpec, kVectorChoices.size() + 2> controls{};
  for (std::size_t i = 0; i < kVectorChoices.size(); ++i)
    controls[i] = {.name = kVectorChoices[i].control,
                   .kind = ControlKind::kOption,
                   .caption = kVectorChoices[i].caption,
                   .group = "What to Export"};
  controls[kVectorChoices.size()] = kOkButton;
  controls[kVectorChoices.size() + 1] = kCancelButton;
  return controls;
}();

}  // namespace

VectorExport::VectorExport(Ormel& ormel, std::string file_mode)
    : OkCancelForm(ormel), FileMode(std::move(file_mode)) {
  InitControls();
  PutCheck(kVectorChoices.front().control, true);
}

std::string VectorExport::Title() const {
  if (FileMode == "DXF") return "Export DXF File";
  return FileMode == "BLN" ? "Export SURFER\u00ae BLN File" : "Export Vector File";
}

std::span<const ControlSpec> VectorExport::Controls() const {
  return kControls;
}

bool VectorExport::Ok() {
  for (std::size_t i = 0; i < kVectorChoices.size(); ++i)
    if (Checked(kVectorChoices[i].control)) mode = static_cast<VectorMode>(i);
  return true;
}

}  // namespace ormel
