#include "solver/deck_labels.h"

#include "text/masks.h"

namespace ormel {

std::string VertexLabel(std::string_view prefix, std::int64_t id) {
  static const NumberMask mask("000000");
  std::string label(prefix);
  mask.AppendTo(label, static_cast<double>(id));
  return label;
}

std::string SegmentLabel(std::string_view prefix, std::int64_t pid, std::int64_t seq) {
  static const NumberMask mask("0000");
  std::string label = VertexLabel(prefix, pid) + "_";
  mask.AppendTo(label, static_cast<double>(seq));
  return label;
}

}  // namespace ormel
