#include "shell/recent_projects.h"

#include <algorithm>
#include <stdexcept>

#include "core/ormel.h"
#include "core/settings.h"

namespace ormel {
namespace {

std::string Key(int number) {
  return "Recent" + std::to_string(number);
}

}  // namespace

std::vector<std::string> RecentProjects(const Ormel& ormel) {
  std::vector<std::string> paths;
  for (int number = 1; number <= kRecentProjects; ++number) {
    std::string path = ormel.settings().GetSetting(Key(number), "");
    if (!path.empty()) paths.push_back(std::move(path));
  }
  return paths;
}

void RememberProject(Ormel& ormel, const std::string& path) {
  std::vector<std::string> paths = RecentProjects(ormel);
  if (!paths.empty() && paths.front() == path) return;
  std::erase(paths, path);
  paths.insert(paths.begin(), path);
  paths.resize(std::min<std::size_t>(paths.size(), kRecentProjects));
  try {
    for (std::size_t i = 0; i < paths.size(); ++i)
      ormel.settings().SaveSetting(Key(static_cast<int>(i) + 1), paths[i]);
  } catch (const std::runtime_error&) {
    // The list is a convenience; the project is open.
  }
  ormel.menus.Check("RECENT", 0, !ormel.menus.Checked("RECENT", 0));  // the captions have changed
  ormel.menus.Check("RECENT", 0, false);
}

}  // namespace ormel
