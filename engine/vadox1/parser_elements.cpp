// The element blocks of a deck.

#include <fmt/format.h>

#include <cmath>
#include <optional>
#include <utility>

#include "files/numbers.h"
#include "files/text_lines.h"
#include "vadox1/parser.h"

namespace vadox1 {
namespace {

struct WallWord {
  std::string_view word;
  aem::WallKind kind;
};
constexpr WallWord kWallWords[] = {{"open", aem::WallKind::kOpen},
                                   {"closed", aem::WallKind::kClosed},
                                   {"outside", aem::WallKind::kKeepOutside},
                                   {"inside", aem::WallKind::kKeepInside}};

}  // namespace

// --- aquifer ---

void Parser::ModelOrigin() {
  deck_.origin.x = Number(1);
  deck_.origin.y = Number(2);
  deck_.origin.units = items_.size() > 3 ? Whole(3) : 2;
}

void Parser::Title() {
  deck_.model.title = files::Printable(Rest());
}

void Parser::Base() {
  deck_.model.aquifer.base = Number(1);
}
void Parser::Permeability() {
  deck_.model.aquifer.conductivity = Number(1);
}
void Parser::Thickness() {
  deck_.model.aquifer.thickness = Number(1);
}
void Parser::Porosity() {
  deck_.model.aquifer.porosity = Number(1);
}
void Parser::UniformFlow() {
  deck_.model.aquifer.uniform_flow = Point(1);
}

void Parser::Reference() {
  aem::Aquifer& aquifer = deck_.model.aquifer;
  aquifer.reference_point = Point(1);
  aquifer.reference_head = Number(3);
  aquifer.has_reference = true;
  aquifer.reference_line = line_;
}

// --- wells and disks ---

void Parser::ByDischarge() {
  given_ = Given::kDischarge;
}
void Parser::ByHead() {
  given_ = Given::kHead;
}

void Parser::AddWell() {
  if (given_ == Given::kNothing)
    throw UnusableLine{"\"discharge\" or \"head\" must stand before the first well"};
  aem::Well well;
  well.at = Point(0);
  well.value = Number(2);
  well.radius = Number(3);
  well.by_head = given_ == Given::kHead;
  well.origin = Label(4);
  deck_.model.wells.push_back(std::move(well));
}

void Parser::AddPartialWell() {
  if (given_ == Given::kNothing)
    throw UnusableLine{"\"discharge\" or \"head\" must stand before the first well"};
  aem::PartialWell well;
  well.at = Point(0);
  well.top = Number(2);
  well.bottom = Number(3);
  well.value = Number(4);
  well.radius = Number(5);
  well.by_head = given_ == Given::kHead;
  well.origin = Label(6);
  deck_.model.partial_wells.push_back(std::move(well));
}

void Parser::AddTheis() {
  if (given_ == Given::kNothing)
    throw UnusableLine{"\"discharge\" must stand before the first transient well"};
  aem::TheisRecord record;
  record.at = Point(0);
  record.rate = Number(2);
  record.time = Number(3);
  record.start_head = Number(4);
  record.storage = Number(5);
  record.radius = Number(6);
  record.origin = Label(7);
  deck_.model.theis.push_back(std::move(record));
}

void Parser::AddDisk() {
  if (given_ == Given::kNothing)
    throw UnusableLine{"\"discharge\" or \"head\" must stand before the first disk"};
  aem::SinkDisk disk;
  disk.at = Point(0);
  disk.radius = std::abs(Point(2) - disk.at);
  disk.value = Number(4);
  disk.by_head = given_ == Given::kHead;
  // Behind a given rate stands one more number that has no effect.
  const bool spare = !disk.by_head && items_.size() > 5 && files::ReadNumber(items_[5]);
  disk.origin = Label(spare ? 6 : 5);
  deck_.model.disks.push_back(std::move(disk));
}

// --- domains and walls ---

void Parser::Transmissivity() {
  aem::Domain domain;
  domain.conductivity = Number(1);
  domain.base = Number(2);
  domain.average_head = Number(3);
  domain.recharge_sink = Number(4);
  domain.porosity = Number(5);
  domain.origin = Label(6);
  deck_.model.domains.push_back(std::move(domain));
  ring_ = Ring::kDomain;
}

void Parser::Slurry() {
  aem::Wall wall;
  bool known = false;
  for (const WallWord& entry : kWallWords) {
    if (!SameItem(1, entry.word)) continue;
    wall.kind = entry.kind;
    known = true;
  }
  if (!known) throw UnusableLine{"Behind \"slurry\" must stand open, closed, outside or inside"};
  wall.conductivity = Number(2);
  wall.thickness = Number(3);
  wall.porosity = Number(4);
  wall.bottom = Number(5);
  wall.origin = Label(6);
  deck_.model.walls.push_back(std::move(wall));
  ring_ = Ring::kWall;
}

void Parser::DomainVertex() {
  aem::LabelledPoint vertex;
  vertex.at = Point(0);
  vertex.origin = Label(2);
  if (ring_ == Ring::kNone) return StrayVertex();
  const aem::Origin& head =
      ring_ == Ring::kDomain ? deck_.model.domains.back().origin : deck_.model.walls.back().origin;
  // A barrier of unknown kind writes its vertices without a head line: its labels give it away.
  const std::string_view owner = OwnerOf(vertex.origin.label), head_owner = OwnerOf(head.label);
  if (!owner.empty() && !head_owner.empty() && owner != head_owner) return StrayVertex();
  auto& ring = ring_ == Ring::kDomain ? deck_.model.domains.back().ring : deck_.model.walls.back().points;
  ring.push_back(std::move(vertex));
}

void Parser::StrayVertex() {
  std::string label = Label(2).label;
  if (const std::string_view owner = OwnerOf(label); !owner.empty()) label = std::string(owner);
  const bool told = !deck_.findings.empty() && stray_label_ == label && deck_.findings.back().label == label;
  if (told) return;
  stray_label_ = label;
  deck_.findings.push_back(
      {aem::Severity::kWarning, label, line_,
       "These vertices stand without a head line and were left out: the kind of the barrier "
       "or domain is not known. Set its type and solve again."});
}

// --- line-sinks
// -------------------------------------------------------------------------------------------------

void Parser::DischargeString() {
  CloseString();
  string_open_ = false;
  given_ = Given::kDischarge;
}

void Parser::NewString(aem::LineSinkKind kind) {
  CloseString();
  aem::LineSinkString string;
  string.kind = kind;
  string.origin.line = line_;
  deck_.model.line_sinks.push_back(std::move(string));
  string_open_ = true;
  stream_closed_ = false;
  given_ = Given::kHead;
}

void Parser::StreamString() {
  const double inflow = items_.size() > 1 ? Number(1) : 0.0;
  NewString(aem::LineSinkKind::kStream);
  deck_.model.line_sinks.back().inflow = inflow;
}

aem::LineSinkString& Parser::OpenString() {
  if (given_ != Given::kHead || !string_open_) {
    throw UnusableLine{"\"head\", \"drain\" or \"stream\" must stand before this line"};
  }
  return deck_.model.line_sinks.back();
}

void Parser::Resistance() {
  OpenString().resistance = Number(1);
}

void Parser::Width() {
  OpenString().width = Number(1);
  const int code = items_.size() > 2 ? Whole(2) : 0;
  if (code < 0 || code > 2) throw UnusableLine{"The location code behind the width must be 0, 1 or 2"};
  OpenString().location = static_cast<aem::BedLocation>(code);
}

void Parser::AddSegment() {
  if (given_ == Given::kNothing) {
    throw UnusableLine{
        "\"discharge\", \"head\", \"drain\" or \"stream\" must stand before the first segment"};
  }
  const bool by_head = given_ == Given::kHead;
  if (by_head && deck_.model.line_sinks.back().kind == aem::LineSinkKind::kStream) return StreamNode();
  aem::LineSinkSegment segment;
  segment.from = Point(0);
  segment.to = Point(2);
  segment.value = Number(4);
  segment.origin = Label(5);
  if (!by_head) return AddDischargeSegment(std::move(segment));
  aem::LineSinkString& string = OpenString();
  if (string.segments.empty()) string.origin.label = std::string(OwnerOf(segment.origin.label));
  string.segments.push_back(std::move(segment));
}

/// Segments of given density stand in one list; those of one owner make a string.
void Parser::AddDischargeSegment(aem::LineSinkSegment segment) {
  const std::string_view owner = OwnerOf(segment.origin.label);
  std::vector<aem::LineSinkString>& strings = deck_.model.line_sinks;
  if (!string_open_ || strings.back().origin.label != owner) {
    aem::LineSinkString string;
    string.kind = aem::LineSinkKind::kDischarge;
    string.origin = {std::string(owner), line_};
    strings.push_back(std::move(string));
    string_open_ = true;
  }
  strings.back().segments.push_back(std::move(segment));
}

/// A stream lists its vertices: each with the stage of the segment that begins there, the last one without.
void Parser::StreamNode() {
  aem::LineSinkString& stream = OpenString();
  if (stream_closed_)
    throw UnusableLine{"The stream's last vertex stands above; a new \"stream\" line is missing"};
  const aem::Complex at = Point(0);
  if (node_pending_) {
    node_.to = at;
    if (stream.segments.empty()) stream.origin.label = std::string(OwnerOf(node_.origin.label));
    stream.segments.push_back(std::move(node_));
  } else if (items_.size() == 2) {
    throw UnusableLine{"A stream's first vertex needs the head of its first segment"};
  }
  node_pending_ = items_.size() > 2;
  stream_closed_ = !node_pending_;
  if (stream_closed_) return;
  node_ = {};
  node_.from = at;
  node_.value = Number(2);
  node_.origin = Label(3);
}

void Parser::CloseString() {
  if (!std::exchange(node_pending_, false)) return;
  throw UnusableLine{fmt::format("The last vertex of the stream {} is missing above this line",
                                 OwnerOf(node_.origin.label))};
}

}  // namespace vadox1
