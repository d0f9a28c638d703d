#include "aem/field/area_field.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace aem::detail {

namespace {
constexpr int kLeafAreas = 4;
constexpr double kSeparation = 3.0;  // distance over radius beyond which a series holds
}  // namespace

AreaField::AreaField(std::span<const AreaSource> areas, std::span<const DiskSource> disks)
    : areas_(areas.begin(), areas.end()), disks_(disks.begin(), disks.end()) {
  std::erase_if(disks_, [](const DiskSource& d) { return d.unknown >= 0; });
  for (std::size_t i = 0; i < areas_.size(); ++i) {
    Source source{int(i), -1, areas_[i].Centre(), areas_[i].Reach()};
    sources_.push_back(source);
  }
  for (std::size_t i = 0; i < disks_.size(); ++i)
    sources_.push_back({-1, int(i), disks_[i].at, disks_[i].radius});
  if (sources_.empty()) return;
  nodes_.push_back({});
  nodes_[0].last = int(sources_.size());
  Build(0);
}

void AreaField::Build(int index) {
  const int first = nodes_[index].first, last = nodes_[index].last;
  Box box;
  for (int i = first; i < last; ++i) box.Add(sources_[i].centre);
  Node& node = nodes_[index];
  node.centre = box.Middle();
  for (int i = first; i < last; ++i)
    node.radius = std::max(node.radius, std::abs(sources_[i].centre - node.centre) + sources_[i].radius);
  node.moments.assign(AreaSource::kMoments + 1, {});
  for (int i = first; i < last; ++i) AddMoments(sources_[i], &node);
  if (last - first <= kLeafAreas || box.Diagonal() == 0.0) return;
  const bool wide = box.right - box.left > box.top - box.bottom;
  const int middle = (first + last) / 2;
  std::nth_element(sources_.begin() + first, sources_.begin() + middle, sources_.begin() + last,
                   [wide](const Source& a, const Source& b) {
                     return wide ? a.centre.real() < b.centre.real() : a.centre.imag() < b.centre.imag();
                   });
  const int child = int(nodes_.size());
  node.child = child;
  nodes_.resize(nodes_.size() + 2);  // ends the life of `node`
  nodes_[child].first = first;
  nodes_[child].last = middle;
  nodes_[child + 1].first = middle;
  nodes_[child + 1].last = last;
  Build(child);
  Build(child + 1);
}

void AreaField::AddMoments(const Source& source, Node* node) const {
  if (source.area >= 0) {
    areas_[source.area].AddMoments(node->centre, node->radius, node->moments);
    return;
  }
  // A disk is a well from outside.
  const DiskSource& disk = disks_[source.disk];
  const Complex step = (disk.at - node->centre) / node->radius;
  Complex term = disk.rate * std::numbers::pi * disk.radius * disk.radius / (node->radius * node->radius);
  for (Complex& m : node->moments) {
    m += term;
    term *= step;
  }
}

void AreaField::Walk(int index, Complex z, Flow* sum) const {
  const Node& node = nodes_[index];
  Flow part;
  if (std::norm(z - node.centre) > kSeparation * kSeparation * node.radius * node.radius) {
    part = FarAreas(node.moments, node.centre, node.radius, z);
  } else if (node.child >= 0) {
    Walk(node.child, z, sum);
    Walk(node.child + 1, z, sum);
    return;
  } else {
    for (int i = node.first; i < node.last; ++i) {
      const Source& source = sources_[i];
      Flow f;
      if (source.area >= 0) {
        f = areas_[source.area].Influence(z);
      } else {
        f = DiskInfluence(disks_[source.disk], z);
        f.omega *= disks_[source.disk].rate;
        f.w *= disks_[source.disk].rate;
      }
      part.omega += f.omega;
      part.w += f.w;
    }
  }
  sum->omega += part.omega;
  sum->w += part.w;
}

Flow AreaField::At(Complex z) const {
  Flow sum;
  if (!nodes_.empty()) Walk(0, z, &sum);
  return sum;
}

}  // namespace aem::detail
