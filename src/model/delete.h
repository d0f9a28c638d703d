// Deleting the selected element or one of its vertices, and deleting in bulk.
#pragma once

#include <span>
#include <string>

#include "core/form.h"
#include "core/types.h"

namespace ormel {

enum class DeleteChoice : int { kWhole = 1, kVertex = 2, kNeither = 0 };

/// Whole element, vertex, or neither.
class LSConfirm final : public Form {
 public:
  LSConfirm(Ormel& ormel, const std::string& message);
  std::string Title() const override { return "Confirm"; }
  std::span<const ControlSpec> Controls() const override;
  std::string_view Name() const override { return "LSConfirm"; }
  DeleteChoice Choice() const { return static_cast<DeleteChoice>(Result); }

 protected:
  void Pressed(std::string_view name) override;
};

/// Asks, then deletes the selected element or its selected vertex.
void ElemDeleteElements(Ormel& ormel);

/// Items of the menu "Delete All...".
enum class DeleteAllItem : int {
  kHydrographyLabels = 1,
  kTestPoints = 2,
  kParticles = 3,
  kTextLabels = 4,
  kDischargeWells = 5,
  kHeadWells = 6,
};
void DELETEALL(Ormel& ormel, int index);

/// Items of its submenu of simple protection areas: 0 all, 1 arbitrary radius, 2 calculated, 3 multiple
/// wells. Image wells, boundary points and run files of the areas go with them.
void DeleteWHPA(Ormel& ormel, int index);
/// Which protection areas there are, as the menus show it.
void ReadWhpaState(Ormel& ormel);

/// Deletes a vertex of a string or domain and numbers the rest anew.  Without a question.
void DeletePolygonVertex(Ormel& ormel, Pid pid, Vid vid);

}  // namespace ormel
