#include "analysis/solver_listing.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "core/ormel.h"
#include "solver/outside_programs.h"
#include "text/files.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kBalance = "Water balance", kErrors = "Largest errors";
constexpr std::string_view kShare = "error over throughflow", kComparison = "for comparison";

/// A run on the saved solution lists it anew under the name of its own deck.
std::string NewestListing(const Ormel& ormel) {
  std::string newest;
  fs::file_time_type time{};
  for (const std::string& path : {StemFile(ormel, ".OUT"), ModelFile(ormel, "REGRID.OUT")}) {
    std::error_code error;
    const fs::file_time_type written = fs::last_write_time(path, error);
    if (error || (!newest.empty() && written <= time)) continue;
    newest = path;
    time = written;
  }
  return newest;
}

/// "  wells        1.2E+03": the name, and the number behind the last blank.
std::optional<ListedNumber> NumberOf(std::string_view line) {
  line = Trim(line);
  const std::size_t blank = line.rfind(' ');
  if (blank == std::string_view::npos || !IsNumeric(line.substr(blank))) return std::nullopt;
  return ListedNumber{std::string(Trim(line.substr(0, blank))), Val(line.substr(blank))};
}

/// "  head along line-sinks   1.2E-05 at LS_000012_0101"
std::optional<ListedError> ErrorOf(std::string_view line) {
  line = Trim(line);
  if (line.starts_with(kComparison)) return std::nullopt;
  ListedError error;
  if (const std::size_t at = line.rfind(" at "); at != std::string_view::npos) {
    error.where = Trim(line.substr(at + 4));
    line = line.substr(0, at);
  }
  const std::optional<ListedNumber> number = NumberOf(line);
  if (!number) return std::nullopt;
  error.condition = number->name;
  error.largest = number->value;
  return error;
}

void ReadSections(SolverListing& listing) {
  LineReader lines(listing.file);
  std::string_view section;
  for (std::string line; lines.Next(line);) {
    if (!line.starts_with(" ")) {
      section = line.starts_with(kBalance) ? kBalance : line.starts_with(kErrors) ? kErrors : "";
    } else if (section == kErrors) {
      if (auto error = ErrorOf(line)) listing.errors.push_back(std::move(*error));
    } else if (section == kBalance) {
      auto number = NumberOf(line);
      if (!number) continue;
      if (number->name == kShare) {
        listing.balance_error = number->value;
      } else {
        listing.balance.push_back(std::move(*number));
      }
    }
  }
}

void ReadWarnings(const std::string& path, SolverListing& listing) {
  listing.has_log = FileExists(path);
  if (!listing.has_log) return;
  LineReader lines(path);
  for (std::string line; lines.Next(line);) {
    const std::string_view text = Trim(line);
    if (!text.empty() && text != "*") listing.warnings.push_back(ToUtf8(text));
  }
}

}  // namespace

SolverListing ReadListing(Ormel& ormel) {
  SolverListing listing;
  listing.file = NewestListing(ormel);
  if (!listing.file.empty()) ReadSections(listing);
  ReadWarnings(ModelFile(ormel, "ERROR.LOG"), listing);
  return listing;
}

}  // namespace ormel
