// A shapefile (.shp with its index .shx), read and written record by record.
//
// The layouts are those of the published format.  Beyond it: a null record is written with two bytes of
// content where it declares four, and a multipoint asks for a file of points; both are read back.  Exports
// write neither.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "exchange/file_name.h"
#include "exchange/shapes.h"

namespace ormel {

class CShapeFile {
 public:
  enum Status { OPENIT = 0, CREATEIT = 1 };

  CShapeFile();
  ~CShapeFile();
  CShapeFile(const CShapeFile&) = delete;
  CShapeFile& operator=(const CShapeFile&) = delete;

  /// Opens a pair or makes a new one, which replaces what stands there.  Throws ShapeError; FileError when
  /// the disk refuses.
  void SetFileSpec(const std::string& fileName, Status status, std::optional<ShapeType> shapeType = {});
  /// Adds a shape of the file's type, or a null one.  A refused shape leaves the file as it was.
  void Add(const IShape& shape);
  /// The record with this number, from 1.  Throws ShapeError.
  std::unique_ptr<IShape> Item(std::int32_t index);
  /// Writes what has been added with the headers that tell it; also at the end of the object, where a failure
  /// is not told.
  void Flush();

  double Left() const { return extent_.Left(); }
  double Right() const { return extent_.Right(); }
  double Top() const { return extent_.Top(); }
  double Bottom() const { return extent_.Bottom(); }
  std::int32_t Count() const { return count_; }
  ShapeType FileType() const { return type_; }

 private:
  struct Stream;
  void Create();
  void Open();
  void OpenHeader(Stream& stream, const char* name);
  void PutMainHeaders();
  void PutRecord(const std::string& content, const IShape& shape);
  void PutNull();
  void PutIndex(std::size_t content_words);
  std::size_t FindOffset(std::int32_t index);
  std::string ReadContent(std::int32_t index);

  CFileName name_;
  std::unique_ptr<Stream> shp_, shx_;
  ShapeType type_ = ShapeType::kNull;
  CRect extent_;
  bool has_extent_ = false, dirty_ = false;
  std::int32_t count_ = 0;
};

}  // namespace ormel
