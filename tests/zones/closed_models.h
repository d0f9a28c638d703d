// Models whose zones are known in closed form, or by symmetry.
#pragma once

#include "zones/fields.h"

namespace zones_test {

inline constexpr double kPi = std::numbers::pi;

/// A regular polygon with the area of the circle.
inline std::vector<aem::LabelledPoint> Circle(Complex centre, double radius, int sides) {
  const double turn = 2.0 * kPi / sides, r = radius * std::sqrt(turn / std::sin(turn));
  std::vector<aem::LabelledPoint> ring;
  for (int i = 0; i < sides; ++i)
    ring.push_back({{"IN_000001_" + std::to_string(i + 1), 0}, centre + std::polar(r, turn * i)});
  return ring;
}

/// A river along the y axis; water flows to it from the east.
inline aem::Model River(double flow, double discharge, double distance) {
  aem::Model m = Aquifer(0.0);
  m.aquifer.uniform_flow = {-flow, 0.0};
  m.aquifer.reference_point = {0.0, 30000.0};
  AddWell(m, {distance, 0}, discharge);
  aem::LineSinkString river;
  river.origin.label = "LS_000001";
  const std::vector<double> ys{0,   50,  100,  150,  200,  260,  330,  420,
                               550, 750, 1100, 1700, 2600, 4000, 7000, 12000};
  for (std::size_t i = ys.size() - 1; i > 0; --i)
    river.segments.push_back({{"", 0}, {0, -ys[i]}, {0, -ys[i - 1]}, 1e5});
  for (std::size_t i = 0; i + 1 < ys.size(); ++i)
    river.segments.push_back({{"", 0}, {0, ys[i]}, {0, ys[i + 1]}, 1e5});
  for (std::size_t i = 0; i < river.segments.size(); ++i)
    river.segments[i].origin.label = "LS_000001_" + std::to_string(i + 1);
  m.line_sinks.push_back(river);
  return m;
}

struct ClosedModel {
  const char* name;
  aem::Model model;
  std::vector<double> times;
};

/// Those that are drawn.
inline std::vector<ClosedModel> ClosedModels() {
  std::vector<ClosedModel> list;
  const auto add = [&list](const char* name, aem::Model model, std::vector<double> times) -> aem::Model& {
    list.push_back({name, std::move(model), std::move(times)});
    return list.back().model;
  };
  AddWell(add("1 no gradient, a circle", Aquifer(0.0), {365.0, 1825.0, 3650.0}), {0, 0}, 500.0);
  AddWell(add("2 uniform flow", Aquifer(0.004), {365.0, 1095.0, 2190.0}), {0, 0}, 100.0);
  aem::Model& fed = add("3 recharge alone, a circle of Q over N", Aquifer(0.0), {1000.0, 4000.0, 1e5});
  fed.aquifer.reference_point = {9000.0, 0.0};
  AddWell(fed, {0, 0}, 1000.0);
  aem::Domain& ground = fed.domains.emplace_back();
  ground.recharge_sink = -1e-3;
  ground.ring = Circle({0, 0}, 2000.0, 64);
  aem::Model& equal = add("4 two equal wells, a straight divide", Aquifer(0.0), {100.0, 1000.0, 10000.0});
  AddWell(equal, {100, 0}, 500.0);
  AddWell(equal, {-100, 0}, 500.0);
  for (const double part : {0.98, 1.5})
    add(part < 1.0 ? "5 river, just below the critical rate" : "6 river, above the critical rate",
        River(1.0, part * kPi * 200.0, 200.0), {365.0, 1095.0, 2500.0});
  aem::Model& image = add("7 image pair", Aquifer(0.0), {300.0, 700.0, 12000.0});
  AddWell(image, {100, 0}, 500.0);
  AddWell(image, {-100, 0}, -500.0);
  aem::Model& weak = add("8 weak wells between strong ones", Aquifer(0.003, 1.0), {200.0, 1000.0, 3000.0});
  AddWell(weak, {-250, 0}, 900.0);
  AddWell(weak, {250, 30}, 700.0);
  AddWell(weak, {20, 60}, 6.0);
  AddWell(weak, {10, -900}, 8.0);
  return list;
}

}  // namespace zones_test
