#include "shell/solve_stamp.h"

#include <array>
#include <charconv>
#include <fstream>
#include <optional>
#include <string_view>
#include <vector>

#include "core/ormel.h"
#include "document/fingerprint.h"
#include "model/validity.h"
#include "solver/outside_programs.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/files.h"
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

std::string ModelText(const Fingerprint& model) {
  return Exactly(model.solution, 16) + " " + Exactly(model.contours, 16) + " " + Exactly(model.paths, 16) +
         " " + Exactly(model.rerun, 16);
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

std::vector<std::string> StampLines(Ormel& ormel, const Extents& solved) {
  std::vector<std::string> lines{std::string(kHeading), "model " + ModelText(FingerprintOf(ormel)),
                                 "extents " + Exactly(solved.x_min) + " " + Exactly(solved.x_max) + " " +
                                     Exactly(solved.y_min) + " " + Exactly(solved.y_max)};
  for (const std::string_view extension : FilesOfRun(ReadWanted(ormel)))
    lines.push_back("file " + std::string(extension) + " " + ContentOf(StemFile(ormel, extension)));
  return lines;
}

std::vector<std::string> ReadStamp(const std::string& path) {
  std::vector<std::string> lines;
  if (!FileExists(path)) return lines;
  try {
    LineReader in(path);
    for (std::string line; lines.size() < 20 && in.Next(line);) lines.push_back(line);
  } catch (const FileError&) {
    lines.clear();
  }
  return lines;
}

std::optional<Extents> ExtentsIn(const std::vector<std::string>& stamp) {
  if (stamp.size() < 3 || stamp[0] != kHeading) return std::nullopt;
  const std::vector<std::string> words = ParseString(stamp[2], ' ');
  if (words.size() != 5 || words[0] != "extents") return std::nullopt;
  return Extents{Val(words[1]), Val(words[2]), Val(words[3]), Val(words[4])};
}

/// The reason why the stamp does not stand for the open project; empty when it does.
std::string Judge(Ormel& ormel, const std::vector<std::string>& stamp) {
  if (stamp.empty()) return "the project has not been solved yet";
  const std::optional<Extents> solved = ExtentsIn(stamp);
  if (!solved) return StemFile(ormel, kStampExtension) + " is damaged";
  const std::vector<std::string> now = StampLines(ormel, *solved);
  if (now[1] != stamp[1]) return "the model has been changed since it was solved";
  for (std::size_t i = 3; i < now.size(); ++i) {
    const std::string file = StemFile(ormel, ParseString(now[i], ' ')[1]);
    if (now[i].ends_with(" -")) return file + " is missing";
    if (i >= stamp.size() || now[i] != stamp[i]) return file + " is not that of the solve";
  }
  return {};
}

}  // namespace

void WriteSolveStamp(Ormel& ormel) {
  TextFileWriter out(StemFile(ormel, kStampExtension));
  for (const std::string& line : StampLines(ormel, ormel.window.solved)) out.Line(line);
  out.Commit();
}

std::string WhyNotSolved(Ormel& ormel) {
  return Judge(ormel, ReadStamp(StemFile(ormel, kStampExtension)));
}

std::string RestoreSolve(Ormel& ormel) {
  const std::vector<std::string> stamp = ReadStamp(StemFile(ormel, kStampExtension));
  if (std::string reason = Judge(ormel, stamp); !reason.empty()) return reason;
  ormel.window.solved = *ExtentsIn(stamp);
  ormel.window.model = ormel.window.solved;
  ormel.db().Execute("update Model set SOLVERX0=?, SOLVERY0=?",
                     {ormel.window.solved.x_min, ormel.window.solved.y_min});
  const Wanted wanted = ReadWanted(ormel);
  SolutionState& solution = ormel.solution;
  solution.GridValid = solution.ContoursValid = wanted.contours;
  solution.PathlinesValid = wanted.paths;
  ShowSolution(ormel);
  NoteSolved(ormel, true);
  return {};
}

}  // namespace ormel
