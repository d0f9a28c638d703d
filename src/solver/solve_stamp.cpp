#include "solver/solve_stamp.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <optional>
#include <string_view>
#include <vector>

#include "core/layers.h"
#include "core/ormel.h"
#include "core/result_items.h"
#include "core/run_files.h"
#include "core/status.h"
#include "document/fingerprint.h"
#include "model/validity.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/files.h"
#include "text/names.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr std::string_view kHeading = "* Ormel solve stamp 2";
constexpr const char* kStampExtension = ".RUN";

/// Fowler, Noll and Vo's hash of 64 bits, variant 1a.
class Hash {
 public:
  void Add(std::string_view text) {
    for (const char c : text) {
      value_ ^= static_cast<unsigned char>(c);
      value_ *= 1099511628211ULL;
    }
  }
  std::uint64_t value() const { return value_; }

 private:
  std::uint64_t value_ = 14695981039346656037ULL;
};

template <class T>
std::string Exactly(T value, int base = 10) {
  std::array<char, 64> text{};
  std::to_chars_result end{};
  if constexpr (std::is_floating_point_v<T>) {
    end = std::to_chars(text.data(), text.data() + text.size(), value);
  } else {
    end = std::to_chars(text.data(), text.data() + text.size(), value, base);
  }
  return {text.data(), end.ptr};
}

/// "<bytes> <hash>" of a file, "-" when it is not there.
std::string ContentOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return "-";
  Hash hash;
  std::uint64_t size = 0;
  std::vector<char> buffer(1U << 16U);
  while (in.read(buffer.data(), static_cast<std::streamsize>(buffer.size())), in.gcount() > 0) {
    const auto count = static_cast<std::size_t>(in.gcount());
    hash.Add({buffer.data(), count});
    size += count;
  }
  return Exactly(size) + " " + Exactly(hash.value(), 16);
}

struct Wanted {
  bool contours = false, paths = false;
};

Wanted ReadWanted(Ormel& ormel) {
  RowReader model(ormel.db(), "select CONTOURShow,TRACECompute from Model");
  if (!model.Next()) return {};
  return {model.Long(0) != 0, model.Long(1) != 0};
}

std::vector<std::string_view> FilesOfRun(const Wanted& wanted) {
  std::vector<std::string_view> files{".XTR"};
  if (wanted.contours) files.insert(files.end(), {".GRD", ".CTR"});
  if (wanted.paths) files.push_back(".PTH");
  return files;
}

std::string HashText(std::string_view text) {
  Hash hash;
  hash.Add(text);
  return Exactly(hash.value(), 16);
}

std::string SumOf(const std::vector<std::string>& lines) {
  std::string all;
  for (const std::string& line : lines) all += line + "\n";
  return "sum " + HashText(all);
}

/// What a stamp says.
struct Stamp {
  std::string project;          ///< title of the project's file
  std::uint64_t model = 0;      ///< that was solved
  std::uint64_t made_with = 0;  ///< model when the results were made
  Fingerprint settings;         ///< when the results were made
  Extents solved;
  std::vector<std::string> files;  ///< "<extension> <bytes> <hash>"
};

std::string FileLine(const Ormel& ormel, std::string_view extension) {
  return std::string(extension) + " " + ContentOf(StemFile(ormel, extension));
}

std::vector<std::string> LinesOf(const Stamp& stamp) {
  const auto hex = [](std::uint64_t value) { return " " + Exactly(value, 16); };
  std::vector<std::string> lines{
      std::string(kHeading), "project " + stamp.project, "model" + hex(stamp.model),
      "made with" + hex(stamp.made_with) + hex(stamp.settings.contours) + hex(stamp.settings.paths) +
          hex(stamp.settings.rerun),
      "extents " + Exactly(stamp.solved.x_min) + " " + Exactly(stamp.solved.x_max) + " " +
          Exactly(stamp.solved.y_min) + " " + Exactly(stamp.solved.y_max)};
  for (const std::string& file : stamp.files) lines.push_back("file " + file);
  lines.push_back(SumOf(lines));
  return lines;
}

std::uint64_t Hex(const std::string& text) {
  std::uint64_t value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value, 16);
  return value;
}

std::vector<std::string> ReadLines(const std::string& path) {
  constexpr std::size_t kMost = 20;
  std::vector<std::string> lines;
  try {
    LineReader in(path);
    for (std::string line; lines.size() < kMost && in.Next(line);) lines.push_back(line);
  } catch (const FileError&) {
    lines.clear();
  }
  return lines;
}

/// Nothing for a stamp of which a byte is not as it was written.
std::optional<Stamp> ParseStamp(std::vector<std::string> lines) {
  constexpr std::size_t kFixed = 5;
  if (lines.size() <= kFixed || lines[0] != kHeading) return std::nullopt;
  const std::string sum = lines.back();
  lines.pop_back();
  if (sum != SumOf(lines)) return std::nullopt;
  const auto model = ParseString(lines[2], ' ');
  const auto made = ParseString(lines[3], ' ');
  const auto extents = ParseString(lines[4], ' ');
  constexpr std::string_view kProject = "project ";
  if (!lines[1].starts_with(kProject) || model.size() != 2 || made.size() != 6 || extents.size() != 5)
    return std::nullopt;
  Stamp stamp;
  stamp.project = lines[1].substr(kProject.size());
  stamp.model = Hex(model[1]);
  stamp.made_with = Hex(made[2]);
  stamp.settings = {0, Hex(made[3]), Hex(made[4]), Hex(made[5])};
  stamp.solved = {Val(extents[1]), Val(extents[2]), Val(extents[3]), Val(extents[4])};
  for (std::size_t i = kFixed; i < lines.size(); ++i)
    stamp.files.push_back(lines[i].substr(std::min<std::size_t>(lines[i].size(), 5)));
  return stamp;
}

struct Read {
  bool exists = false;
  std::optional<Stamp> stamp;
};

Read ReadStamp(const Ormel& ormel) {
  const std::string path = StemFile(ormel, kStampExtension);
  if (!FileExists(path)) return {};
  return {true, ParseStamp(ReadLines(path))};
}

const std::string* LineOf(const Stamp& stamp, std::string_view extension) {
  for (const std::string& file : stamp.files)
    if (file.starts_with(std::string(extension) + " ")) return &file;
  return nullptr;
}

/// The reason why the stamp does not stand for the open project; empty when it does.
std::string Judge(Ormel& ormel, const Read& read, bool& older) {
  if (!read.exists) return "the project has not been solved yet";
  if (!read.stamp) return StemFile(ormel, kStampExtension) + " is damaged";
  const Stamp& stamp = *read.stamp;
  const Fingerprint now = FingerprintOf(ormel);
  older = stamp.model != now.solution;
  if (stamp.made_with != now.solution) {
    if (stamp.project != FileTitle(ormel.project.DBName))
      return "the files of \"" + ormel.project.OrmelBaseName + "\" are those of the project " + stamp.project;
    return "the model has been changed since it was solved";
  }
  if (stamp.settings != Fingerprint{0, now.contours, now.paths, now.rerun})
    return "the settings of contours, paths or observations have been changed since the results were made";
  for (const std::string_view extension : FilesOfRun(ReadWanted(ormel))) {
    const std::string file = StemFile(ormel, extension);
    if (!FileExists(file)) return file + " is missing";
    const std::string* line = LineOf(stamp, extension);
    if (line == nullptr || *line != FileLine(ormel, extension)) return file + " is not that of the solve";
  }
  for (const std::string& line : stamp.files) {
    const std::string extension = line.substr(0, line.find(' '));
    const std::string file = StemFile(ormel, extension);
    if (FileExists(file) && line != FileLine(ormel, extension)) return file + " is not that of the solve";
  }
  return {};
}

}  // namespace

void WriteSolveStamp(Ormel& ormel) {
  const SolutionState& solution = ormel.solution;
  const Fingerprint now = FingerprintOf(ormel);
  Stamp stamp;
  stamp.project = FileTitle(ormel.project.DBName);
  stamp.model = solution.solved ? solution.solved->model.solution : now.solution;
  stamp.made_with = now.solution;
  stamp.settings = {0, now.contours, now.paths, now.rerun};
  stamp.solved = ormel.window.solved;
  if (FileExists(StemFile(ormel, ".SOL"))) stamp.files.push_back(FileLine(ormel, ".SOL"));
  for (const std::string_view extension : FilesOfRun(ReadWanted(ormel)))
    stamp.files.push_back(FileLine(ormel, extension));
  RemoveLink(StemFile(ormel, kStampExtension));
  TextFileWriter out(StemFile(ormel, kStampExtension));
  for (const std::string& line : LinesOf(stamp)) out.Line(line);
  out.Commit();
}

std::string WhyNotSolved(Ormel& ormel, bool* older) {
  bool is_older = false;
  const std::string reason = Judge(ormel, ReadStamp(ormel), is_older);
  if (older != nullptr) *older = is_older;
  return reason;
}

std::uint64_t ModelOfSavedSolution(Ormel& ormel) {
  const Read read = ReadStamp(ormel);
  if (!read.stamp) return 0;
  const std::string* line = LineOf(*read.stamp, ".SOL");
  return line != nullptr && *line == FileLine(ormel, ".SOL") ? read.stamp->model : 0;
}

std::string OtherOwnerOfStem(Ormel& ormel) {
  const Read read = ReadStamp(ormel);
  if (!read.stamp || read.stamp->project == FileTitle(ormel.project.DBName)) return {};
  const std::string& title = read.stamp->project;
  if (title != FileTitle(title)) return {};
  const bool stands = FileExists(JoinPath(ormel.project.OrmelBasePath, title)) ||
                      FileExists(JoinPath(ormel.project.folder, title));
  return stands ? title : std::string();
}

void JudgeSolution(Ormel& ormel) {
  SolutionState& solution = ormel.solution;
  if (!solution.ValidSolution || !solution.solved) return;
  solution.OfOlderModel = solution.solved->model.solution != FingerprintOf(ormel).solution;
  NoteSolution(ormel);
}

std::string RestoreSolve(Ormel& ormel) {
  const Read read = ReadStamp(ormel);
  bool older = false;
  if (std::string reason = Judge(ormel, read, older); !reason.empty()) return reason;
  ormel.window.solved = read.stamp->solved;
  ormel.window.model = ormel.window.solved;
  ormel.db().Execute("update Model set SOLVERX0=?, SOLVERY0=?",
                     {ormel.window.solved.x_min, ormel.window.solved.y_min});
  const Wanted wanted = ReadWanted(ormel);
  SolutionState& solution = ormel.solution;
  solution.ValidSolution = true;
  solution.GridValid = solution.ContoursValid = wanted.contours;
  solution.PathlinesValid = wanted.paths;
  Fingerprint solved = FingerprintOf(ormel);
  solved.solution = read.stamp->model;
  solution.solved = SolvedModel{solved, wanted.contours, wanted.contours, wanted.paths};
  solution.OfOlderModel = older;
  SetLayer(ormel, Layer::kContours, wanted.contours);
  SetLayer(ormel, Layer::kPathlines, wanted.paths);
  SetLayer(ormel, Layer::kTestPoints, ormel.db().RowCount("TestPoints") > 0);
  EnableResultItems(ormel, true);
  return {};
}

}  // namespace ormel
