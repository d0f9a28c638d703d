#include "exchange/shape_file.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "exchange/bytes.h"
#include "text/files.h"
#include "text/strings.h"

namespace ormel {

/// One of the two files: appended to through a buffer, read anywhere.
struct CShapeFile::Stream {
  explicit Stream(std::string name) : path(std::move(name)) {}
  ~Stream() {
    if (file != nullptr) std::fclose(file);
  }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  [[noreturn]] void Fail(const char* what) const {
    throw FileError(path, std::string(what) + ": " + std::generic_category().message(errno));
  }
  void OpenAs(const char* mode) {
    file = std::fopen(path.c_str(), mode);
    if (file == nullptr) Fail("cannot be opened");
    std::error_code error;
    size = std::filesystem::file_size(path, error);
    if (error) size = 0;
    flushed = size;
  }
  void Append(std::string_view bytes) {
    constexpr std::size_t kFlushAt = 1U << 18U;
    buffer += bytes;
    size += bytes.size();
    if (buffer.size() >= kFlushAt) Flush();
  }
  void Flush() {
    if (buffer.empty()) return;
    PutAt(flushed, buffer);
    flushed += buffer.size();
    buffer.clear();
  }
  void PutAt(std::size_t at, std::string_view bytes) {
    if (std::fseek(file, static_cast<long>(at), SEEK_SET) != 0 ||
        std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size())
      Fail("cannot be written");
  }
  /// As many as there are, at most `count`.
  std::string Read(std::size_t at, std::size_t count) {
    std::string bytes(count, '\0');
    if (std::fseek(file, static_cast<long>(at), SEEK_SET) != 0) Fail("cannot be read");
    bytes.resize(std::fread(bytes.data(), 1, count, file));
    return bytes;
  }

  std::string path;
  std::FILE* file = nullptr;
  std::string buffer;
  std::size_t size = 0, flushed = 0;  ///< with the buffer, and without
  std::size_t told = 0;               ///< length that the header tells
};

namespace {

constexpr std::int32_t kFileCode = 9994, kVersion = 1000;
constexpr std::size_t kHeaderSize = 100, kIndexEntry = 8, kRecordHeader = 8, kPointSize = 16;
/// Lengths are counts of 16-bit words in 31 bits.
constexpr std::size_t kLargestFile = 2UL * 0x7fffffffUL;

std::string MainHeader(std::size_t length, ShapeType type, const CRect& extent, bool has_extent) {
  std::string header;
  AppendBig(header, kFileCode);
  header.append(20, '\0');
  AppendBig(header, static_cast<std::uint32_t>(length / 2));
  AppendLittle(header, kVersion, 4);
  AppendLittle(header, static_cast<std::uint64_t>(type), 4);
  const std::array sides{extent.Left(), extent.Bottom(), extent.Right(), extent.Top()};
  for (const double side : sides) AppendLittle(header, has_extent ? side : 0.0);
  header.append(kHeaderSize - header.size(), '\0');
  return header;
}

void PutType(std::string& content, ShapeType type) {
  AppendLittle(content, static_cast<std::uint64_t>(type), 4);
}

void PutPoint(std::string& content, const CPoint& point) {
  AppendLittle(content, point.X);
  AppendLittle(content, point.Y);
}

void PutBox(std::string& content, const IShape& shape) {
  for (const double side : {shape.Left(), shape.Bottom(), shape.Right(), shape.Top()})
    AppendLittle(content, side);
}

std::string PointContent(const CPoint& point) {
  std::string content;
  PutType(content, ShapeType::kPoint);
  PutPoint(content, point);
  return content;
}

std::string PartedContent(const PartedShape& shape, ShapeType type) {
  std::string content;
  PutType(content, type);
  PutBox(content, shape);
  std::size_t points = 0;
  for (const CPart& part : shape.parts()) points += part.points().size();
  content.reserve(44 + 4 * shape.parts().size() + kPointSize * points);
  AppendLittle(content, shape.parts().size(), 4);
  AppendLittle(content, points, 4);
  std::size_t first = 0;
  for (const CPart& part : shape.parts()) {
    AppendLittle(content, first, 4);
    first += part.points().size();
  }
  for (const CPart& part : shape.parts())
    for (const CPoint& point : part.points()) PutPoint(content, point);
  return content;
}

std::string MultiPointContent(const CMultiPoint& shape) {
  std::string content;
  PutType(content, ShapeType::kMultiPoint);
  PutBox(content, shape);
  AppendLittle(content, shape.points().size(), 4);
  for (const CPoint& point : shape.points()) PutPoint(content, point);
  return content;
}

/// A file type that must be met, and the words for one that is not.
void AskType(ShapeType has, ShapeType wanted, const char* name) {
  if (has != wanted)
    throw ShapeError("CShapeFile::Add",
                     std::string("Cannot add type ") + name + " to a ShapeFile initialized as other type");
}

std::string ContentOf(const IShape& shape, ShapeType file) {
  if (const auto* point = dynamic_cast<const CPoint*>(&shape)) {
    AskType(file, ShapeType::kPoint, "CPoint");
    return PointContent(*point);
  }
  if (const auto* line = dynamic_cast<const CPolyLine*>(&shape)) {
    AskType(file, ShapeType::kPolyLine, "CPolyline");
    return PartedContent(*line, ShapeType::kPolyLine);
  }
  if (const auto* area = dynamic_cast<const CPolygon*>(&shape)) {
    AskType(file, ShapeType::kPolygon, "CPolygon");
    return PartedContent(*area, ShapeType::kPolygon);
  }
  if (const auto* many = dynamic_cast<const CMultiPoint*>(&shape)) {
    AskType(file, ShapeType::kPoint, "CPoint");
    return MultiPointContent(*many);
  }
  throw ShapeError("CShapeFile::Add", "Invalid shape type");
}

[[noreturn]] void Broken(const char* source, std::int32_t index) {
  throw ShapeError(source, "Record " + std::to_string(index) + " is shorter than its counts say");
}

CPoint PointAt(std::string_view content, std::size_t at) {
  return {DoubleAt(content, at), DoubleAt(content, at + 8)};
}

template <class T>
std::unique_ptr<IShape> NullShape() {
  auto shape = std::make_unique<T>();
  shape->MakeNull();
  return shape;
}

/// Counts of a record are held against its bytes before anything is made room for.
template <class T>
std::unique_ptr<IShape> ReadParted(std::string_view content, std::int32_t index, const char* source) {
  if (content.size() < 44) Broken(source, index);
  const auto parts = static_cast<std::uint32_t>(Long(content, 36)),
             points = static_cast<std::uint32_t>(Long(content, 40));
  const std::size_t first_point = 44 + 4UL * parts;
  if (first_point + kPointSize * points > content.size()) Broken(source, index);
  auto shape = std::make_unique<T>();
  for (std::uint32_t i = 0; i < parts; ++i) {
    const auto from = static_cast<std::uint32_t>(Long(content, 44 + 4UL * i));
    const auto to = i + 1 < parts ? static_cast<std::uint32_t>(Long(content, 48 + 4UL * i)) : points;
    if (from > to || to > points) Broken(source, index);
    CPart part;
    for (std::uint32_t p = from; p < to; ++p) part.Add(PointAt(content, first_point + kPointSize * p));
    shape->Add(part);
  }
  return shape;
}

std::unique_ptr<IShape> ReadMultiPoint(std::string_view content, std::int32_t index) {
  constexpr const char* kSource = "C_ShapeFile::ReadPolys";
  if (content.size() < 40) Broken(kSource, index);
  const auto points = static_cast<std::uint32_t>(Long(content, 36));
  if (40 + kPointSize * points > content.size()) Broken(kSource, index);
  auto shape = std::make_unique<CMultiPoint>();
  for (std::uint32_t i = 0; i < points; ++i) shape->Add(PointAt(content, 40 + kPointSize * i));
  return shape;
}

std::unique_ptr<IShape> ReadPoint(std::string_view content, std::int32_t index) {
  if (content.size() < 4 + kPointSize) Broken("CShapeFile::ReadPoint", index);
  return std::make_unique<CPoint>(PointAt(content, 4));
}

struct Reader {
  ShapeType type;
  const char* source;  ///< that a wrong type is told with: one name for two readers, as scripts know it
  std::unique_ptr<IShape> (*null)();
  std::unique_ptr<IShape> (*read)(std::string_view, std::int32_t);
};
constexpr std::array kReaders{
    Reader{ShapeType::kPoint, "CShapeFile::ReadPoint", NullShape<CPoint>, ReadPoint},
    Reader{ShapeType::kPolyLine, "CShapeFile::ReadPolygon", NullShape<CPolyLine>,
           [](std::string_view content, std::int32_t index) {
             return ReadParted<CPolyLine>(content, index, "CShapeFile::ReadPolyLine");
           }},
    Reader{ShapeType::kPolygon, "CShapeFile::ReadPolygon", NullShape<CPolygon>,
           [](std::string_view content, std::int32_t index) {
             return ReadParted<CPolygon>(content, index, "CShapeFile::ReadPolygon");
           }},
    Reader{ShapeType::kMultiPoint, "C_ShapeFile::ReadPolys", NullShape<CMultiPoint>, ReadMultiPoint}};

const Reader& ReaderOf(ShapeType type) {
  for (const Reader& reader : kReaders)
    if (reader.type == type) return reader;
  throw ShapeError("CShapeFile::Item", "Invalid shape type");
}

/// The file of that name, else one that differs from it in capitals only; "" when there is none.
std::string FindFile(const std::string& path) {
  if (FileExists(path)) return path;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(GetPathFromFile(path), error))
    if (EqualNoCase(entry.path().filename().string(), FileTitle(path))) return entry.path().string();
  return {};
}

}  // namespace

CShapeFile::CShapeFile() = default;

CShapeFile::~CShapeFile() {
  try {
    Flush();
  } catch (const std::exception&) {  // whoever wants to know calls Flush
  }
}

void CShapeFile::SetFileSpec(const std::string& fileName, Status status, std::optional<ShapeType> shapeType) {
  constexpr const char* kSource = "C_ShapeFile::SetFileSpec";
  Flush();
  shp_.reset();
  shx_.reset();
  name_.SetFileSpec(fileName);
  if (status == CREATEIT && !shapeType)
    throw ShapeError(kSource, "The ShapeType argument is not optional when argument status is CREATEIT");
  for (auto [stream, extension] : {std::pair{&shp_, "shp"}, std::pair{&shx_, "shx"}}) {
    name_.SetExtension(extension);
    const std::string wanted = name_.GetFileSpec();
    if (status == CREATEIT) {
      std::filesystem::remove(wanted);
      *stream = std::make_unique<Stream>(wanted);
      continue;
    }
    const std::string found = FindFile(wanted);
    if (found.empty()) throw ShapeError(kSource, "The specified file " + wanted + " does not exist.");
    *stream = std::make_unique<Stream>(found);
  }
  count_ = 0;
  extent_ = {};
  has_extent_ = false;
  if (status == CREATEIT) {
    type_ = *shapeType;
    Create();
  } else {
    Open();
  }
}

void CShapeFile::Create() {
  for (Stream* stream : {shp_.get(), shx_.get()}) {
    stream->OpenAs("w+b");
    stream->Append(MainHeader(kHeaderSize, type_, extent_, false));
    stream->told = kHeaderSize;
  }
  dirty_ = true;
  Flush();
}

void CShapeFile::OpenHeader(Stream& stream, const char* name) {
  stream.OpenAs("r+b");
  const std::string header = stream.Read(0, kHeaderSize);
  if (header.size() < kHeaderSize || BigLong(header, 0) != kFileCode)
    throw ShapeError("C_ShapeFile::SetFileSpec",
                     std::string("The ") + name + " file has an invalid shape code in the main header.");
  stream.told = 2UL * static_cast<std::uint32_t>(BigLong(header, 24));
}

void CShapeFile::Open() {
  OpenHeader(*shx_, "shx");
  OpenHeader(*shp_, "shp");
  const std::string header = shp_->Read(0, kHeaderSize);
  type_ = static_cast<ShapeType>(Long(header, 32));
  extent_.Set(DoubleAt(header, 36), DoubleAt(header, 44), DoubleAt(header, 52), DoubleAt(header, 60));
  // The length of the index, which null records do not enter into its header.
  count_ = shx_->size > kHeaderSize ? static_cast<std::int32_t>((shx_->size - kHeaderSize) / kIndexEntry) : 0;
  has_extent_ = count_ > 0;
  dirty_ = false;
}

void CShapeFile::Add(const IShape& shape) {
  if (!shp_) throw ShapeError("CShapeFile::Add", "The specified file does not exist.");
  if (shape.IsNull() && dynamic_cast<const CRect*>(&shape) == nullptr) return PutNull();
  PutRecord(ContentOf(shape, type_), shape);
}

void CShapeFile::PutIndex(std::size_t content_words) {
  if (shp_->size + kRecordHeader + 2 * content_words > kLargestFile)
    throw FileError(shp_->path, "cannot be written: a shapefile takes no more than 4 GB");
  std::string entry;
  AppendBig(entry, static_cast<std::uint32_t>(shp_->size / 2));
  AppendBig(entry, static_cast<std::uint32_t>(content_words));
  shx_->Append(entry);
  std::string header;
  AppendBig(header, static_cast<std::uint32_t>(++count_));
  AppendBig(header, static_cast<std::uint32_t>(content_words));
  shp_->Append(header);
  dirty_ = true;
}

void CShapeFile::PutRecord(const std::string& content, const IShape& shape) {
  PutIndex(content.size() / 2);
  shp_->Append(content);
  shp_->told = shp_->size;
  shx_->told = shx_->size;
  if (!has_extent_) extent_ = {};
  extent_.Include(shape.Left(), shape.Bottom(), shape.Right(), shape.Top());
  has_extent_ = true;
}

void CShapeFile::PutNull() {
  PutIndex(2);
  shp_->Append(std::string(2, '\0'));
}

void CShapeFile::Flush() {
  if (!shp_ || !shx_ || !dirty_) return;
  for (Stream* stream : {shp_.get(), shx_.get()}) stream->Flush();
  PutMainHeaders();
  dirty_ = false;
}

void CShapeFile::PutMainHeaders() {
  for (Stream* stream : {shp_.get(), shx_.get()}) {
    stream->PutAt(0, MainHeader(stream->told, type_, extent_, has_extent_));
    if (std::fflush(stream->file) != 0) stream->Fail("cannot be written");
  }
}

std::size_t CShapeFile::FindOffset(std::int32_t index) {
  const std::string entry =
      index < 1 ? "" : shx_->Read(kHeaderSize + kIndexEntry * (static_cast<std::size_t>(index) - 1), 8);
  const std::size_t offset =
      entry.size() < 8 ? shp_->size : 2UL * static_cast<std::uint32_t>(BigLong(entry, 0));
  if (offset >= shp_->size)
    throw ShapeError("CShapeFile::FindOffset",
                     "The offset read from index file is larger then the mainfile size");
  return offset;
}

/// From the shape type on, as long as the record says and the file holds; a type that is cut short is filled
/// with zeros.
std::string CShapeFile::ReadContent(std::int32_t index) {
  const std::size_t offset = FindOffset(index);
  const std::string header = shp_->Read(offset, kRecordHeader);
  if (header.size() < kRecordHeader || BigLong(header, 0) != index)
    throw ShapeError("CShapeFile::GetRecordHeader", "Index Record does not match main file Record");
  const std::size_t declared = 2UL * static_cast<std::uint32_t>(BigLong(header, 4));
  const std::size_t there = shp_->size - std::min(shp_->size, offset + kRecordHeader);
  std::string content = shp_->Read(offset + kRecordHeader, std::min(declared, there));
  if (content.size() < 4) content.append(4 - content.size(), '\0');
  return content;
}

std::unique_ptr<IShape> CShapeFile::Item(std::int32_t index) {
  if (!shp_) throw ShapeError("CShapeFile::Item", "The specified file does not exist.");
  Flush();
  const Reader& reader = ReaderOf(type_);
  const std::string content = ReadContent(index);
  const std::int32_t type = Long(content, 0);
  if (type == 0) return reader.null();
  if (type != static_cast<std::int32_t>(type_))
    throw ShapeError(reader.source, "A shape type does not match main header type.");
  return reader.read(content, index);
}

}  // namespace ormel
