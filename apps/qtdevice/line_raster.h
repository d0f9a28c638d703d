// Solid lines and discs painted straight into the pixels of an image.
//
// A toolkit's painter turns every thick line into an outline and fills that: fine for a few hundred lines,
// too slow for a map whose contours and pathlines have a hundred thousand bends.  Here a pixel takes the
// share that the distance of its centre to the line gives it: `width / 2 + 1/2 - distance`, between 0 and 1
// (own derivation).
#pragma once

#include <QImage>
#include <QPointF>
#include <QRect>
#include <span>

namespace ormel {

class LineRaster {
 public:
  static constexpr double kWidest = 12.0;  ///< pixels; the ends of wider lines would show their rough shape
  /// Paints into `image`, which stays in place and unshared.  Its format must be Format_RGB32.
  explicit LineRaster(QImage& image);

  /// Nothing is painted outside.
  void SetClip(const QRect& clip) { clip_ = clip.intersected(whole_); }
  void ClearClip() { clip_ = whole_; }

  /// An open line with round ends; a single point is a dot.  One unit is a pixel, whole numbers are the edges
  /// of pixels.  Points may lie some thousand pixels outside.
  void Line(std::span<const QPointF> points, double width, QRgb color);
  void Disc(QPointF centre, double radius, QRgb color);

 private:
  struct Step;
  void Walk(const Step& step, double reach, QRgb color);
  void Paint(QRgb* pixel, int share, QRgb color);

  QRgb* pixels_;
  std::ptrdiff_t stride_;  ///< pixels in a row
  QRect whole_, clip_;
};

}  // namespace ormel
