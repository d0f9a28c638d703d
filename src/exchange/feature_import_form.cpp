#include "exchange/feature_import_form.h"

#include <array>
#include <filesystem>

#include "core/command.h"
#include "core/directory_memory.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/table.h"
#include "core/user_interface.h"
#include "exchange/units.h"
#include "geo/crs.h"
#include "geo/geo_error.h"
#include "model/digitize.h"
#include "text/files.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr std::string_view kPathKey = "Default Import Features path";
constexpr std::string_view kTitle = "Import Features";
constexpr std::size_t kShownRows = 10;
enum MappingColumn : std::size_t { kProperty, kField, kStandard, kUnit };

constexpr std::array kControls{
    ControlSpec{.name = "File", .kind = ControlKind::kText, .caption = "File", .longest = 4096},
    ControlSpec{.name = "Browse", .kind = ControlKind::kButton, .caption = "Browse..."},
    ControlSpec{.name = "Layer", .kind = ControlKind::kCombo, .caption = "Layer"},
    ControlSpec{.name = "About", .kind = ControlKind::kNote},
    ControlSpec{.name = "Rows", .kind = ControlKind::kTable, .tip = "The first ten features"},
    ControlSpec{.name = "Target", .kind = ControlKind::kCombo, .caption = "Features become"},
    ControlSpec{
        .name = "Mapping",
        .kind = ControlKind::kTable,
        .tip = "Type over: the field that gives the property, the value where it gives none, and the unit"},
    ControlSpec{.name = "Units", .kind = ControlKind::kNote},
    ControlSpec{.name = "CRS",
                .kind = ControlKind::kText,
                .caption = "Coordinate reference system",
                .tip = "In place of what the file says: a code as EPSG:28992, or WKT",
                .longest = 8000},
    ControlSpec{
        .name = "Within", .kind = ControlKind::kCheck, .caption = "Only what touches the map's window"},
    ControlSpec{.name = "Heads",
                .kind = ControlKind::kCheck,
                .caption = "Starting and ending head from the elevations at the ends"},
    ControlSpec{
        .name = "HeadUnit", .kind = ControlKind::kText, .caption = "Unit of these elevations", .longest = 10},
    ControlSpec{.name = "Tolerance",
                .kind = ControlKind::kNumber,
                .caption = "Simplify lines to within",
                .tip = "A vertex is left out when the line without it passes this close; 0 keeps all",
                .range = kSizes},
    ControlSpec{.name = "MostVertices",
                .kind = ControlKind::kNumber,
                .caption = "Most vertices of a line",
                .range = {2, 100000}},
    ControlSpec{
        .name = "Check", .kind = ControlKind::kButton, .caption = "Check", .tip = "Count what would come in"},
    ControlSpec{.name = "Counts", .kind = ControlKind::kNote},
    ControlSpec{.name = "OK", .kind = ControlKind::kButton, .caption = "Import", .role = ButtonRole::kAccept},
    kCancelButton,
};

std::shared_ptr<Table> EmptyTable() {
  return std::make_shared<Table>(std::vector<TableColumn>{{.name = "", .caption = "", .number = false}});
}

std::string About(const VectorSource& source, const VectorLayer& layer) {
  std::string text = source.format() + ", " + GeometryKindText(layer.kind);
  if (layer.count >= 0) text += ", " + std::to_string(layer.count) + " features";
  try {
    text += layer.crs_wkt.empty() ? ", coordinate reference system not told"
                                  : ", " + Crs::Parse(layer.crs_wkt).name();
  } catch (const GeoError&) {
    text += ", coordinate reference system not known";
  }
  return text;
}

}  // namespace

FeatureImportForm::FeatureImportForm(Ormel& controller) : OkCancelForm(controller) {
  InitControls();
  for (const FeatureTarget& target : FeatureTargets()) Mutable("Target").items.emplace_back(target.caption);
  Mutable("Target").selected = {0};
  Mutable("Rows").table = EmptyTable();
  Put("HeadUnit", UnitOf(controller, Quantity::kLength));
  Unit("Tolerance", UnitOf(controller, Quantity::kMapLength));
  PutNumber("Tolerance", 0.0);
  PutNumber("MostVertices", static_cast<double>(FeatureImport{}.most_vertices));
  ShowMapping();
  Offer("Check", false);
}

std::span<const ControlSpec> FeatureImportForm::Controls() const {
  return kControls;
}

const FeatureTarget& FeatureImportForm::Target() const {
  const std::vector<int>& selected = State("Target").selected;
  return FeatureTargets()[selected.empty() ? 0 : static_cast<std::size_t>(selected.front())];
}

const VectorLayer* FeatureImportForm::Layer() const {
  const std::vector<int>& selected = State("Layer").selected;
  if (source_ == nullptr || selected.empty()) return nullptr;
  return &source_->layers()[static_cast<std::size_t>(selected.front())];
}

void FeatureImportForm::Browse() {
  FileDialog dialog;
  dialog.title = kTitle;
  dialog.filter = std::string("Layers of features|") + VectorFilePatterns() + "|All files|*";
  dialog.directory = ReadDefaultDirectory(ormel(), kPathKey);
  const std::optional<std::string> path = ormel().ui().Ask(dialog);
  if (!path || path->empty()) return;
  WriteDefaultDirectory(ormel(), kPathKey, std::filesystem::path(*path).parent_path().string());
  // The folder of a file geodatabase is chosen by the file "gdb" in it.
  const std::string folder = std::filesystem::path(*path).parent_path().string();
  Put("File", FileTitle(*path) == "gdb" && folder.ends_with(".gdb") ? folder : *path);
  Open();
  if (!fault_.empty()) Inform(ormel(), kTitle, fault_, Icon::kWarning);
}

void FeatureImportForm::Open() {
  source_.reset();
  fault_.clear();
  ControlState& layers = Mutable("Layer");
  layers.items.clear();
  layers.selected.clear();
  const std::string path(Trim(Text("File")));
  try {
    if (!path.empty()) source_ = std::make_unique<VectorSource>(path);
  } catch (const GeoError& error) {
    fault_ = error.what();
  }
  if (source_ != nullptr) {
    for (const VectorLayer& layer : source_->layers()) layers.items.push_back(layer.name);
    layers.selected = {0};
  }
  ShowLayer();
}

void FeatureImportForm::ShowLayer() {
  const VectorLayer* layer = Layer();
  Offer("Check", layer != nullptr);
  Mutable("Rows").table = EmptyTable();
  Caption("About", layer == nullptr ? fault_ : About(*source_, *layer));
  if (layer != nullptr && !layer->fields.empty()) {
    std::vector<TableColumn> columns;
    for (const GeoField& field : layer->fields)
      columns.push_back(
          {.name = field.name, .caption = field.name, .number = field.kind != FieldKind::kText});
    auto table = std::make_shared<Table>(columns);
    try {
      source_->Read(static_cast<std::size_t>(State("Layer").selected.front()), [&table](GeoFeature& feature) {
        std::vector<Value> row;
        for (const GeoValue& value : feature.values) row.emplace_back(GeoValueText(value));
        table->AddRow(std::move(row));
        return table->Rows() < kShownRows;
      });
    } catch (const GeoError& error) {
      Inform(ormel(), kTitle, error.what(), Icon::kWarning);
    }
    Mutable("Rows").table = table;
  }
  ShowMapping();
}

void FeatureImportForm::ShowMapping() {
  FeatureImport request;
  request.target = &Target();
  const VectorLayer* layer = Layer();
  GuessProperties(request, layer == nullptr ? VectorLayer{} : *layer);
  auto table = std::make_shared<Table>(
      std::vector<TableColumn>{{.name = "Property", .caption = "Property", .number = false},
                               {.name = "Field", .caption = "Field of the layer", .number = false},
                               {.name = "Default", .caption = "Value without it", .number = false},
                               {.name = "Unit", .caption = "Unit", .number = false}});
  std::string units;
  for (const TargetProperty& property : request.target->properties) {
    const PropertySource& source = request.properties[std::string(property.name)];
    table->AddRow(
        {std::string(property.caption), source.field, source.standard, UnitOf(ormel(), property.quantity)});
    std::string known;
    for (const std::string& unit : UnitsOf(property.quantity)) known += (known.empty() ? "" : ", ") + unit;
    if (!known.empty() && units.find(known) == std::string::npos)
      units += (units.empty() ? "Units: " : "; ") + known;
  }
  Mutable("Mapping").table = table;
  Mutable("Mapping").editable = true;
  Caption("Units", units);
  OfferAll({"Heads", "HeadUnit"}, request.target->heads_from_vertices);
  Forget();
}

void FeatureImportForm::CellEdited(std::string_view name, std::size_t row, std::size_t column,
                                   std::string_view text) {
  if (name != "Mapping" || column == kProperty) return;
  State("Mapping").table->Change(row, column, std::string(Trim(text)));
  Forget();
}

void FeatureImportForm::Changed(std::string_view name) {
  if (name == "File") return Open();
  if (name == "Layer") return ShowLayer();
  if (name == "Target") return ShowMapping();
  Forget();
}

void FeatureImportForm::Forget() {
  plan_.reset();
  Caption("Counts", "");
}

void FeatureImportForm::OtherPressed(std::string_view name) {
  if (name == "Browse") Browse();
  if (name == "Check") Check();
}

FeatureImport FeatureImportForm::Request() const {
  FeatureImport request;
  request.file = source_->path();
  request.layer = Layer()->name;
  request.target = &Target();
  const Table& table = *State("Mapping").table;
  for (std::size_t row = 0; row < table.Rows(); ++row) {
    const TargetProperty& property = request.target->properties[table.Source(row)];
    request.properties[std::string(property.name)] = {
        table.At(row, kField).AsText(), table.At(row, kStandard).AsText(), table.At(row, kUnit).AsText()};
  }
  request.crs = Trim(Text("CRS"));
  request.tolerance = Form::Number("Tolerance");
  request.most_vertices = static_cast<std::size_t>(Form::Number("MostVertices"));
  request.heads_from_vertices = Checked("Heads") && request.target->heads_from_vertices;
  request.vertex_unit = Text("HeadUnit");
  if (Checked("Within")) request.within = ExtentsOf(ormel().window.SolveWindow);
  return request;
}

bool FeatureImportForm::Check() {
  Forget();
  if (Layer() == nullptr)
    return Refuse("File", kTitle, "Please choose a file that holds a layer of features.");
  try {
    const PleaseWait wait(ormel(), "Reading features...");
    ImportPlan plan = PlanImport(ormel(), Request());
    if (plan.cancelled) return false;
    Caption("Counts", plan.Text());
    plan_ = std::move(plan);
    return true;
  } catch (const GeoError& error) {
    return Refuse("CRS", kTitle, error.what());
  } catch (const FeatureImportError& error) {
    return Refuse("Mapping", kTitle, error.what());
  }
}

bool FeatureImportForm::Ok() {
  if (!plan_) {
    if (!Check()) return false;
    // What is left out is seen before anything is written.
    if (!plan_->left_out.empty() && !plan_->elements.empty() &&
        !AskOkCancel(ormel(), kTitle, plan_->Text(), Icon::kQuestion))
      return false;
  }
  if (plan_->elements.empty()) return Refuse("Target", kTitle, plan_->Text());
  return true;
}

void ToolsImportFeatures(Ormel& ormel) {
  RunEdit(ormel, "ToolsImportFeatures", [&] {
    FeatureImportForm form(ormel);
    ormel.ui().ShowForm(form);
    if (form.Result == FeatureImportForm::kOk) CarryOut(ormel, form.Plan());
  });
}

}  // namespace ormel
