#include "solver/result_files.h"

#include <any>
#include <filesystem>
#include <system_error>

#include "core/coordinates.h"
#include "core/ormel.h"
#include "core/status.h"
#include "solver/contour_file.h"
#include "solver/path_file.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/files.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

/// Results of many runs are not hoarded: past this many files the cache starts anew.
constexpr std::size_t kMostFiles = 64;

/// A file of the model's own solve; the others are runs of protection areas.
bool IsModelFile(const Ormel& ormel, const std::string& file) {
  return BaseName(file) == ormel.project.OrmelBaseName;
}

/// What moves a point from the origin of the last solve to that of the run which wrote the file.  A run of
/// protection areas has the origin that its own deck names: the model may have been solved on another one
/// since.
MapPoint ShiftOf(const Ormel& ormel, const std::string& file) {
  constexpr std::string_view kKeyword = " modelorigin ";
  constexpr int kHeadLines = 20;
  const std::string deck = GetPathFromFile(file) + BaseName(file) + ".DAT";
  if (IsModelFile(ormel, file) || !FileExists(deck)) return {};
  LineReader reader(deck);
  std::string line;
  for (int i = 0; i < kHeadLines && reader.Next(line); ++i) {
    if (!line.starts_with(kKeyword)) continue;
    const auto items = ParseString(std::string_view(line).substr(kKeyword.size()), ' ');
    if (items.size() < 2) return {};
    return {Val(items[0]) - ormel.window.solved.x_min, Val(items[1]) - ormel.window.solved.y_min};
  }
  return {};
}

MapPoint Moved(MapPoint at, MapPoint shift) {
  return {at.x + shift.x, at.y + shift.y};
}

ReadOutcome ReadPaths(const Ormel& ormel, const std::string& file, PathSet& set) {
  const MapPoint shift = ShiftOf(ormel, file);
  return ReadPathFile(file, [&](const Pathline& path) {
    set.paths.push_back({set.points.size(), path.points.size()});
    set.starts.push_back(path.start);
    for (const PathPoint& point : path.points) {
      set.points.push_back(Moved(MToW(ormel, point.at), shift));
      set.elevations.push_back(point.elevation);
      set.times.push_back(point.time);
    }
  });
}

ReadOutcome ReadContours(const Ormel& ormel, const std::string& file, ContourSet& set) {
  const MapPoint shift = ShiftOf(ormel, file);
  return ReadContourFile(file, [&](const ContourLine& line) {
    set.lines.push_back({line.level, set.points.size(), line.points.size()});
    for (const ModelPoint& point : line.points) set.points.push_back(Moved(MToW(ormel, point), shift));
  });
}

}  // namespace

bool ResultFiles::StampOf(const Ormel& ormel, const std::string& file, Stamp& stamp) {
  std::error_code failure;
  stamp.size = std::filesystem::file_size(file, failure);
  if (failure) return false;
  stamp.changed = std::filesystem::last_write_time(file, failure).time_since_epoch().count();
  if (failure) return false;
  if (IsModelFile(ormel, file)) {
    stamp.origin_x = ormel.window.solved.x_min;
    stamp.origin_y = ormel.window.solved.y_min;
  }
  stamp.convert = BasemapConvert(ormel);
  return true;
}

template <class T, class Read>
std::shared_ptr<const T> ResultFiles::Get(Ormel& ormel, Cache<T>& cache, const std::string& file, Read read) {
  Stamp stamp;
  if (!StampOf(ormel, file, stamp)) {
    cache.erase(file);
    return nullptr;
  }
  if (const auto it = cache.find(file); it != cache.end() && it->second.stamp == stamp)
    return it->second.data;
  if (cache.size() >= kMostFiles) cache.clear();

  auto data = std::make_shared<T>();
  ++reads_;
  const ReadOutcome damage = read(ormel, file, *data);
  if (damage && damage->kind == FileDamage::Kind::kMissing) return nullptr;
  if (damage) faults_.push_back(damage->Message());
  if (damage && damage->kind == FileDamage::Kind::kUnreadable) {
    Note(ormel, damage->Message());
    return nullptr;
  }
  cache[file] = {stamp, data};
  if (damage) Inform(ormel, "Internal Error", damage->Message());
  return data;
}

std::shared_ptr<const PathSet> ResultFiles::Paths(Ormel& ormel, const std::string& file) {
  return Get(ormel, paths_, file, ReadPaths);
}

std::shared_ptr<const ContourSet> ResultFiles::Contours(Ormel& ormel, const std::string& file) {
  return Get(ormel, contours_, file, ReadContours);
}

void ResultFiles::Clear() {
  paths_.clear();
  contours_.clear();
  faults_.clear();
}

ResultFiles& ResultFilesOf(Ormel& ormel) {
  std::any& memory = ormel.form_memory["ResultFiles"];
  if (!memory.has_value()) memory = std::make_shared<ResultFiles>();
  return *std::any_cast<std::shared_ptr<ResultFiles>&>(memory);
}

std::string ResultFileName(const Ormel& ormel, const std::string& stem, const char* extension) {
  return JoinPath(ormel.project.OrmelBasePath, stem + extension);
}

std::vector<std::string> WhpaStems(Ormel& ormel) {
  std::vector<std::string> stems;
  RowReader rows(ormel.db(), "select distinct WHPAText from WHPAs");
  while (rows.Next()) stems.emplace_back(rows.Text(0));
  return stems;
}

}  // namespace ormel
