// The projects opened last, newest first, kept in the user's settings.
#pragma once

#include <string>
#include <vector>

namespace ormel {

struct Ormel;

inline constexpr int kRecentProjects = 6;

std::vector<std::string> RecentProjects(const Ormel& ormel);
/// Puts a path in front.  Settings that cannot be written are no failure.
void RememberProject(Ormel& ormel, const std::string& path);

}  // namespace ormel
