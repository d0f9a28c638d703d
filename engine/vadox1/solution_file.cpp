#include "vadox1/solution_file.h"

#include <fmt/format.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

namespace vadox1 {
namespace {

constexpr std::string_view kMagic = "ORMELSOL";
constexpr std::uint32_t kByteOrder = 0x01020304;
constexpr std::uint32_t kOtherByteOrder = 0x04030201;
constexpr std::size_t kHeaderSize = 8 + 4 + 4 + 8 + 8;
constexpr const char* kDamaged = "is damaged or was cut short. Solve the model again";

std::uint64_t Checksum(std::string_view bytes) {
  std::uint64_t sum = 14695981039346656037ull;
  for (const char c : bytes) sum = (sum ^ static_cast<unsigned char>(c)) * 1099511628211ull;
  return sum;
}

template <class T>
constexpr bool kIsPlain = std::is_arithmetic_v<T> || std::is_enum_v<T> || std::is_same_v<T, aem::Complex>;

class Writer {
 public:
  template <class T>
  void operator()(const T& value) {
    if constexpr (kIsPlain<T>) {
      bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
    } else {
      Describe(*this, const_cast<T&>(value));
    }
  }
  void operator()(const std::string& text) { Block(text.data(), text.size()); }
  void operator()(const std::vector<std::byte>& data) {
    Block(reinterpret_cast<const char*>(data.data()), data.size());
  }
  template <class T>
  void operator()(const std::vector<T>& items) {
    (*this)(static_cast<std::uint64_t>(items.size()));
    for (const T& item : items) (*this)(item);
  }
  std::string Take() { return std::move(bytes_); }

 private:
  void Block(const char* data, std::size_t size) {
    (*this)(static_cast<std::uint64_t>(size));
    bytes_.append(data, size);
  }
  std::string bytes_;
};

class Reader {
 public:
  explicit Reader(std::string_view bytes) : rest_(bytes) {}

  template <class T>
  void operator()(T& value) {
    if constexpr (std::is_same_v<T, bool>) {
      value = *Bytes(1) != 0;
    } else if constexpr (kIsPlain<T>) {
      std::memcpy(&value, Bytes(sizeof value), sizeof value);
    } else {
      Describe(*this, value);
    }
  }
  void operator()(std::string& text) {
    const std::size_t size = Count(1);
    text.assign(Bytes(size), size);
  }
  void operator()(std::vector<std::byte>& data) {
    const std::size_t size = Count(1);
    const char* from = Bytes(size);
    data.resize(size);
    if (size > 0) std::memcpy(data.data(), from, size);
  }
  template <class T>
  void operator()(std::vector<T>& items) {
    // Each item takes two numbers in the file at least: a count beyond that is damage, not a reason to
    // allocate.
    const std::size_t size = Count(16);
    for (std::size_t i = 0; i < size; ++i) (*this)(items.emplace_back());
  }
  bool AtEnd() const { return rest_.empty(); }

 private:
  const char* Bytes(std::size_t size) {
    if (size > rest_.size()) throw SolutionFileError(kDamaged);
    const char* begin = rest_.data();
    rest_.remove_prefix(size);
    return begin;
  }
  std::size_t Count(std::size_t least_item) {
    std::uint64_t count = 0;
    (*this)(count);
    if (count > rest_.size() / least_item) throw SolutionFileError(kDamaged);
    return static_cast<std::size_t>(count);
  }
  std::string_view rest_;
};

/// An enumeration comes back only as one of its values.
template <class Archive, class E>
void Limited(Archive& io, E& value, E last) {
  io(value);
  if (static_cast<int>(value) < 0 || static_cast<int>(value) > static_cast<int>(last)) {
    throw SolutionFileError(kDamaged);
  }
}

// One description of each kind serves writing and reading.

template <class Archive>
void Describe(Archive& io, aem::Origin& v) {
  io(v.label), io(v.line);
}
template <class Archive>
void Describe(Archive& io, MapOrigin& v) {
  io(v.x), io(v.y), io(v.units);
}
template <class Archive>
void Describe(Archive& io, aem::Aquifer& v) {
  io(v.base), io(v.thickness), io(v.conductivity), io(v.porosity), io(v.uniform_flow), io(v.has_reference);
  io(v.reference_point), io(v.reference_head), io(v.reference_line);
}
template <class Archive>
void Describe(Archive& io, aem::Window& v) {
  io(v.left), io(v.bottom), io(v.right), io(v.top), io(v.set);
}
template <class Archive>
void Describe(Archive& io, aem::Well& v) {
  io(v.origin), io(v.at), io(v.radius), io(v.by_head), io(v.value);
}
template <class Archive>
void Describe(Archive& io, aem::PartialWell& v) {
  io(v.origin), io(v.at), io(v.top), io(v.bottom), io(v.radius), io(v.by_head), io(v.value);
}
template <class Archive>
void Describe(Archive& io, aem::TheisRecord& v) {
  io(v.origin), io(v.at), io(v.rate), io(v.time), io(v.start_head), io(v.storage), io(v.radius);
}
template <class Archive>
void Describe(Archive& io, aem::SinkDisk& v) {
  io(v.origin), io(v.at), io(v.radius), io(v.by_head), io(v.value);
}
template <class Archive>
void Describe(Archive& io, aem::LineSinkSegment& v) {
  io(v.origin), io(v.from), io(v.to), io(v.value);
}
template <class Archive>
void Describe(Archive& io, aem::LineSinkString& v) {
  io(v.origin);
  Limited(io, v.kind, aem::LineSinkKind::kStream);
  io(v.resistance), io(v.width), io(v.depth);
  Limited(io, v.location, aem::BedLocation::kWaterEdge);
  io(v.inflow), io(v.overland_flow), io(v.ends), io(v.segments);
}
template <class Archive>
void Describe(Archive& io, aem::LabelledPoint& v) {
  io(v.origin), io(v.at);
}
template <class Archive>
void Describe(Archive& io, aem::Domain& v) {
  io(v.origin), io(v.conductivity), io(v.base), io(v.average_head), io(v.recharge_sink), io(v.porosity);
  io(v.ring);
}
template <class Archive>
void Describe(Archive& io, aem::Wall& v) {
  io(v.origin);
  Limited(io, v.kind, aem::WallKind::kKeepInside);
  io(v.conductivity), io(v.thickness), io(v.porosity), io(v.bottom), io(v.points);
}
template <class Archive>
void Describe(Archive& io, aem::Model& v) {
  io(v.title), io(v.aquifer), io(v.layout), io(v.wells), io(v.partial_wells), io(v.theis), io(v.disks);
  io(v.line_sinks), io(v.domains), io(v.walls);
}
template <class Archive>
void Describe(Archive& io, SavedSolution& v) {
  io(v.origin), io(v.time), io(v.model), io(v.state);
}

template <class T>
T Plain(std::string_view bytes, std::size_t at) {
  T value{};
  std::memcpy(&value, bytes.data() + at, sizeof value);
  return value;
}

}  // namespace

std::string PackSolution(const SavedSolution& solution) {
  Writer payload;
  payload(solution);
  const std::string body = payload.Take();
  std::string file(kMagic);
  Writer header;
  header(kByteOrder);
  header(static_cast<std::uint32_t>(kSolutionVersion));
  header(static_cast<std::uint64_t>(body.size()));
  header(Checksum(body));
  return file + header.Take() + body;
}

SavedSolution UnpackSolution(std::string_view bytes) {
  if (bytes.substr(0, kMagic.size()) != kMagic) {
    throw SolutionFileError("is not a solution of this solver. Solve the model again");
  }
  if (bytes.size() < kHeaderSize) throw SolutionFileError(kDamaged);
  const auto order = Plain<std::uint32_t>(bytes, 8);
  if (order == kOtherByteOrder) {
    throw SolutionFileError(
        "was saved on a machine of another kind (byte order). Solve the model again here");
  }
  if (order != kByteOrder) throw SolutionFileError(kDamaged);
  const auto version = Plain<std::uint32_t>(bytes, 12);
  if (version != kSolutionVersion) {
    throw SolutionFileError(
        fmt::format("was saved by another version of the solver (layout {}, this solver reads "
                    "{}). Solve the model again",
                    version, kSolutionVersion));
  }
  const std::string_view body = bytes.substr(kHeaderSize);
  if (Plain<std::uint64_t>(bytes, 16) != body.size() || Plain<std::uint64_t>(bytes, 24) != Checksum(body)) {
    throw SolutionFileError(kDamaged);
  }
  SavedSolution solution;
  Reader reader(body);
  reader(solution);
  if (!reader.AtEnd()) throw SolutionFileError(kDamaged);
  return solution;
}

}  // namespace vadox1
