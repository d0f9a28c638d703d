// "Capture Zone Table": the outlined zones with what their checks said.
#pragma once

#include <memory>
#include <string>

#include "core/form.h"

namespace ormel {

class Database;

/// One row a stored zone: well, years, area, where the water came from, errors, and whether its outline has
/// been changed by hand since.  Hand-drawn polygons have their area only.
std::shared_ptr<Table> ReadZoneTable(Database& db, bool basemap_meters);

class ZoneTable final : public Form {
 public:
  explicit ZoneTable(Ormel& ormel);
  std::string Title() const override { return "Capture Zone Table"; }
  std::string_view Name() const override { return "ZoneTable"; }
  std::string_view HelpTopic() const override { return "OutlineCaptureZone"; }
  std::span<const ControlSpec> Controls() const override;

 protected:
  void Pressed(std::string_view name) override;

 private:
  std::shared_ptr<Table> table_;
};

/// `OUTLINECZ(1)`.
void ViewZoneTable(Ormel& ormel);

}  // namespace ormel
