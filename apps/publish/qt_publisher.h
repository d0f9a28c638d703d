// The publisher of programs that have the toolkit.
#pragma once

#include "core/publisher.h"

namespace ormel {

struct Ormel;
class MapViewImpl;

/// Needs a QApplication while it draws.
class QtPublisher final : public Publisher {
 public:
  QtPublisher(Ormel& ormel, MapViewImpl& view) : ormel_(ormel), view_(view) {}

  std::string ChartPng(const Chart& chart, const PictureShape& shape) override;
  std::string MapPng(const PictureShape& shape, const std::optional<MapRect>& window) override;
  std::string SaveChart(const Chart& chart, const std::string& path) override;
  std::string SavePdf(const std::string& html, const PageStyle& style, const std::string& path,
                      const std::function<bool(double)>& go_on) override;

 private:
  Ormel& ormel_;
  MapViewImpl& view_;
};

}  // namespace ormel
