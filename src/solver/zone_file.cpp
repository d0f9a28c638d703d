#include "solver/zone_file.h"

#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>

#include "solver/guarded_read.h"
#include "text/strings.h"

namespace ormel {
namespace {

/// The words of a line, one after the other.
class Words {
 public:
  explicit Words(std::string_view text) : text_(text) {}

  std::string_view Next() {
    const std::size_t begin = text_.find_first_not_of(' ', at_);
    if (begin == std::string_view::npos) return {};
    const std::size_t end = std::min(text_.find(' ', begin), text_.size());
    at_ = end;
    return text_.substr(begin, end - begin);
  }
  std::string_view Rest() const { return Trim(text_.substr(std::min(at_, text_.size()))); }

  /// A finite number that is the whole of the next word.
  bool Number(double& value) {
    const std::string_view word = Next();
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    return error == std::errc() && end == word.data() + word.size() && !word.empty() && std::isfinite(value);
  }
  bool Count(int& value) {
    double number = 0.0;
    if (!Number(number) || number < 0.0 || number > 1e8 || number != std::floor(number)) return false;
    value = static_cast<int>(number);
    return true;
  }

 private:
  std::string_view text_;
  std::size_t at_ = 0;
};

class Reader {
 public:
  Reader(LineReader& lines, std::vector<WellOutlines>& wells) : lines_(lines), wells_(wells) {}

  ReadOutcome Read() {
    std::string line;
    while (lines_.Next(line)) {
      if (done_) return DamageAt(lines_, "there are lines behind the end mark");
      if (line.empty() || line.front() == '*') continue;
      if (const char* fault = ReadLine(line)) return DamageAt(lines_, fault);
    }
    if (!done_) return DamageAt(lines_, "the file ends before its end mark");
    return std::nullopt;
  }

 private:
  /// What is wrong with the line; null when all is well.
  const char* ReadLine(std::string_view line) {
    Words words(line);
    const std::string_view keyword = words.Next();
    if (keyword == "WELL") return ReadWell(words);
    if (keyword == "DONE") {
      done_ = true;
      return nullptr;
    }
    if (wells_.empty()) return "it stands before the first well";
    if (keyword == "ENDS") return ReadEnd(words);
    if (keyword == "ZONE") return ReadZone(words);
    if (keyword == "RING") return ReadRing(words);
    if (keyword == "REFUSED") {
      wells_.back().refused = words.Rest();
      return wells_.back().refused.empty() ? "a refusal has no reason" : nullptr;
    }
    return "the line is none that a file of capture zones has";
  }

  const char* ReadWell(Words& words) {
    WellOutlines well;
    if (!words.Number(well.at.x) || !words.Number(well.at.y) || !words.Number(well.discharge))
      return "the well has fewer than three numbers";
    well.label = words.Rest();
    wells_.push_back(std::move(well));
    return nullptr;
  }

  const char* ReadEnd(Words& words) {
    int count = 0;
    if (!words.Count(count)) return "the count of paths is no number";
    wells_.back().ends.emplace_back(words.Rest(), count);
    return nullptr;
  }

  const char* ReadZone(Words& words) {
    ZoneOutline zone;
    for (double* value : {&zone.time, &zone.area, &zone.pumped, &zone.pores, &zone.recharge, &zone.surface,
                          &zone.edge, &zone.left_out, &zone.shared, &zone.balance})
      if (!words.Number(*value)) return "the zone has fewer than ten numbers";
    wells_.back().zones.push_back(std::move(zone));
    return nullptr;
  }

  const char* ReadRing(Words& words) {
    int count = 0;
    if (wells_.back().zones.empty()) return "a ring stands before its zone";
    if (!words.Count(count) || count < 3) return "a ring has fewer than three points";
    std::vector<ModelPoint> ring;
    std::string line;
    for (int i = 0; i < count; ++i) {
      ModelPoint point;
      if (!lines_.Next(line)) return "the file ends inside a ring";
      Words numbers(line);
      if (!numbers.Number(point.x) || !numbers.Number(point.y)) return "the point has fewer than two numbers";
      ring.push_back(point);
    }
    wells_.back().zones.back().rings.push_back(std::move(ring));
    return nullptr;
  }

  LineReader& lines_;
  std::vector<WellOutlines>& wells_;
  bool done_ = false;
};

}  // namespace

ReadOutcome ReadZoneFile(const std::string& path, std::vector<WellOutlines>& wells) {
  wells.clear();
  return ReadGuarded(path, [&](LineReader& lines) { return Reader(lines, wells).Read(); });
}

}  // namespace ormel
