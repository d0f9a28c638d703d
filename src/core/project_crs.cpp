#include "core/project_crs.h"

#include <cmath>
#include <memory>

#include "core/ormel.h"
#include "geo/geo_error.h"
#include "store/database.h"
#include "store/schema.h"
#include "text/masks.h"

namespace ormel {
namespace {

constexpr std::string_view kKept = "ProjectCrs";

struct Kept {
  std::optional<Crs> crs;
  std::optional<CrsTransform> globe;
};

const Kept* KeptOf(const Ormel& ormel) {
  const auto found = ormel.form_memory.find(kKept);
  if (found == ormel.form_memory.end()) return nullptr;
  const auto* kept = std::any_cast<std::shared_ptr<Kept>>(&found->second);
  return kept != nullptr ? kept->get() : nullptr;
}

}  // namespace

std::string StoredCrs(const Ormel& ormel) {
  if (!ormel.db().HasField("Project", "CRS")) return {};
  return ormel.db().Scalar("select CRS from Project").AsText();
}

void StoreCrs(Ormel& ormel, const std::string& text) {
  if (text == StoredCrs(ormel)) return;
  schema::EnsureField(ormel.db(), "Project", "CRS");
  ormel.db().Execute("update Project set CRS=?", {text});
}

void ReadProjectCrs(Ormel& ormel) {
  auto kept = std::make_shared<Kept>();
  const std::string text = StoredCrs(ormel);
  try {
    if (!text.empty()) {
      kept->crs = Crs::Parse(text);
      kept->globe.emplace(*kept->crs, LongitudeLatitude());
    }
  } catch (const GeoError&) {
    // The project's settings show the text and say that it is not known.
  }
  ormel.form_memory[std::string(kKept)] = kept;
}

std::optional<Crs> ProjectCrs(const Ormel& ormel) {
  const Kept* kept = KeptOf(ormel);
  return kept != nullptr ? kept->crs : std::nullopt;
}

std::string CrsFault(const Crs& crs, bool metres) {
  if (!crs.projected())
    return "\"" + crs.name() + "\" has longitudes and latitudes.\nThe map needs a system in a plane.";
  constexpr double kFoot = 0.3048, kAlike = 1e-5;
  const double unit = metres ? 1.0 : kFoot;
  if (std::abs(crs.metres_per_unit() / unit - 1.0) < kAlike) return {};
  return "\"" + crs.name() + "\" counts in the unit " + crs.unit_name() + ", the map in " +
         (metres ? "meters" : "feet") + ".\nPlease choose a system in that unit, or another unit of the map.";
}

GlobeText GlobeTextOf(const Ormel& ormel, MapPoint at) {
  const Kept* kept = KeptOf(ormel);
  if (kept == nullptr || !kept->globe) return {};
  const std::optional<Place> place = kept->globe->Forward(at.x, at.y);
  if (!place) return {};
  static const NumberMask mask("0.00000");  // a metre
  return {"  " + mask.Format(std::abs(place->x)) + "\u00b0 " + (place->x < 0 ? "W" : "E"),
          "  " + mask.Format(std::abs(place->y)) + "\u00b0 " + (place->y < 0 ? "S" : "N")};
}

}  // namespace ormel
