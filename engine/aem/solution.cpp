#include "aem/solution.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "aem/field/answers.h"
#include "aem/system/system.h"

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
  std::uint64_t orders = 0;
};

/// Writes or reads arrays one after another.
template <typename T>
void Put(std::vector<std::byte>* bytes, const T* from, std::size_t count) {
  if (count == 0) return;
  const std::size_t at = bytes->size();
  bytes->resize(at + count * sizeof(T));
  std::memcpy(bytes->data() + at, from, count * sizeof(T));
}

/// False: there is less than that.
template <typename T>
bool Take(std::span<const std::byte>* bytes, std::uint64_t count, std::vector<T>* to) {
  if (count > bytes->size() / sizeof(T)) return false;
  to->resize(count);
  if (count > 0) std::memcpy(to->data(), bytes->data(), count * sizeof(T));
  *bytes = bytes->subspan(count * sizeof(T));
  return true;
}

}  // namespace

std::vector<std::byte> Solution::SaveState() const {
  const detail::System& s = *system_;
  const std::vector<unsigned char> orders = s.SaveOrders();
  const StateHeader header{s.x.size(), s.iterations_done, s.converged ? 1 : 0,
                           s.time,     s.flags.size(),    orders.size()};
  std::vector<std::byte> bytes;
  Put(&bytes, &header, 1);
  Put(&bytes, s.x.data(), s.x.size());
  Put(&bytes, s.flags.data(), s.flags.size());
  Put(&bytes, orders.data(), orders.size());
  return bytes;
}

bool Solution::LoadState(std::span<const std::byte> bytes) {
  detail::System& s = *system_;
  std::vector<StateHeader> header;
  std::vector<double> x;
  std::vector<unsigned char> flags, orders;
  if (s.refused || !Take(&bytes, 1, &header) || !Take(&bytes, header[0].unknowns, &x) ||
      !Take(&bytes, header[0].flags, &flags) || !Take(&bytes, header[0].orders, &orders) || !bytes.empty())
    return false;
  if (flags.size() != s.flags.size() ||
      !std::all_of(x.begin(), x.end(), [](double v) { return std::isfinite(v); }))
    return false;
  const std::vector<unsigned char> before = s.SaveOrders();
  if (!s.LoadOrders(orders)) return false;
  if (orders != before) {
    const std::vector<double> x_before = s.x;
    const std::vector<unsigned char> flags_before = s.flags;
    s.Rebuild();
    if (s.x.size() != x.size()) {
      s.LoadOrders(before);
      s.Rebuild();
      s.x = x_before;
      s.flags = flags_before;
      s.SetCoefficients();
      s.PrepareField();
      return false;
    }
  }
  if (s.x.size() != x.size()) return false;
  s.x = std::move(x);
  s.flags = std::move(flags);
  s.iterations_done = int(header[0].iterations);
  s.converged = header[0].converged != 0;
  s.time = header[0].time;
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

void Solution::PrepareManyPoints() {
  system_->PrepareManyPoints();
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
