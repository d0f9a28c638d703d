// Shapes of shapefiles as objects: points, many points, lines and areas of parts.
//
// A container adds what it is given to its extent and is null until then.  Coordinates have no unit of their
// own.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ormel {

/// An error of the shapefile library: what went wrong, and in which of its procedures.
class ShapeError : public std::runtime_error {
 public:
  ShapeError(std::string source, const std::string& description)
      : std::runtime_error(description), source_(std::move(source)) {}
  const std::string& source() const { return source_; }

 private:
  std::string source_;
};

/// Numbers of the format.
enum class ShapeType : int { kNull = 0, kPoint = 1, kPolyLine = 3, kPolygon = 5, kMultiPoint = 8 };

/// Anything that can be offered to a container.
class ShapeObject {
 public:
  virtual ~ShapeObject() = default;
};

/// Takes the text of a box.
using ShapeNotice = std::function<void(std::string_view)>;

class IShape : public ShapeObject {
 public:
  virtual double Top() const = 0;
  virtual double Bottom() const = 0;
  virtual double Left() const = 0;
  virtual double Right() const = 0;
  virtual bool IsNull() const = 0;
  virtual void MakeNull() = 0;
  /// From a point only; from all others "NOT IMPLEMENTED" is told and 0 given.
  virtual double Distance(const IShape& other, const ShapeNotice& notice = {}) const;
};

class CPoint final : public IShape {
 public:
  CPoint() = default;
  CPoint(double x, double y) : X(x), Y(y), null_(false) {}
  double Top() const override { return Y; }
  double Bottom() const override { return Y; }
  double Left() const override { return X; }
  double Right() const override { return X; }
  bool IsNull() const override { return null_; }
  void MakeNull() override { null_ = true; }
  /// To a point; to the nearest segment of a line; to the nearest edge of an area, 0 inside.  Throws
  /// ShapeError for a null shape.
  double Distance(const IShape& other, const ShapeNotice& notice = {}) const override;
  double DistanceToPoint(const CPoint& other) const;

  double X = 0.0, Y = 0.0;

 private:
  bool null_ = true;
};

class CRect final : public IShape {
 public:
  double Top() const override { return first.Y; }
  double Bottom() const override { return second.Y; }
  double Left() const override { return first.X; }
  double Right() const override { return second.X; }
  bool IsNull() const override { return first.IsNull(); }
  void MakeNull() override { first.MakeNull(); }
  /// Grows to hold a box; from null it becomes the box.
  void Include(double left, double bottom, double right, double top);
  void Set(double left, double bottom, double right, double top);

  CPoint first, second;  ///< left and top, right and bottom
};

class CPart final : public ShapeObject {
 public:
  /// Throws ShapeError for anything but a CPoint.
  void Add(const ShapeObject& point);
  void Add(const CPoint& point);
  double Left() const { return extent_.Left(); }
  double Right() const { return extent_.Right(); }
  double Top() const { return extent_.Top(); }
  double Bottom() const { return extent_.Bottom(); }
  const std::vector<CPoint>& points() const { return points_; }

 private:
  std::vector<CPoint> points_;
  CRect extent_;
};

/// What the shapes with an extent of their own have in common.
class ExtendedShape : public IShape {
 public:
  double Top() const override { return extent_.Top(); }
  double Bottom() const override { return extent_.Bottom(); }
  double Left() const override { return extent_.Left(); }
  double Right() const override { return extent_.Right(); }
  bool IsNull() const override { return null_; }
  void MakeNull() override { null_ = true; }

 protected:
  void Include(double left, double bottom, double right, double top);

 private:
  CRect extent_;
  bool null_ = true;
};

class CMultiPoint final : public ExtendedShape {
 public:
  /// Throws ShapeError for anything but a CPoint.
  void Add(const ShapeObject& point);
  const std::vector<CPoint>& points() const { return points_; }

 private:
  std::vector<CPoint> points_;
};

class PartedShape : public ExtendedShape {
 public:
  const std::vector<CPart>& parts() const { return parts_; }

 protected:
  void AddPart(const ShapeObject& part, const char* source, const char* refusal);

 private:
  std::vector<CPart> parts_;
};

class CPolyLine final : public PartedShape {
 public:
  /// Throws ShapeError for anything but a CPart.
  void Add(const ShapeObject& part) {
    AddPart(part, "CPolyLine::Add", "CPolyLine Add can only accept objects of type CPart");
  }
};

class CPolygon final : public PartedShape {
 public:
  /// Throws ShapeError for anything but a CPart.
  void Add(const ShapeObject& part) {
    AddPart(part, "CPolygon::Add", "CPolygon Add can only accept objects of type CPart");
  }
};

}  // namespace ormel
