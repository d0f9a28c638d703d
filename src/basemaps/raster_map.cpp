#include "basemaps/raster_map.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "basemaps/world_file.h"

namespace ormel {
namespace {

constexpr int kTile = 256;  ///< pixels, as shown

void Put(const Pixels& tile, int column, int row, Pixels& whole) {
  const std::size_t line = 4 * static_cast<std::size_t>(tile.width);
  for (int y = 0; y < tile.height; ++y) {
    const std::size_t at = static_cast<std::size_t>(row + y) * static_cast<std::size_t>(whole.width) +
                           static_cast<std::size_t>(column);
    std::memcpy(whole.rgba.data() + 4 * at, tile.rgba.data() + line * static_cast<std::size_t>(y), line);
  }
}

}  // namespace

RasterMap::RasterMap(const std::string& path) : source_(path) {
  const RasterInfo& about = source_.info();
  std::optional<std::array<double, 6>> place = about.geotransform;
  if (!place) place = ReadWorldFile(path);
  georeferenced_ = place.has_value();
  const double height = about.height;
  transform_ = place.value_or(std::array{0.0, 1.0, 0.0, height, 0.0, -1.0});
}

MapPoint RasterMap::Place(double column, double row) const {
  const auto& g = transform_;
  return {g[0] + column * g[1] + row * g[2], g[3] + column * g[4] + row * g[5]};
}

Extents RasterMap::bounds() const {
  const double width = info().width, height = info().height;
  Extents box{INFINITY, -INFINITY, INFINITY, -INFINITY};
  for (const MapPoint p : {Place(0, 0), Place(width, 0), Place(0, height), Place(width, height)}) {
    box.x_min = std::min(box.x_min, p.x);
    box.x_max = std::max(box.x_max, p.x);
    box.y_min = std::min(box.y_min, p.y);
    box.y_max = std::max(box.y_max, p.y);
  }
  return box;
}

PixelWindow RasterMap::Seen(const Extents& view) const {
  const auto& g = transform_;
  const double area = g[1] * g[5] - g[2] * g[4];
  double c1 = INFINITY, c2 = -INFINITY, r1 = INFINITY, r2 = -INFINITY;
  for (const MapPoint p : {MapPoint{view.x_min, view.y_min}, MapPoint{view.x_max, view.y_min},
                           MapPoint{view.x_min, view.y_max}, MapPoint{view.x_max, view.y_max}}) {
    const double dx = p.x - g[0], dy = p.y - g[3];
    const double column = (dx * g[5] - dy * g[2]) / area, row = (dy * g[1] - dx * g[4]) / area;
    c1 = std::min(c1, column);
    c2 = std::max(c2, column);
    r1 = std::min(r1, row);
    r2 = std::max(r2, row);
  }
  const double width = info().width, height = info().height;
  if (!(c1 < width && c2 > 0.0 && r1 < height && r2 > 0.0)) return {};
  const int left = static_cast<int>(std::floor(std::clamp(c1, 0.0, width - 1.0)));
  const int top = static_cast<int>(std::floor(std::clamp(r1, 0.0, height - 1.0)));
  const int right = static_cast<int>(std::ceil(std::clamp(c2, left + 1.0, width)));
  const int bottom = static_cast<int>(std::ceil(std::clamp(r2, top + 1.0, height)));
  return {left, top, right - left, bottom - top};
}

const RasterMap::Tile& RasterMap::TileOf(const Key& key) {
  if (const auto known = tiles_.find(key); known != tiles_.end()) {
    order_.splice(order_.begin(), order_, known->second.used);
    return known->second;
  }
  const auto [halvings, column, row] = key;
  const int span = kTile << halvings;
  const PixelWindow part{column * span, row * span, std::min(span, info().width - column * span),
                         std::min(span, info().height - row * span)};
  Tile tile;
  Pixels& pixels = tile.pixels;
  pixels.width = (part.width + (1 << halvings) - 1) >> halvings;
  pixels.height = (part.height + (1 << halvings) - 1) >> halvings;
  pixels.rgba = source_.ReadRgba(part, pixels.width, pixels.height);
  while (cached_ + pixels.rgba.size() > kRasterCache && !order_.empty()) {
    const auto oldest = tiles_.find(order_.back());
    cached_ -= oldest->second.pixels.rgba.size();
    tiles_.erase(oldest);
    order_.pop_back();
  }
  cached_ += pixels.rgba.size();
  order_.push_front(key);
  tile.used = order_.begin();
  return tiles_.emplace(key, std::move(tile)).first->second;
}

/// The tiles that are seen, side by side in one picture: single ones would show their seams.
void RasterMap::Compose(const PixelWindow& seen, int halvings) {
  const int span = kTile << halvings;
  const int first_column = seen.column / span, last_column = (seen.column + seen.width - 1) / span;
  const int first_row = seen.row / span, last_row = (seen.row + seen.height - 1) / span;
  const std::tuple key{halvings, first_column, last_column, first_row, last_row};
  if (shown_.pixels != nullptr && key == shown_of_) return;
  shown_ = {};  // before the next, so that there are never two
  const int right = std::min((last_column + 1) * span, info().width),
            bottom = std::min((last_row + 1) * span, info().height);
  const int step = 1 << halvings;
  auto whole = std::make_shared<Pixels>();
  whole->width = (right - first_column * span + step - 1) / step;
  whole->height = (bottom - first_row * span + step - 1) / step;
  whole->rgba.resize(4 * static_cast<std::size_t>(whole->width) * static_cast<std::size_t>(whole->height));
  for (int row = first_row; row <= last_row; ++row)
    for (int column = first_column; column <= last_column; ++column)
      Put(TileOf({halvings, column, row}).pixels, (column - first_column) * kTile, (row - first_row) * kTile,
          *whole);
  Part part;
  part.pixels = std::move(whole);
  part.upper_left = Place(first_column * span, first_row * span);
  // The last pixel of a picture of odd size stands for less than a whole one; it is shown as it is meant.
  part.upper_right = Place(right, first_row * span);
  part.lower_left = Place(first_column * span, bottom);
  shown_ = std::move(part);
  shown_of_ = key;
}

std::optional<RasterMap::Part> RasterMap::Read(const Extents& view, double pixel) {
  const PixelWindow seen = Seen(view);
  if (seen.width <= 0 || seen.height <= 0 || !(pixel > 0.0)) return std::nullopt;
  const auto& g = transform_;
  const double size = std::min(std::hypot(g[1], g[4]), std::hypot(g[2], g[5]));
  int halvings = 0;
  while (halvings < 20 && size * (2 << halvings) <= pixel) ++halvings;
  Compose(seen, halvings);
  return shown_;
}

}  // namespace ormel
