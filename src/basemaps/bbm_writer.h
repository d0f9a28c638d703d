// Writes BBM map files, for the converters.
#pragma once

#include <string>
#include <vector>

#include "basemaps/bbm_format.h"

namespace ormel {

/// Points, lines and areas as they go into a file.  Their numbers are given by their order.
struct BbmContent {
  BbmHeader header;  ///< counts and bounding box follow from the objects
  std::vector<BbmObject> points, lines, areas;
};

/// The bytes of a file; throws BbmError when extra values are not the same for each point of a line, or when
/// the header is that of an operation stream.
std::string BbmBytesOf(const BbmContent& content);

/// A stream of drawing operations.
class BbmOperations {
 public:
  void Begin(BbmObject::At at);
  void Add(BbmObject::At at);
  void Width(std::int32_t value);
  void Color(std::int32_t number);
  void Polygon(const std::vector<BbmObject::At>& points);
  /// Header and stream with its end; the bounding box is that of the points.
  std::string Bytes(BbmHeader header) const;

 private:
  void Put(std::initializer_list<std::int32_t> numbers, BbmObject::At at);
  void Widen(BbmObject::At at);
  std::vector<std::int32_t> numbers_;
  BbmObject::At low_{}, high_{};
  bool any_ = false;
};

/// Under its name only when all of it is written.  Throws FileError.
void WriteBbm(const std::string& path, const std::string& bytes);

}  // namespace ormel
