#include "basemaps/world_file.h"

#include <string_view>
#include <vector>

#include "text/files.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

struct Row {
  std::string_view image, world;
};
/// In the order of trial.  "rs" gives the image's own name, which old projects know.
constexpr Row kRows[] = {{"bil", "blw"},  {"bip", "bpw"},  {"bmp", "bmpw"},  {"bsq", "bqw"},  {"gis", "gsw"},
                         {"jpg", "jpgw"}, {"jpg", "jgw"},  {"jpeg", "jpgw"}, {"jpeg", "jgw"}, {"lan", "lnw"},
                         {"ras", "rsw"},  {"rlc", "rcw"},  {"rs", "rs"},     {"sid", "sdw"},  {"sun", "snw"},
                         {"tif", "tfw"},  {"tiff", "tfw"}, {"tff", "tfw"}};
constexpr std::size_t kLineWidth = 24;

}  // namespace

bool WorldFileExists(const std::string& image, std::string& extension) {
  const std::size_t dot = image.rfind('.');
  if (dot == std::string::npos) return false;
  const std::string kind = FoldCase(image.substr(dot + 1));
  for (const Row& row : kRows)
    if (row.image == kind && FileExists(image.substr(0, dot + 1) + std::string(row.world))) {
      extension = row.world;
      return true;
    }
  return false;
}

void WriteWorldFile(const std::string& name, double a, double d, double e, double f) {
  TextFileWriter file(name);
  for (const double value : {a, 0.0, 0.0, d, e, f}) {
    std::string line(Trim(NumberText(value)));
    if (line.size() < kLineWidth) line.resize(kLineWidth, ' ');
    file.Line(line);
  }
  file.Commit();
}

std::optional<std::array<double, 6>> ReadWorldFile(const std::string& image) {
  std::string extension;
  if (!WorldFileExists(image, extension)) return std::nullopt;
  const std::string name = image.substr(0, image.rfind('.') + 1) + extension;
  if (name == image) return std::nullopt;
  std::vector<double> values;
  try {
    LineReader file(name);
    std::string line;
    while (values.size() < 6 && file.Next(line)) {
      const std::string_view text = Trim(line);
      if (!IsNumeric(text)) return std::nullopt;
      values.push_back(Val(text));
    }
  } catch (const FileError&) {
    return std::nullopt;
  }
  if (values.size() < 6 || values[0] * values[3] - values[1] * values[2] == 0.0) return std::nullopt;
  const double a = values[0], d = values[1], b = values[2], e = values[3];
  return std::array{values[4] - (a + b) / 2.0, a, b, values[5] - (d + e) / 2.0, d, e};
}

}  // namespace ormel
