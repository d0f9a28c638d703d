// A device that paints nothing and counts what it is given.
#pragma once

#include "view/map_view_impl.h"

namespace ormel {

class BenchDevice final : public DrawingDevice {
 public:
  int Width() const override { return 1600; }
  int Height() const override { return 1000; }
  int DpiX() const override { return 96; }
  int DpiY() const override { return 96; }
  void Clear(Color) override { calls = points = 0; }
  void Polyline(std::span<const DevicePoint> p, const Pen&) override { Count(p.size()); }
  void FineLine(std::span<const FinePoint> p, const Pen&) override { Count(p.size()); }
  void Area(std::span<const FinePoint> p, Color, double) override { Count(p.size()); }
  void Areas(std::span<const std::vector<FinePoint>> rings, Color, double) override {
    for (const std::vector<FinePoint>& ring : rings) Count(ring.size());
  }
  void Picture(const std::shared_ptr<const Pixels>& p, const PicturePlace&) override {
    Count(p->rgba.size() / 4);
  }
  void Polygon(std::span<const DevicePoint> p, const Pen&, Color) override { Count(p.size()); }
  void Circle(DevicePoint, int, const Pen&, std::optional<Color>) override { Count(1); }
  void Text(DevicePoint, std::string_view, const TextStyle&) override { Count(1); }
  void Cover(const DeviceRect&, Color, double) override { Count(1); }
  void SetClip(const DeviceRect&) override {}
  void ClearClip() override {}

  std::size_t calls = 0, points = 0;

 private:
  void Count(std::size_t n) {
    ++calls;
    points += n;
  }
};

struct BenchSurface final : MapSurface {
  DrawingDevice* BeginPicture() override { return &device; }
  void EndPicture() override {}
  void Update() override {}
  BenchDevice device;
};

}  // namespace ormel
