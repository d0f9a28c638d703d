#include "aem/solution.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "aem/answers.h"
#include "aem/system.h"

namespace aem {

Solution::Solution(Model model, Options options)
    : system_(std::make_unique<detail::System>(std::move(model), options)) {}
Solution::~Solution() = default;
Solution::Solution(Solution&&) noexcept = default;
Solution& Solution::operator=(Solution&&) noexcept = default;

const Model& Solution::GetModel() const {
  return system_->model;
}
const std::vector<Finding>& Solution::Findings() const {
  return system_->findings;
}
bool Solution::Refused() const {
  return system_->refused;
}
std::size_t Solution::Unknowns() const {
  return system_->x.size();
}

IterationReport Solution::Iterate(int asked, const ProgressCallback& progress) {
  IterationReport report = system_->Iterate(asked, progress);
  system_->PrepareField();
  return report;
}

namespace {
struct StateHeader {
  std::uint64_t unknowns = 0;
  std::int64_t iterations = 0;
  std::int64_t converged = 0;
  double time = 0.0;
  std::uint64_t flags = 0;
};
}  // namespace

std::vector<std::byte> Solution::SaveState() const {
  const detail::System& s = *system_;
  const StateHeader header{s.x.size(), s.iterations_done, s.converged ? 1 : 0, s.time, s.flags.size()};
  std::vector<std::byte> bytes(sizeof header + s.x.size() * sizeof(double) + s.flags.size());
  std::memcpy(bytes.data(), &header, sizeof header);
  std::memcpy(bytes.data() + sizeof header, s.x.data(), s.x.size() * sizeof(double));
  if (!s.flags.empty())
    std::memcpy(bytes.data() + sizeof header + s.x.size() * sizeof(double), s.flags.data(), s.flags.size());
  return bytes;
}

bool Solution::LoadState(std::span<const std::byte> bytes) {
  detail::System& s = *system_;
  StateHeader header;
  if (s.refused || bytes.size() < sizeof header) return false;
  std::memcpy(&header, bytes.data(), sizeof header);
  if (header.unknowns != s.x.size() || header.flags != s.flags.size() ||
      bytes.size() != sizeof header + s.x.size() * sizeof(double) + s.flags.size())
    return false;
  std::vector<double> x(s.x.size());
  std::memcpy(x.data(), bytes.data() + sizeof header, x.size() * sizeof(double));
  for (double v : x)
    if (!std::isfinite(v)) return false;
  s.x = std::move(x);
  if (!s.flags.empty())
    std::memcpy(s.flags.data(), bytes.data() + sizeof header + s.x.size() * sizeof(double), s.flags.size());
  s.iterations_done = int(header.iterations);
  s.converged = header.converged != 0;
  s.time = header.time;
  s.SetCoefficients();
  s.PrepareField();
  return true;
}

void Solution::SetTime(double days) {
  system_->time = days;
}
double Solution::Time() const {
  return system_->time;
}

PointState Solution::At(Complex point) const {
  return system_->State(point);
}

void Solution::Evaluate(std::span<const Complex> points, std::span<PointState> states) const {
  detail::ParallelFor(system_->options.threads, points.size(), [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) states[i] = system_->State(points[i]);
  });
}

PointState Solution::AtElevation(Complex point, double elevation, double* vertical) const {
  *vertical = 0.0;
  PointState state = At(point);
  if (state.status == PointStatus::kOk) detail::AddPartialWells(*system_, point, elevation, &state, vertical);
  return state;
}

double Solution::HeadOf(Complex point, double potential) const {
  return potential > 0.0 && !Refused() ? system_->ZoneAt(point, {}).Head(potential) : kNotSet;
}

double Solution::HeadRange() const {
  return detail::HeadRange(*system_);
}

SinkHit Solution::NearestSink(Complex point, double distance) const {
  return detail::NearestSink(*system_, point, distance);
}
Crossing Solution::FirstCrossing(Complex from, Complex to) const {
  return detail::FirstCrossing(*system_, from, to);
}
double Solution::SinkDensity(int string, int segment, double position) const {
  return detail::SinkDensity(*system_, string, segment, position);
}
bool Solution::Percolates(int string, int segment, double position) const {
  return detail::Percolates(*system_, string, segment, position);
}

std::vector<WellResult> Solution::Wells() const {
  return detail::WellResults(*system_);
}
std::vector<WellResult> Solution::PartialWells() const {
  return detail::PartialWellResults(*system_);
}
std::vector<WellResult> Solution::TheisWells() const {
  return detail::TheisResults(*system_);
}
std::vector<DiskResult> Solution::Disks() const {
  return detail::DiskResults(*system_);
}
std::vector<StringResult> Solution::LineSinks() const {
  return detail::StringResults(*system_);
}
std::vector<DomainResult> Solution::Domains() const {
  return detail::DomainResults(*system_);
}
std::vector<WallResult> Solution::Walls() const {
  return detail::WallResults(*system_);
}

double Solution::Flux(std::span<const Complex> line) const {
  double sum = 0.0;
  for (std::size_t i = 0; i + 1 < line.size(); ++i) sum += detail::Flux(*system_, line[i], line[i + 1]);
  return sum;
}

Checks Solution::Check() const {
  return detail::Check(*system_);
}
Balance Solution::WaterBalance() const {
  return detail::WaterBalance(*system_);
}

}  // namespace aem
