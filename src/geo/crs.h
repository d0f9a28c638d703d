// Coordinate reference systems and the way between them.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ormel {

/// A coordinate reference system in a plane or on the globe.  Coordinates are always given east (longitude)
/// first, then north (latitude), whatever order the authority states; longitudes and latitudes in degrees.
class Crs {
 public:
  /// Of a code ("EPSG:28992", "28992", "ESRI:102003"), a WKT text of any version, or a "+proj=" text.  Throws
  /// GeoError, its reason fit for a box, for anything else and for systems that have neither a plane nor a
  /// globe.
  static Crs Parse(const std::string& text);

  const std::string& name() const { return name_; }
  /// "EPSG:28992"; "" when no authority knows it.
  const std::string& code() const { return code_; }
  /// Code where there is one, else WKT: what Parse takes back.
  std::string Text() const { return code_.empty() ? Wkt() : code_; }
  /// WKT of ISO 19162.
  std::string Wkt() const;
  /// WKT as a `.prj` file beside a shapefile takes it.
  std::string PrjWkt() const;
  bool projected() const { return projected_; }
  const std::string& unit_name() const { return unit_name_; }
  /// Metres per unit of the coordinates; of a system on the globe 0, since degrees have no length.
  double metres_per_unit() const { return metres_per_unit_; }
  bool Same(const Crs& other) const;

  struct Impl;
  const Impl& impl() const { return *impl_; }

 private:
  std::shared_ptr<const Impl> impl_;
  std::string name_, code_, unit_name_;
  bool projected_ = false;
  double metres_per_unit_ = 0;
};

/// Longitude and latitude on WGS 84.
Crs LongitudeLatitude();

struct CrsEntry {
  std::string code;  ///< "EPSG:28992"
  std::string name;
  std::string area;  ///< where it is used
  bool projected = false;
};

/// The systems in use, projected ones and those of longitude and latitude, by name.
const std::vector<CrsEntry>& CrsList();
/// Those whose code, name or area hold every word of `words`, in any case; at most `most`.  `projected`: only
/// those in a plane.
std::vector<CrsEntry> SearchCrs(const std::string& words, std::size_t most = 500, bool projected = false);

struct Place {
  double x = 0, y = 0;
};

/// The way from one system to another and back.  An object belongs to one thread at a time.
class CrsTransform {
 public:
  /// Throws GeoError when no way is known.
  CrsTransform(const Crs& from, const Crs& to);
  ~CrsTransform();
  CrsTransform(CrsTransform&&) noexcept;
  CrsTransform& operator=(CrsTransform&&) noexcept;
  /// Nothing where the systems are not defined.
  std::optional<Place> Forward(double x, double y) const;
  std::optional<Place> Backward(double x, double y) const;
  /// Many at once, in place; places outside become NaN.  Returns how many did.
  std::size_t Forward(std::vector<Place>& places) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace ormel
