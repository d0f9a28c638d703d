#include "geo/layer_style.h"

#include <utility>

#include "text/html.h"
#include "text/numbers.h"

namespace ormel {
namespace {

using Properties = std::vector<std::pair<std::string, std::string>>;

std::string Text(const LayerColor& color) {
  return std::to_string(color.red) + "," + std::to_string(color.green) + "," + std::to_string(color.blue) +
         "," + std::to_string(color.alpha);
}

// Readers before 3.28 take the `prop` elements, later ones the `Option` elements.
std::string Written(const Properties& properties) {
  std::string options = "<Option type=\"Map\">", props;
  for (const auto& [name, value] : properties) {
    options += "<Option type=\"QString\" name=\"" + name + "\" value=\"" + EscapeHtml(value) + "\"/>";
    props += "<prop k=\"" + name + "\" v=\"" + EscapeHtml(value) + "\"/>";
  }
  return options + "</Option>" + props;
}

struct SymbolParts {
  const char* type;
  const char* symbol_layer;
  Properties properties;
};

SymbolParts PartsOf(const LayerStyle& style, GeometryKind kind) {
  const std::string pen = style.dashed ? "dash" : "solid";
  const std::string width = NumberText(style.width);
  if (kind == GeometryKind::kPoint) {
    return {"marker",
            "SimpleMarker",
            {{"name", style.marker},
             {"color", Text(style.fill)},
             {"outline_color", Text(style.line)},
             {"outline_style", "solid"},
             {"outline_width", width},
             {"outline_width_unit", "MM"},
             {"size", NumberText(style.size)},
             {"size_unit", "MM"}}};
  }
  if (kind == GeometryKind::kPolygon) {
    return {"fill",
            "SimpleFill",
            {{"color", Text(style.fill)},
             {"style", "solid"},
             {"outline_color", Text(style.line)},
             {"outline_style", pen},
             {"outline_width", width},
             {"outline_width_unit", "MM"}}};
  }
  return {"line",
          "SimpleLine",
          {{"line_color", Text(style.line)},
           {"line_style", pen},
           {"line_width", width},
           {"line_width_unit", "MM"},
           {"capstyle", "round"},
           {"joinstyle", "round"}}};
}

}  // namespace

std::string StyleQml(const LayerStyle& style, GeometryKind kind) {
  const SymbolParts parts = PartsOf(style, kind);
  std::string text = "<qgis version=\"3.22.0\" styleCategories=\"Symbology|Labeling\" labelsEnabled=\"";
  text += style.label_field.empty() ? "0" : "1";
  text +=
      "\"><renderer-v2 type=\"singleSymbol\" symbollevels=\"0\" enableorderby=\"0\" "
      "forceraster=\"0\"><symbols>";
  text += std::string("<symbol type=\"") + parts.type +
          "\" name=\"0\" alpha=\"1\" clip_to_extent=\"1\" force_rhr=\"0\"><layer class=\"" +
          parts.symbol_layer + "\" enabled=\"1\" locked=\"0\" pass=\"0\">" + Written(parts.properties) +
          "</layer></symbol></symbols><rotation/><sizescale/></renderer-v2>";
  if (!style.label_field.empty()) {
    text += "<labeling type=\"simple\"><settings calloutType=\"simple\"><text-style fieldName=\"" +
            EscapeHtml(style.label_field) +
            "\" isExpression=\"0\" fontSize=\"8\" fontSizeUnit=\"Point\" textColor=\"32,32,32,255\"/>"
            "<placement placement=\"" +
            std::string(kind == GeometryKind::kPoint ? "6" : "2") + "\"/></settings></labeling>";
  }
  return text + "</qgis>";
}

}  // namespace ormel
