#include "basemaps/bbm_file.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sstream>

#include "text/files.h"
#include "text/strings.h"

namespace ormel {

/// Bytes of a file through a window, for records that lie one behind the other.
class BbmBytes {
 public:
  explicit BbmBytes(const std::string& path) : path_(path), file_(std::fopen(path.c_str(), "rb")) {
    if (file_ == nullptr || std::fseek(file_, 0, SEEK_END) != 0) return;
    const long end = std::ftell(file_);
    length_ = end > 0 ? static_cast<std::uint64_t>(end) : 0;
  }
  ~BbmBytes() {
    if (file_ != nullptr) std::fclose(file_);
  }
  BbmBytes(const BbmBytes&) = delete;
  BbmBytes& operator=(const BbmBytes&) = delete;

  bool open() const { return file_ != nullptr; }
  std::uint64_t length() const { return length_; }
  std::uint64_t position() const { return position_; }
  std::uint64_t left() const { return length_ - position_; }
  void Seek(std::uint64_t position) { position_ = std::min(position, length_); }
  /// False when that would lead beyond the end.
  bool Skip(std::uint64_t count) {
    if (count > left()) return false;
    position_ += count;
    return true;
  }
  std::int32_t Integer() {
    const unsigned char* at = Take(4);
    return static_cast<std::int32_t>(
        static_cast<std::uint32_t>(at[0]) | static_cast<std::uint32_t>(at[1]) << 8U |
        static_cast<std::uint32_t>(at[2]) << 16U | static_cast<std::uint32_t>(at[3]) << 24U);
  }
  std::string Text(std::size_t size) {
    const unsigned char* at = Take(size);
    std::string text(reinterpret_cast<const char*>(at), size);
    if (const std::size_t end = text.find('\0'); end != std::string::npos) text.resize(end);
    return std::string(Trim(text));
  }
  [[noreturn]] void Cut() const {
    throw BbmError("The file " + path_ + " ends in the middle of a record at byte " +
                   std::to_string(length_) + ".\nIt may have been cut in copying; copy or convert it again.");
  }

 private:
  static constexpr std::size_t kWindow = std::size_t{1} << 18U;

  /// `count` bytes, at most kBbmTextSize of them, which stay until the next call.
  const unsigned char* Take(std::size_t count) {
    if (count > left()) Cut();
    if (position_ < start_ || position_ + count > start_ + filled_) Fill();
    const unsigned char* at = window_.data() + (position_ - start_);
    if (position_ + count > start_ + filled_) Cut();  // the file has become shorter
    position_ += count;
    return at;
  }
  void Fill() {
    if (window_.empty()) window_.resize(kWindow);
    start_ = position_;
    filled_ = 0;
    if (std::fseek(file_, static_cast<long>(position_), SEEK_SET) == 0)
      filled_ = std::fread(window_.data(), 1, window_.size(), file_);
  }

  std::string path_;
  std::FILE* file_;
  std::uint64_t length_ = 0, position_ = 0, start_ = 0;
  std::size_t filled_ = 0;
  std::vector<unsigned char> window_;
};

namespace {

[[noreturn]] void Damaged(const std::string& path, const std::string& reason) {
  throw BbmError("The file " + path + " is damaged: " + reason + ".");
}

/// A record of a later copy takes the slot of an earlier one of the same number.
void SortByNumber(std::vector<BbmRecord>& records) {
  const auto less = [](const BbmRecord& a, const BbmRecord& b) { return a.number < b.number; };
  if (!std::is_sorted(records.begin(), records.end(), less))
    std::stable_sort(records.begin(), records.end(), less);
  const auto same = [](const BbmRecord& a, const BbmRecord& b) { return a.number == b.number; };
  const auto kept = std::unique(records.rbegin(), records.rend(), same);
  records.erase(records.begin(), kept.base());
  records.shrink_to_fit();
}

}  // namespace

BBMap::BBMap() = default;
BBMap::~BBMap() = default;
BBMap::BBMap(BBMap&&) noexcept = default;
BBMap& BBMap::operator=(BBMap&&) noexcept = default;

void BBMap::Connect(const std::string& path) {
  *this = BBMap();
  path_ = path;
  BbmBytes bytes(path);
  if (!bytes.open()) return;
  ReadHeader(bytes);
  if (!header_.operations()) ReadIndex(bytes);
  length_ = bytes.length();
  connected_ = true;
}

void BBMap::ReadHeader(BbmBytes& bytes) {
  if (bytes.left() < 4 || bytes.Text(4) != kBbmMagic)
    throw BbmError("Illegal BBM file header found in file " + path_ + " --.");
  BbmHeader& h = header_;
  for (std::int32_t* part : {&h.major, &h.minor, &h.revision}) *part = bytes.Integer();
  if (h.major > 1 || h.minor > 0 || h.revision >= 3)
    throw BbmError("Illegal BBM version found in file " + path_ + ": " + std::to_string(h.major) + "." +
                   std::to_string(h.minor) + "." + std::to_string(h.revision));
  for (std::string* text : {&h.title, &h.source, &h.description}) *text = bytes.Text(kBbmTextSize);
  h.data_type = bytes.Integer();
  h.projection = bytes.Integer();
  h.multiplier = bytes.Integer();
  if (h.multiplier <= 0) Damaged(path_, "its multiplier is " + std::to_string(h.multiplier));
  std::int32_t unused = 0;
  const std::array counts = h.operations() ? std::array{&h.pixels_x, &h.pixels_y, &unused}
                                           : std::array{&h.points, &h.lines, &h.areas};
  for (std::int32_t* count : counts) *count = bytes.Integer();
  for (std::int32_t* side : {&h.x1, &h.y1, &h.x2, &h.y2}) *side = bytes.Integer();
}

void BBMap::ReadIndex(BbmBytes& bytes) {
  while (bytes.left() > 0) {
    const std::int32_t tag = bytes.Integer();
    if (tag != kBbmPoint && tag != kBbmLine && tag != kBbmArea) break;  // what follows is not ours
    BbmRecord record;
    record.number = bytes.Integer();
    record.extra = bytes.Integer();
    record.attributes = bytes.Integer();
    record.count = tag == kBbmPoint ? 1 : bytes.Integer();
    if (record.number < 1 || record.extra < 0 || record.attributes < 0 || record.count < 0)
      Damaged(path_, "a record at byte " + std::to_string(bytes.position()) + " has a negative count");
    if (tag != kBbmArea)
      for (std::int32_t* side : {&record.x1, &record.y1, &record.x2, &record.y2}) *side = bytes.Integer();
    record.position = bytes.position();
    const std::uint64_t extra = record.extra, count = record.count;
    const std::uint64_t data = tag == kBbmPoint  ? 2 + extra
                               : tag == kBbmLine ? count * (2 + extra)
                                                 : count + extra;
    if (!bytes.Skip(4 * (2 * static_cast<std::uint64_t>(record.attributes) + data))) bytes.Cut();
    (tag == kBbmPoint ? points_ : tag == kBbmLine ? lines_ : areas_).push_back(record);
  }
  for (std::vector<BbmRecord>* records : {&points_, &lines_, &areas_}) SortByNumber(*records);
}

Extents BBMap::Bounds() const {
  if (!connected_) throw BbmError("Cannot access map -- not connected");
  const double scale = header_.multiplier;
  const auto [left, right] = std::minmax(header_.x1, header_.x2);
  const auto [bottom, top] = std::minmax(header_.y1, header_.y2);
  return {left / scale, right / scale, bottom / scale, top / scale};
}

const BbmRecord* BBMap::FindLine(std::int32_t number) const {
  // Files number their lines without gaps, so that the slot is the number less one.
  const auto slot = static_cast<std::size_t>(number) - 1;
  if (number >= 1 && slot < lines_.size() && lines_[slot].number == number) return &lines_[slot];
  const auto at = std::lower_bound(lines_.begin(), lines_.end(), number,
                                   [](const BbmRecord& r, std::int32_t n) { return r.number < n; });
  return at != lines_.end() && at->number == number ? &*at : nullptr;
}

MapPoint BBMap::Place(BbmObject::At at) const {
  const double scale = header_.multiplier;
  return {at.x / scale, at.y / scale};
}

std::string BBMap::InfoText() const {
  const BbmHeader& h = header_;
  std::ostringstream out;
  out << "Filename:         " << path_ << "\nVersion:          " << h.major << '.' << h.minor << '.'
      << h.revision << "\nTitle:            " << h.title << "\nSource:           " << h.source
      << "\nDescription:      " << h.description << "\nData type:        " << h.data_type
      << "\nProjection:       " << h.projection << "\nMultiplier:       " << h.multiplier;
  if (h.operations())
    out << "\nLogical Pixels X: " << h.pixels_x << "\nLogical Pixels Y: " << h.pixels_y;
  else
    out << "\nNumber of Points: " << h.points << "\nNumber of Lines:  " << h.lines
        << "\nNumber of Areas:  " << h.areas;
  out << "\nBounding box\n             X1:  " << h.x1 << "\n             Y1:  " << h.y1
      << "\n             X2:  " << h.x2 << "\n             Y2:  " << h.y2;
  return out.str();
}

BBMap::Reader::Reader(const BBMap& map) : map_(map), bytes_(std::make_unique<BbmBytes>(map.path_)) {
  if (!map.connected_) throw BbmError("Cannot access map -- not connected");
  if (!bytes_->open() || bytes_->length() != map.length_)
    throw BbmError("The file " + map.path_ +
                   " is gone or has changed since it was opened.\nOpen the project again to draw it.");
}

BBMap::Reader::~Reader() = default;

void BBMap::Reader::ReadAttributes(std::int32_t count, BbmObject& object) {
  object.attributes.resize(static_cast<std::size_t>(count));
  for (BbmAttribute& attribute : object.attributes) {
    attribute.major = bytes_->Integer();
    attribute.minor = bytes_->Integer();
  }
}

void BBMap::Reader::ReadPoint(const BbmRecord& record, BbmObject& object) {
  object.number = record.number;
  object.lines.clear();
  bytes_->Seek(record.position);
  const std::int32_t x = bytes_->Integer();
  object.points = {{x, bytes_->Integer()}};
  ReadAttributes(record.attributes, object);
  object.extra.resize(static_cast<std::size_t>(record.extra));
  for (std::int32_t& value : object.extra) value = bytes_->Integer();
}

void BBMap::Reader::ReadLine(const BbmRecord& record, BbmObject& object) {
  object.number = record.number;
  object.lines.clear();
  object.extra.clear();
  bytes_->Seek(record.position);
  ReadAttributes(record.attributes, object);
  object.points.resize(static_cast<std::size_t>(record.count));
  for (BbmObject::At& at : object.points) {
    at.x = bytes_->Integer();
    at.y = bytes_->Integer();
    for (std::int32_t i = 0; i < record.extra; ++i) object.extra.push_back(bytes_->Integer());
  }
}

void BBMap::Reader::ReadArea(const BbmRecord& record, BbmObject& object) {
  object.number = record.number;
  object.points.clear();
  bytes_->Seek(record.position);
  ReadAttributes(record.attributes, object);
  object.lines.resize(static_cast<std::size_t>(record.count));
  for (std::int32_t& line : object.lines) line = bytes_->Integer();
  object.extra.resize(static_cast<std::size_t>(record.extra));
  for (std::int32_t& value : object.extra) value = bytes_->Integer();
}

std::vector<std::vector<MapPoint>> BBMap::Reader::Rings(const BbmObject& area) {
  // A damaged file can name one long line a million times.
  constexpr std::size_t kMostRingPoints = 5'000'000;
  std::vector<std::vector<MapPoint>> rings(1);
  std::size_t total = 0;
  BbmObject line;
  for (const std::int32_t reference : area.lines) {
    if (reference == 0) {
      if (!rings.back().empty()) rings.emplace_back();
      continue;
    }
    if (reference == INT32_MIN) continue;
    const BbmRecord* record = map_.FindLine(reference < 0 ? -reference : reference);
    if (record == nullptr) continue;
    if ((total += static_cast<std::size_t>(record->count)) > kMostRingPoints)
      Damaged(map_.path_, "area " + std::to_string(area.number) + " has more than 5,000,000 points");
    ReadLine(*record, line);
    if (reference < 0) std::reverse(line.points.begin(), line.points.end());
    for (const BbmObject::At& at : line.points) rings.back().push_back(map_.Place(at));
  }
  if (rings.back().empty()) rings.pop_back();
  return rings;
}

void BBMap::Reader::Walk(const Steps& steps) {
  std::vector<MapPoint> points;
  int color = 0;
  double width = 0.0;
  const auto place = [&] {
    const std::int32_t x = bytes_->Integer();
    return map_.Place({x, bytes_->Integer()});
  };
  const auto flush = [&] {
    if (points.size() > 1) steps.line(points, color, width);
    points.clear();
  };
  bytes_->Seek(kBbmHeaderSize);
  for (;;) {
    switch (const std::int32_t operation = bytes_->Integer()) {
      case kBbmBegin:
        flush();
        points.push_back(place());
        break;
      case kBbmAdd:
        points.push_back(place());
        break;
      case kBbmWidth:
        width = bytes_->Integer();
        break;
      case kBbmColor:
        color = bytes_->Integer();
        break;
      case kBbmPolygon: {
        const std::int32_t count = bytes_->Integer();
        if (count < 0 || static_cast<std::uint64_t>(count) * 8 > bytes_->left()) bytes_->Cut();
        std::vector<MapPoint> ring;
        ring.reserve(static_cast<std::size_t>(count));
        for (std::int32_t i = 0; i < count; ++i) ring.push_back(place());
        steps.polygon(ring, color);
        break;
      }
      case kBbmEnd:
        return flush();
      default:
        Damaged(map_.path_, "an unknown operation " + std::to_string(operation) + " at byte " +
                                std::to_string(bytes_->position() - 4));
    }
  }
}

}  // namespace ormel
