#include "model/model_values.h"

#include <array>
#include <string_view>
#include <variant>

#include "core/ormel.h"
#include "store/database.h"
#include "store/recordset.h"
#include "text/numbers.h"

namespace ormel {
namespace {

using Member =
    std::variant<double ModelValues::*, int ModelValues::*, bool ModelValues::*, std::string ModelValues::*>;
struct ModelField {
  std::string_view name;
  Member member;
};

// AQThickness, a number in a text field, is not in the table.
const std::array kFields{ModelField{"AQBase", &ModelValues::AQBase},
                         ModelField{"AQHydCond", &ModelValues::AQHydCond},
                         ModelField{"AQRecharge", &ModelValues::AQRecharge},
                         ModelField{"AQPorosity", &ModelValues::AQPorosity},
                         ModelField{"BasemapMeters", &ModelValues::BasemapMeters},
                         ModelField{"ComputeMeters", &ModelValues::ComputeMeters},
                         ModelField{"CONTOURShow", &ModelValues::CONTOURShow},
                         ModelField{"CONTOURMinimum", &ModelValues::CONTOURMinimum},
                         ModelField{"CONTOURMaximum", &ModelValues::CONTOURMaximum},
                         ModelField{"CONTOURInterval", &ModelValues::CONTOURInterval},
                         ModelField{"CONTOURLevel", &ModelValues::CONTOURLevel},
                         ModelField{"TRACECompute", &ModelValues::TRACECompute},
                         ModelField{"TRACEStep", &ModelValues::TRACEStep},
                         ModelField{"TRACEMaxTime", &ModelValues::TRACEMaxTime},
                         ModelField{"UNIFLOWRefX", &ModelValues::UNIFLOWRefX},
                         ModelField{"UNIFLOWRefY", &ModelValues::UNIFLOWRefY},
                         ModelField{"UNIFLOWRefHead", &ModelValues::UNIFLOWRefHead},
                         ModelField{"UNIFLOWGradient", &ModelValues::UNIFLOWGradient},
                         ModelField{"UNIFLOWOrientation", &ModelValues::UNIFLOWOrientation},
                         ModelField{"UNIFLOWCompute", &ModelValues::UNIFLOWCompute},
                         ModelField{"MARGINLeft", &ModelValues::MARGINLeft},
                         ModelField{"MARGINRight", &ModelValues::MARGINRight},
                         ModelField{"MARGINTop", &ModelValues::MARGINTop},
                         ModelField{"MARGINBottom", &ModelValues::MARGINBottom},
                         ModelField{"MARGINDrawBox", &ModelValues::MARGINDrawBox},
                         ModelField{"EDITGRIDSpacing", &ModelValues::EDITGRIDSpacing},
                         ModelField{"EDITGRIDShow", &ModelValues::EDITGRIDShow},
                         ModelField{"EDITGRIDSnap", &ModelValues::EDITGRIDSnap},
                         ModelField{"SOLVERIterations", &ModelValues::SOLVERIterations},
                         ModelField{"SOLVERX0", &ModelValues::SOLVERX0},
                         ModelField{"SOLVERY0", &ModelValues::SOLVERY0},
                         ModelField{"ViewErrorLog", &ModelValues::ViewErrorLog},
                         ModelField{"ViewMessageLog", &ModelValues::ViewMessageLog},
                         ModelField{"DefaultFont", &ModelValues::DefaultFont},
                         ModelField{"DefaultFontSize", &ModelValues::DefaultFontSize},
                         ModelField{"DefaultFontBold", &ModelValues::DefaultFontBold},
                         ModelField{"DefaultFontItalic", &ModelValues::DefaultFontItalic}};

Recordset OpenModel(Ormel& ormel) {
  Recordset model = ormel.db().OpenRecordset("select * from Model");
  if (!model.HasRow())
    throw StoreError(StoreErrorCode::kDamaged,
                     ormel.project.DBName + ": the table Model has no row.  Use a copy of the project.",
                     "Model");
  return model;
}

ModelValues Read(const Recordset& model) {
  ModelValues values;
  for (const ModelField& field : kFields) {
    std::visit(
        [&](auto member) {
          using T = std::remove_reference_t<decltype(values.*member)>;
          values.*member = model.Get<T>(field.name);
        },
        field.member);
  }
  values.AQThickness = Val(model.Get<std::string>("AQThickness"));
  return values;
}

}  // namespace

ModelValues ReadModel(Ormel& ormel) {
  const Recordset model = OpenModel(ormel);
  return Read(model);
}

void WriteModel(Ormel& ormel, const ModelValues& values) {
  Recordset model = OpenModel(ormel);
  const ModelValues stored = Read(model);
  model.Edit();
  for (const ModelField& field : kFields) {
    std::visit(
        [&](auto member) {
          if (values.*member != stored.*member) model.Set(field.name, values.*member);
        },
        field.member);
  }
  if (values.AQThickness != stored.AQThickness) model["AQThickness"] = NumberText(values.AQThickness);
  model.Update();
}

}  // namespace ormel
