// Reads one BBM map file: the header and an index of its records at once, the records as they are needed.
//
// Counts of a header are never taken for memory or for loops: what counts are the records that are there, and
// a record whose data would reach beyond the end of the file ends the reading with an error.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "basemaps/bbm_format.h"

namespace ormel {

/// A file that is no BBM map, or a damaged one.  The message is made for a box of that title.
class BbmError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  static constexpr const char* kTitle = "BBM file error!";
  static constexpr const char* kStreamTitle = "Error encountered in OpenDWG BBM file";
};

/// Place of a record in the file.
struct BbmRecord {
  std::int32_t number = 0;
  std::uint64_t position = 0;  ///< of the data [bytes]
  std::int32_t extra = 0, attributes = 0,
               count = 0;                       ///< `count`: points of a line, line references of an area
  std::int32_t x1 = 0, y1 = 0, x2 = 0, y2 = 0;  ///< zero for areas
};

/// Bytes of a file through a window, for records that lie one behind the other.
class BbmBytes;

class BBMap {
 public:
  BBMap();
  ~BBMap();
  BBMap(BBMap&&) noexcept;
  BBMap& operator=(BBMap&&) noexcept;

  /// Reads header and index; the file is closed again.  A file that cannot be opened leaves the map
  /// unconnected without a word; one that is damaged does so with a BbmError.
  void Connect(const std::string& path);
  bool connected() const { return connected_; }

  const std::string& Fname() const { return path_; }
  const BbmHeader& header() const { return header_; }
  /// The bounding box [map units].  Throws BbmError when the map is not connected.
  Extents Bounds() const;
  double Left() const { return Bounds().x_min; }
  double Right() const { return Bounds().x_max; }
  double Bottom() const { return Bounds().y_min; }
  double Top() const { return Bounds().y_max; }

  /// By their number.
  std::span<const BbmRecord> points() const { return points_; }
  std::span<const BbmRecord> lines() const { return lines_; }
  std::span<const BbmRecord> areas() const { return areas_; }
  /// Null when the file has no line of this number.
  const BbmRecord* FindLine(std::int32_t number) const;

  /// Opens the file for reading objects.  Throws BbmError when it is gone or has changed its length.
  class Reader;

  /// The lines of the box about the file: "Filename:         " and so on.
  std::string InfoText() const;

  /// [map units]
  MapPoint Place(BbmObject::At at) const;

 private:
  void ReadHeader(BbmBytes& bytes);
  void ReadIndex(BbmBytes& bytes);

  std::string path_;
  bool connected_ = false;
  BbmHeader header_;
  std::vector<BbmRecord> points_, lines_, areas_;
  std::uint64_t length_ = 0;
};

class BBMap::Reader {
 public:
  explicit Reader(const BBMap& map);
  ~Reader();
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  void ReadPoint(const BbmRecord& record, BbmObject& object);
  void ReadLine(const BbmRecord& record, BbmObject& object);
  /// The references; the rings are made of the lines by Rings().
  void ReadArea(const BbmRecord& record, BbmObject& object);
  /// The rings of an area [map units].  References to lines that the file has not are passed over.
  std::vector<std::vector<MapPoint>> Rings(const BbmObject& area);

  /// Walks an operation stream.  Throws BbmError, titled kStreamTitle, when it is cut or has an unknown code.
  struct Steps {
    std::function<void(std::span<const MapPoint>, int color, double width)> line;
    std::function<void(std::span<const MapPoint>, int color)> polygon;
  };
  void Walk(const Steps& steps);

 private:
  void ReadAttributes(std::int32_t count, BbmObject& object);

  const BBMap& map_;
  std::unique_ptr<BbmBytes> bytes_;
};

}  // namespace ormel
