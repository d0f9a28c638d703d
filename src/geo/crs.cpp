#include "geo/crs.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <ogr_spatialref.h>
#include <algorithm>
#include <cmath>
#include <limits>

#include "geo/crs_impl.h"
#include "geo/gdal_room.h"
#include "geo/geo_error.h"
#include "text/strings.h"

namespace ormel {
namespace {

using geo_detail::Messages;

constexpr std::size_t kLongestText = 64 * 1024;

bool AllDigits(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string Exported(OGRSpatialReferenceH handle, const char* format) {
  const std::string option = std::string("FORMAT=") + format;
  const char* options[] = {option.c_str(), "MULTILINE=NO", nullptr};
  const Messages quiet;
  char* text = nullptr;
  const bool done = OSRExportToWktEx(handle, &text, options) == OGRERR_NONE && text != nullptr;
  std::string result = done ? text : "";
  CPLFree(text);
  return result;
}

// The code that the text itself states, or the one under which an equal system is known.
std::string CodeOf(OGRSpatialReferenceH handle) {
  const Messages quiet;
  const char* authority = OSRGetAuthorityName(handle, nullptr);
  const char* code = OSRGetAuthorityCode(handle, nullptr);
  if (authority == nullptr || code == nullptr) {
    OGRSpatialReferenceH copy = OSRClone(handle);
    std::string found;
    if (OSRAutoIdentifyEPSG(copy) == OGRERR_NONE && OSRGetAuthorityCode(copy, nullptr) != nullptr) {
      const std::string by = OSRGetAuthorityName(copy, nullptr);
      found = by + ":" + OSRGetAuthorityCode(copy, nullptr);
    }
    OSRRelease(copy);
    return found;
  }
  return std::string(authority) + ":" + code;
}

constexpr double kBadPlace = std::numeric_limits<double>::quiet_NaN();

}  // namespace

Crs Crs::Parse(const std::string& text) {
  geo_detail::Start();
  std::string wanted(Trim(text));
  if (wanted.empty()) throw GeoError("No coordinate reference system is given.");
  if (wanted.size() > kLongestText)
    throw GeoError("The text of the coordinate reference system is too long.");
  if (AllDigits(wanted)) wanted.insert(0, "EPSG:");
  const Messages messages;
  auto impl = std::make_shared<Impl>();
  const char* options[] = {"ALLOW_NETWORK_ACCESS=NO", "ALLOW_FILE_ACCESS=NO", nullptr};
  const auto refuse = [&](const std::string& why) {
    throw GeoError("\"" + wanted.substr(0, 60) +
                   "\" is no coordinate reference system that can be used: " + why);
  };
  if (OGRSpatialReference::FromHandle(impl->handle)->SetFromUserInput(wanted.c_str(), options) !=
      OGRERR_NONE) {
    refuse(messages.Reason("no such code or text is known") + ".");
  }
  Crs crs;
  crs.projected_ = OSRIsProjected(impl->handle) != 0 || OSRIsLocal(impl->handle) != 0;
  if (!crs.projected_ && OSRIsGeographic(impl->handle) == 0) refuse("it has no map coordinates.");
  const char* name = OSRGetName(impl->handle);
  crs.name_ = name != nullptr ? name : "";
  crs.code_ = CodeOf(impl->handle);
  char* unit = nullptr;
  if (crs.projected_) {
    crs.metres_per_unit_ = OSRGetLinearUnits(impl->handle, &unit);
    if (!(crs.metres_per_unit_ > 0) || !std::isfinite(crs.metres_per_unit_))
      refuse("its unit of length is unknown.");
  } else {
    OSRGetAngularUnits(impl->handle, &unit);
  }
  crs.unit_name_ = unit != nullptr ? unit : "";
  crs.impl_ = std::move(impl);
  return crs;
}

std::string Crs::Wkt() const {
  return Exported(impl_->handle, "WKT2_2018");
}

std::string Crs::PrjWkt() const {
  return Exported(impl_->handle, "WKT1_ESRI");
}

bool Crs::Same(const Crs& other) const {
  const Messages quiet;
  return OSRIsSame(impl_->handle, other.impl_->handle) != 0;
}

Crs LongitudeLatitude() {
  return Crs::Parse("EPSG:4326");
}

const std::vector<CrsEntry>& CrsList() {
  static const std::vector<CrsEntry> list = [] {
    geo_detail::Start();
    const Messages quiet;
    std::vector<CrsEntry> entries;
    for (const char* authority : {"EPSG", "ESRI"}) {
      int count = 0;
      OSRCRSInfo** infos = OSRGetCRSInfoListFromDatabase(authority, nullptr, &count);
      for (int i = 0; i < count; ++i) {
        const OSRCRSInfo& info = *infos[i];
        const bool projected = info.eType == OSR_CRS_TYPE_PROJECTED;
        if (info.bDeprecated != 0 || (!projected && info.eType != OSR_CRS_TYPE_GEOGRAPHIC_2D)) continue;
        entries.push_back({std::string(info.pszAuthName) + ":" + info.pszCode, info.pszName,
                           info.pszAreaName != nullptr ? info.pszAreaName : "", projected});
      }
      OSRDestroyCRSInfoList(infos);
    }
    std::sort(entries.begin(), entries.end(),
              [](const CrsEntry& a, const CrsEntry& b) { return CompareNoCase(a.name, b.name) < 0; });
    return entries;
  }();
  return list;
}

std::vector<CrsEntry> SearchCrs(const std::string& words, std::size_t most, bool projected) {
  const std::vector<std::string> wanted = ParseString(FoldCase(words), ' ');
  std::vector<CrsEntry> found;
  for (const CrsEntry& entry : CrsList()) {
    if (found.size() >= most) break;
    if (projected && !entry.projected) continue;
    const std::string text = FoldCase(entry.code + " " + entry.name + " " + entry.area);
    const bool fits = std::all_of(wanted.begin(), wanted.end(), [&](const std::string& word) {
      return text.find(word) != std::string::npos;
    });
    if (fits) found.push_back(entry);
  }
  return found;
}

struct CrsTransform::Impl {
  OGRCoordinateTransformationH forward = nullptr, backward = nullptr;
  Impl() = default;
  ~Impl() {
    OCTDestroyCoordinateTransformation(forward);
    OCTDestroyCoordinateTransformation(backward);
  }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  static std::optional<Place> Go(OGRCoordinateTransformationH way, double x, double y) {
    if (!std::isfinite(x) || !std::isfinite(y)) return std::nullopt;
    const Messages quiet;
    int good = 0;
    if (OCTTransformEx(way, 1, &x, &y, nullptr, &good) == 0 || good == 0) return std::nullopt;
    if (!std::isfinite(x) || !std::isfinite(y)) return std::nullopt;
    return Place{x, y};
  }
};

CrsTransform::CrsTransform(const Crs& from, const Crs& to) : impl_(std::make_unique<Impl>()) {
  const Messages messages;
  impl_->forward = OCTNewCoordinateTransformation(from.impl().handle, to.impl().handle);
  if (impl_->forward != nullptr)
    impl_->backward = OCTNewCoordinateTransformation(to.impl().handle, from.impl().handle);
  if (impl_->backward == nullptr) {
    throw GeoError("No way is known from \"" + from.name() + "\" to \"" + to.name() +
                   "\": " + messages.Reason("the systems do not meet") + ".");
  }
}
CrsTransform::~CrsTransform() = default;
CrsTransform::CrsTransform(CrsTransform&&) noexcept = default;
CrsTransform& CrsTransform::operator=(CrsTransform&&) noexcept = default;

std::optional<Place> CrsTransform::Forward(double x, double y) const {
  return Impl::Go(impl_->forward, x, y);
}
std::optional<Place> CrsTransform::Backward(double x, double y) const {
  return Impl::Go(impl_->backward, x, y);
}

std::size_t CrsTransform::Forward(std::vector<Place>& places) const {
  const Messages quiet;
  std::vector<double> x(places.size()), y(places.size());
  std::vector<int> good(places.size());
  for (std::size_t i = 0; i < places.size(); ++i) {
    x[i] = places[i].x;
    y[i] = places[i].y;
  }
  if (places.empty()) return 0;
  OCTTransformEx(impl_->forward, static_cast<int>(places.size()), x.data(), y.data(), nullptr, good.data());
  std::size_t lost = 0;
  for (std::size_t i = 0; i < places.size(); ++i) {
    const bool fine = good[i] != 0 && std::isfinite(x[i]) && std::isfinite(y[i]);
    places[i] = fine ? Place{x[i], y[i]} : Place{kBadPlace, kBadPlace};
    lost += fine ? 0 : 1;
  }
  return lost;
}

}  // namespace ormel
