// Pathlines and contours of the result files, kept in memory while the files stand unchanged.
//
// A file is known by its name, size and time of change, and by the solver's origin and units, so that panning
// and zooming never read the disk again.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/types.h"

namespace ormel {

struct Ormel;

/// All paths of a file, one after the other in flat arrays.
struct PathSet {
  struct Path {
    std::size_t first, count;
  };
  std::vector<Path> paths;
  std::vector<MapPoint> points;
  std::vector<double> elevations;     ///< [computation length]
  std::vector<double> times;          ///< since the start [d]
  std::vector<std::string> starts{};  ///< the START line of each path
};

struct ContourSet {
  struct Line {
    double level;  ///< [computation length]
    std::size_t first, count;
  };
  std::vector<Line> lines;
  std::vector<MapPoint> points;
};

class ResultFiles {
 public:
  /// Null when the file cannot be opened.  A damaged file gives what came before the damage, and one box that
  /// names file and line for each state of the file.
  std::shared_ptr<const PathSet> Paths(Ormel& ormel, const std::string& file);
  std::shared_ptr<const ContourSet> Contours(Ormel& ormel, const std::string& file);
  void Clear();
  /// What could not be read as a whole so far: a picture of it is not the picture of the results.
  const std::vector<std::string>& faults() const { return faults_; }
  /// Files read from the disk so far.
  long reads() const { return reads_; }

 private:
  struct Stamp {
    std::uintmax_t size = 0;
    std::int64_t changed = 0;
    double origin_x = 0.0, origin_y = 0.0, convert = 1.0;
    friend bool operator==(const Stamp&, const Stamp&) = default;
  };
  template <class T>
  struct Entry {
    Stamp stamp;
    std::shared_ptr<const T> data;
  };
  template <class T>
  using Cache = std::map<std::string, Entry<T>>;

  static bool StampOf(const Ormel& ormel, const std::string& file, Stamp& stamp);
  template <class T, class Read>
  std::shared_ptr<const T> Get(Ormel& ormel, Cache<T>& cache, const std::string& file, Read read);

  Cache<PathSet> paths_;
  Cache<ContourSet> contours_;
  std::vector<std::string> faults_;
  long reads_ = 0;
};

/// The files of the open project; they are kept with the program's state.
ResultFiles& ResultFilesOf(Ormel& ormel);

/// Full name of a file of the run: the folder of the intermediate files, the stem and the extension.
std::string ResultFileName(const Ormel& ormel, const std::string& stem, const char* extension);
/// Stems of the runs of the wellhead protection areas, each once.
std::vector<std::string> WhpaStems(Ormel& ormel);

}  // namespace ormel
