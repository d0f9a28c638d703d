#include "model/area_runs.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <string_view>
#include <vector>

#include "core/ormel.h"
#include "core/settings.h"
#include "store/database.h"
#include "text/files.h"
#include "text/names.h"

namespace ormel {
namespace {

constexpr std::array kExtensions{".DAT", ".SOL", ".XTR", ".PTH", ".CTR", ".GRD"};

char Base36(int value) {
  return static_cast<char>(value <= 9 ? value + 48 : value + 87);
}

std::string FileOf(const Ormel& ormel, const std::string& stem, std::string_view extension) {
  return JoinPath(ormel.project.OrmelBasePath, stem + std::string(extension));
}

bool AnyFile(const Ormel& ormel, const std::string& stem) {
  return std::any_of(kExtensions.begin(), kExtensions.end(),
                     [&](const char* extension) { return FileExists(FileOf(ormel, stem, extension)); });
}

bool IsRun(const std::string& stem) {
  return IsPlainName(stem) && stem != "NONE";
}

}  // namespace

std::string StemFromClock(const ClockTime& now) {
  std::string stem;
  stem += Base36(now.month);
  stem += Base36(now.day);
  stem += std::to_string(now.year % 100);
  stem += Base36(now.hour);
  stem += std::to_string(now.minute);
  stem += Base36(static_cast<int>(std::nearbyint(now.second / 2.0)));  // half seconds go to the even number
  return stem;
}

std::string FreshStem(const Ormel& ormel, const std::string& present) {
  if (IsRun(present) && !AnyFile(ormel, present)) return present;
  const std::string base = StemFromClock(ormel.clock().Now());
  std::string stem = base;
  for (int number = 1; AnyFile(ormel, stem); ++number) stem = base + "_" + std::to_string(number);
  return stem;
}

void OutdateAreaRun(Ormel& ormel, const std::string& stem) {
  if (!IsRun(stem) || !AnyFile(ormel, stem)) return;
  LeaveAreaRun(ormel, stem);
  ormel.db().Execute("update WHPAs set WHPAText=? where WHPAText=?", {FreshStem(ormel, stem), stem});
}

void LeaveAreaRun(Ormel& ormel, const std::string& stem) {
  std::vector<std::string>& outdated = ormel.solution.outdated_runs;
  const bool known = std::find(outdated.begin(), outdated.end(), stem) != outdated.end();
  if (IsRun(stem) && !known && AnyFile(ormel, stem)) outdated.push_back(stem);
}

void DeleteOutdatedRuns(Ormel& ormel, const std::string& keep) {
  std::erase_if(ormel.solution.outdated_runs, [&](const std::string& stem) {
    if (stem == keep) return false;
    if (ormel.db().Scalar("select count(*) from WHPAs where WHPAText=?", {stem}).AsLong() > 0) return false;
    for (const char* extension : kExtensions) {
      std::error_code ignored;  // most of them do not exist
      std::filesystem::remove(FileOf(ormel, stem, extension), ignored);
    }
    return true;
  });
}

}  // namespace ormel
