#include "aem/input/validate.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <set>

namespace aem {

namespace detail {

Box Extent(const Model& m) {
  Box box;
  for (const Well& w : m.wells) box.Add(w.at);
  for (const PartialWell& w : m.partial_wells) box.Add(w.at);
  for (const TheisRecord& w : m.theis) box.Add(w.at);
  for (const SinkDisk& d : m.disks) {
    box.Add(d.at - Complex{d.radius, d.radius});
    box.Add(d.at + Complex{d.radius, d.radius});
  }
  for (const LineSinkString& s : m.line_sinks)
    for (const LineSinkSegment& g : s.segments) {
      box.Add(g.from);
      box.Add(g.to);
    }
  for (const Domain& d : m.domains)
    for (const LabelledPoint& p : d.ring) box.Add(p.at);
  for (const Wall& w : m.walls)
    for (const LabelledPoint& p : w.points) box.Add(p.at);
  if (m.layout.set) {
    box.Add({m.layout.left, m.layout.bottom});
    box.Add({m.layout.right, m.layout.top});
  }
  if (box.Empty()) box.Add({});
  return box;
}

std::vector<Complex> CleanRing(const std::vector<LabelledPoint>& points, double tolerance) {
  std::vector<Complex> ring;
  for (const LabelledPoint& p : points)
    if (ring.empty() || std::abs(ring.back() - p.at) > tolerance) ring.push_back(p.at);
  while (ring.size() > 1 && std::abs(ring.front() - ring.back()) <= tolerance) ring.pop_back();
  return ring;
}

std::string PlaceText(Complex at) {
  char text[64];
  std::snprintf(text, sizeof text, "%.8g, %.8g", at.real(), at.imag());
  return text;
}

bool EnclosesArea(const std::vector<Complex>& ring, double tolerance) {
  return ring.size() >= 3 && std::abs(SignedArea(ring)) > tolerance * std::abs(ring[1] - ring[0]);
}

}  // namespace detail

namespace {

using detail::Box;
using detail::PlaceText;

/// Collects findings; every check is a member so that none has to pass the list along.
class Validator {
 public:
  explicit Validator(const Model& m) : m_(m) {
    const Box box = detail::Extent(m);
    tolerance_ = 2e-7 * std::max({box.Diagonal(), std::abs(box.Middle()), 1e-3});
  }

  std::vector<Finding> Run() {
    CheckAquifer();
    CheckWells();
    CheckDisks();
    CheckStrings();
    CheckCrossings();
    CheckDomains();
    CheckWalls();
    return std::move(findings_);
  }

 private:
  void Say(Severity severity, const Origin& at, std::string text) {
    findings_.push_back({severity, at.label, at.line, std::move(text)});
  }
  void Fatal(const Origin& at, std::string text) { Say(Severity::kFatal, at, std::move(text)); }
  void Warn(const Origin& at, std::string text) { Say(Severity::kWarning, at, std::move(text)); }

  bool Finite(const Origin& at, std::initializer_list<double> values) {
    for (double v : values)
      if (!std::isfinite(v) || std::abs(v) > 1e30) {
        Fatal(at, "A number is missing or far too large.");
        return false;
      }
    return true;
  }

  void CheckAquifer() {
    const Aquifer& a = m_.aquifer;
    const Origin at{"", a.reference_line};
    if (!Finite({}, {a.base, a.thickness, a.conductivity, a.porosity, a.uniform_flow.real(),
                     a.uniform_flow.imag(), a.reference_head, a.reference_point.real(),
                     a.reference_point.imag()}))
      return;
    if (a.thickness <= 0.0) Fatal({}, "The aquifer's thickness must be above zero.");
    if (a.conductivity <= 0.0) Fatal({}, "The aquifer's hydraulic conductivity must be above zero.");
    if (a.porosity <= 0.0 || a.porosity > 1.0)
      Fatal({}, "The aquifer's porosity must be above zero and not above one.");
    if (!a.has_reference)
      Fatal({}, "There is no reference point: give one with its head, far from the area of interest.");
    else if (a.reference_head <= a.base)
      Fatal(at, "The head at the reference point is not above the aquifer's base.");
  }

  struct Spot {
    Complex at;
    double radius;
    bool by_head;
    bool transient;  ///< superposed on the steady heads, so that none it stands beside is contradicted
    Origin origin;
  };

  void CheckWells() {
    std::vector<Spot> spots;
    for (const Well& w : m_.wells) {
      if (!Finite(w.origin, {w.at.real(), w.at.imag(), w.radius, w.value})) continue;
      if (w.radius <= 0.0) Fatal(w.origin, "The well's radius must be above zero.");
      spots.push_back({w.at, w.radius, w.by_head, false, w.origin});
    }
    for (const PartialWell& w : m_.partial_wells) {
      if (!Finite(w.origin, {w.at.real(), w.at.imag(), w.radius, w.value, w.top, w.bottom})) continue;
      if (w.radius <= 0.0) Fatal(w.origin, "The well's radius must be above zero.");
      if (w.top <= w.bottom) Fatal(w.origin, "The top of the well's screen is not above its bottom.");
      spots.push_back({w.at, w.radius, w.by_head, false, w.origin});
    }
    std::set<std::string> labels;
    for (const TheisRecord& w : m_.theis) {
      if (!Finite(w.origin, {w.at.real(), w.at.imag(), w.radius, w.rate, w.time, w.start_head, w.storage}))
        continue;
      if (w.radius <= 0.0) Fatal(w.origin, "The well's radius must be above zero.");
      if (w.storage <= 0.0) Fatal(w.origin, "The specific storage of a transient well must be above zero.");
      if (w.start_head <= m_.aquifer.base)
        Fatal(w.origin, "The starting head of a transient well is not above the aquifer's base.");
      // Records of one label are one well.
      if (labels.insert(w.origin.label).second) spots.push_back({w.at, w.radius, false, true, w.origin});
    }
    CheckSameSpot(spots);
    CheckWellsOnStrings(spots);
  }

  void CheckSameSpot(const std::vector<Spot>& spots) {
    std::vector<std::size_t> order(spots.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    double reach = tolerance_;
    for (const Spot& s : spots) reach = std::max(reach, s.radius);
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return spots[a].at.real() < spots[b].at.real(); });
    for (std::size_t i = 0; i < order.size(); ++i)
      for (std::size_t j = i + 1; j < order.size(); ++j) {
        const Spot& a = spots[order[i]];
        const Spot& b = spots[order[j]];
        if (b.at.real() - a.at.real() > reach) break;
        if (std::abs(a.at - b.at) > std::max({tolerance_, a.radius, b.radius})) continue;
        if ((a.by_head || b.by_head) && a.transient == b.transient)
          Fatal(b.origin, "The well stands at the place of well " + a.origin.label +
                              " and a head is given for one of them: move or delete one.");
        else
          Warn(b.origin,
               "The well stands at the place of well " + a.origin.label + ": their discharges add up.");
      }
  }

  void CheckWellsOnStrings(const std::vector<Spot>& spots) {
    std::vector<std::pair<Complex, Complex>> lines;
    std::vector<const LineSinkSegment*> segments;
    std::vector<bool> by_head;
    for (const LineSinkString& s : m_.line_sinks)
      for (const LineSinkSegment& g : s.segments) {
        if (!std::isfinite(std::abs(g.from)) || !std::isfinite(std::abs(g.to))) continue;
        lines.emplace_back(g.from, g.to);
        segments.push_back(&g);
        by_head.push_back(s.kind != LineSinkKind::kDischarge && !(s.resistance > 0.0 && s.width > 0.0));
      }
    const detail::SegmentIndex index(lines);
    std::vector<int> found;
    for (const Spot& w : spots) {
      Box box;
      box.Add(w.at);
      box.Grow(std::max(w.radius, tolerance_));
      index.Find(box, &found);
      for (int k : found) {
        const double distance = detail::NearestOnSegment(lines[k].first, lines[k].second, w.at).distance;
        if (distance > std::max(w.radius, tolerance_)) continue;
        const std::string text = "The well stands on line-sink " + segments[k]->origin.label;
        if (w.by_head && by_head[k])
          Fatal(w.origin, text + " and both give a head there: move the well.");
        else
          Warn(w.origin, text + ": its head is that of the line.");
        break;
      }
    }
  }

  void CheckDisks() {
    std::map<std::pair<double, double>, const SinkDisk*> known;
    for (const SinkDisk& d : m_.disks) {
      if (!Finite(d.origin, {d.at.real(), d.at.imag(), d.radius, d.value})) continue;
      if (d.radius <= 0.0) Fatal(d.origin, "The sink disk's radius must be above zero.");
      const auto [other, added] = known.try_emplace({d.at.real(), d.at.imag()}, &d);
      if (added) continue;
      if (d.by_head && other->second->by_head)
        Fatal(d.origin, "The sink disk stands at the place of " + other->second->origin.label +
                            " and both give a head there: delete one.");
      else
        Warn(d.origin,
             "The sink disk stands at the place of " + other->second->origin.label + ": their rates add up.");
    }
  }

  void CheckStrings() {
    for (const LineSinkString& s : m_.line_sinks) {
      if (!Finite(s.origin, {s.resistance, s.width, s.depth, s.inflow, s.overland_flow})) continue;
      if (s.resistance < 0.0) Fatal(s.origin, "The resistance of the bed must not be below zero.");
      if (s.width < 0.0) Fatal(s.origin, "The width must not be below zero.");
      if (s.depth < 0.0) Fatal(s.origin, "The depth must not be below zero.");
      if (s.resistance > 0.0 && s.width == 0.0)
        Warn(s.origin, "The bed has a resistance but no width: it is solved without resistance.");
      for (const LineSinkSegment& g : s.segments) {
        if (!Finite(g.origin, {g.from.real(), g.from.imag(), g.to.real(), g.to.imag(), g.value})) continue;
        if (std::abs(g.to - g.from) <= tolerance_)
          Warn(g.origin, "The line-sink has no length: it is left out.");
        if (s.kind != LineSinkKind::kDischarge && g.value <= m_.aquifer.base && m_.domains.empty())
          Warn(g.origin, "The given head is not above the aquifer's base.");
      }
    }
  }

  struct Line {
    Complex a, b;
    const LineSinkString* string;
    const LineSinkSegment* segment;
    bool by_head;
  };

  void CheckCrossings() {
    std::vector<Line> lines;
    std::vector<std::pair<Complex, Complex>> ends;
    for (const LineSinkString& s : m_.line_sinks)
      for (const LineSinkSegment& g : s.segments) {
        if (!std::isfinite(std::abs(g.from) + std::abs(g.to)) || std::abs(g.to - g.from) <= tolerance_)
          continue;
        lines.push_back({g.from, g.to, &s, &g,
                         s.kind != LineSinkKind::kDischarge && !(s.resistance > 0.0 && s.width > 0.0)});
        ends.emplace_back(g.from, g.to);
      }
    const detail::SegmentIndex index(ends);
    std::vector<int> found;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      Box box;
      box.Add(lines[i].a);
      box.Add(lines[i].b);
      box.Grow(tolerance_);
      index.Find(box, &found);
      for (int j : found)
        if (j > int(i)) ComparePair(lines[i], lines[j]);
    }
  }

  bool Overlap(const Line& p, const Line& q) const {
    const Complex along = (p.b - p.a) / std::abs(p.b - p.a);
    if (std::abs(detail::Cross(along, q.a - p.a)) > 2.0 * tolerance_ ||
        std::abs(detail::Cross(along, q.b - p.a)) > 2.0 * tolerance_)
      return false;
    const double length = std::abs(p.b - p.a), s = detail::Dot(along, q.a - p.a),
                 t = detail::Dot(along, q.b - p.a);
    return std::min(std::max(s, t), length) - std::max(std::min(s, t), 0.0) > 4.0 * tolerance_;
  }

  /// Middle of the part of p that q lies on.
  static Complex OverlapMiddle(const Line& p, const Line& q) {
    const Complex along = p.b - p.a;
    const double s = detail::Dot(q.a - p.a, along) / std::norm(along),
                 t = detail::Dot(q.b - p.a, along) / std::norm(along);
    const double low = std::clamp(std::min(s, t), 0.0, 1.0), high = std::clamp(std::max(s, t), 0.0, 1.0);
    return p.a + 0.5 * (low + high) * along;
  }

  bool SharesEnd(const Line& p, const Line& q) const {
    for (Complex u : {p.a, p.b})
      for (Complex v : {q.a, q.b})
        if (std::abs(u - v) <= 4.0 * tolerance_) return true;
    return false;
  }

  void ComparePair(const Line& p, const Line& q) {
    const std::string name = p.segment->origin.label;
    if (Overlap(p, q)) {
      if (p.by_head && q.by_head)
        Fatal(q.segment->origin, "The line-sink lies on line-sink " + name + " near " +
                                     PlaceText(OverlapMiddle(p, q)) +
                                     " and both give a head there: delete one.");
      else
        Warn(q.segment->origin,
             "The line-sink lies on line-sink " + name + " near " + PlaceText(OverlapMiddle(p, q)) + ".");
      return;
    }
    if (!p.by_head || !q.by_head) return;
    const bool far_heads = std::abs(p.segment->value - q.segment->value) > 1e-9;
    if (SharesEnd(p, q)) return;
    if (const auto meeting = detail::Meet(p.a, p.b, q.a, q.b); meeting && far_heads)
      Warn(q.segment->origin,
           "The line-sink crosses line-sink " + name + " at " +
               PlaceText(p.a + meeting->on_first * (p.b - p.a)) +
               ", which has another head: give both a vertex with one head at the crossing.");
  }

  /// What is no ring is refused, or, where leaving it out changes nothing, left out.
  void CheckRing(const Origin& at, const std::vector<LabelledPoint>& ring, const char* what, bool needed) {
    CheckRepeated(ring, what);
    for (const LabelledPoint& p : ring)
      if (!Finite(p.origin, {p.at.real(), p.at.imag()})) return;
    const std::vector<Complex> points = detail::CleanRing(ring, tolerance_);
    if (detail::EnclosesArea(points, tolerance_)) return CheckSelfCrossing(at, points, true, what);
    const std::string text = std::string("The ") + what + " encloses no area";
    if (needed) {
      Fatal(at, text + ": give it three vertices or more, or delete it.");
    } else {
      Warn(at, text + ": it is left out.  Give it three vertices or more, or delete it.");
    }
  }

  void CheckRepeated(const std::vector<LabelledPoint>& points, const char* what) {
    for (std::size_t i = 1; i < points.size(); ++i)
      if (std::abs(points[i].at - points[i - 1].at) <= tolerance_)
        Warn(points[i].origin, std::string("A vertex of the ") + what + " is repeated at " +
                                   PlaceText(points[i].at) + ": it is counted once.");
  }

  void CheckSelfCrossing(const Origin& at, const std::vector<Complex>& points, bool closed,
                         const char* what) {
    std::vector<std::pair<Complex, Complex>> edges;
    const std::size_t n = points.size();
    for (std::size_t i = 0; i + (closed ? 0 : 1) < n; ++i) edges.emplace_back(points[i], points[(i + 1) % n]);
    const detail::SegmentIndex index(edges);
    std::vector<int> found;
    const std::size_t count = edges.size();
    for (std::size_t i = 0; i < count; ++i) {
      Box box;
      box.Add(edges[i].first);
      box.Add(edges[i].second);
      index.Find(box, &found);
      for (int j : found) {
        if (j <= int(i) || std::size_t(j) == i + 1 || (closed && i == 0 && std::size_t(j) == count - 1))
          continue;
        const Line p{edges[i].first, edges[i].second, nullptr, nullptr, false};
        const Line q{edges[j].first, edges[j].second, nullptr, nullptr, false};
        if (!detail::Meet(p.a, p.b, q.a, q.b) && !Overlap(p, q)) continue;
        Fatal(at, std::string("The ") + what + " crosses or touches itself: move its vertices.");
        return;
      }
    }
  }

  void CheckDomains() {
    for (const Domain& d : m_.domains) {
      if (!Finite(d.origin, {d.conductivity, d.base, d.average_head, d.recharge_sink, d.porosity})) continue;
      if (d.conductivity != kNotSet && d.conductivity <= 0.0)
        Fatal(d.origin, "The domain's hydraulic conductivity must be above zero.");
      if (d.porosity != kNotSet && (d.porosity <= 0.0 || d.porosity > 1.0))
        Fatal(d.origin, "The domain's porosity must be above zero and not above one.");
      if (d.base != kNotSet && d.base >= m_.aquifer.base + m_.aquifer.thickness)
        Fatal(d.origin, "The domain's base is not below the aquifer's top.");
      CheckRing(d.origin, d.ring, "domain", false);
    }
    std::map<std::vector<std::pair<double, double>>, const Domain*> known;
    for (const Domain& d : m_.domains) {
      std::vector<std::pair<double, double>> key;
      for (const LabelledPoint& p : d.ring) key.emplace_back(p.at.real(), p.at.imag());
      std::sort(key.begin(), key.end());
      const auto [other, added] = known.try_emplace(std::move(key), &d);
      if (added) continue;
      const Domain& o = *other->second;
      const bool fight = (d.conductivity != kNotSet && o.conductivity != kNotSet) ||
                         (d.base != kNotSet && o.base != kNotSet) ||
                         (d.porosity != kNotSet && o.porosity != kNotSet);
      if (fight)
        Fatal(d.origin, "The domain has the same ring as domain " + o.origin.label +
                            " and sets the same property: delete one.");
    }
  }

  void CheckWalls() {
    for (const Wall& w : m_.walls) {
      if (!Finite(w.origin, {w.conductivity, w.thickness, w.porosity, w.bottom})) continue;
      if (w.conductivity < 0.0) Fatal(w.origin, "The wall's conductivity must not be below zero.");
      if (w.conductivity > 0.0 && w.thickness <= 0.0)
        Fatal(w.origin, "The thickness of a wall that leaks must be above zero.");
      if (w.bottom != kNotSet) Warn(w.origin, "The wall has a bottom: it is taken as of full depth.");
      if (w.kind != WallKind::kOpen) {
        CheckRing(w.origin, w.points, "closed wall", true);
        continue;
      }
      CheckRepeated(w.points, "wall");
      std::vector<Complex> points;
      for (const LabelledPoint& p : w.points)
        if (points.empty() || std::abs(points.back() - p.at) > tolerance_) points.push_back(p.at);
      if (points.size() < 2)
        Warn(w.origin, "The wall has fewer than two different vertices: it is left out.");
      else
        CheckSelfCrossing(w.origin, points, false, "wall");
    }
    CheckSharedWalls();
  }

  /// Where walls lie on each other there is one, with one conductivity over thickness.
  void CheckSharedWalls() {
    std::vector<Line> lines;
    std::vector<std::pair<Complex, Complex>> ends;
    std::vector<int> owner;
    for (std::size_t w = 0; w < m_.walls.size(); ++w) {
      const std::vector<LabelledPoint>& points = m_.walls[w].points;
      const std::size_t n = points.size();
      for (std::size_t i = 0; i + (m_.walls[w].kind == WallKind::kOpen ? 1 : 0) < n; ++i) {
        const Complex a = points[i].at, b = points[(i + 1) % n].at;
        if (!std::isfinite(std::abs(a) + std::abs(b)) || std::abs(b - a) <= tolerance_) continue;
        lines.push_back({a, b, nullptr, nullptr, false});
        ends.emplace_back(a, b);
        owner.push_back(int(w));
      }
    }
    const detail::SegmentIndex index(ends);
    std::set<std::pair<int, int>> told;
    std::vector<int> found;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      Box box;
      box.Add(lines[i].a);
      box.Add(lines[i].b);
      index.Find(box, &found);
      for (int j : found) {
        if (owner[j] <= owner[i] || !Overlap(lines[i], lines[j])) continue;
        if (told.insert({owner[i], owner[j]}).second) CompareWalls(m_.walls[owner[i]], m_.walls[owner[j]]);
      }
    }
  }

  void CompareWalls(const Wall& first, const Wall& second) {
    const bool same = first.conductivity == second.conductivity &&
                      (first.conductivity == 0.0 || first.thickness == second.thickness);
    if (same)
      Say(Severity::kNote, second.origin,
          "The wall lies partly on wall " + first.origin.label + ": there they count as one.");
    else
      Fatal(second.origin,
            "The wall lies partly on wall " + first.origin.label +
                ", which has another conductivity or thickness: give both the same, or let only "
                "one run there.");
  }

  const Model& m_;
  double tolerance_ = 0.0;
  std::vector<Finding> findings_;
};

}  // namespace

std::vector<Finding> Validate(const Model& model) {
  return Validator(model).Run();
}

}  // namespace aem
