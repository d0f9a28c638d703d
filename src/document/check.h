// What is wrong with a project, in words, and what can be mended.
#pragma once

#include <string>
#include <vector>

#include "core/types.h"

namespace ormel {

class Database;

struct Fault {
  std::string text;  ///< what is wrong, with the names of the elements
  std::string mend;  ///< what mending does; "" where only the user can
};

/// Looks at every table; changes nothing.
std::vector<Fault> FindFaults(Database& db);
/// Mends what can be mended.  Inside a transaction, and after a copy of the project was kept.
void MendFaults(Database& db);

/// A domain as it is stored, for those who look at its shape.
struct StoredRing {
  std::string label;
  std::vector<MapPoint> points;
};
std::vector<StoredRing> StoredDomains(Database& db);

}  // namespace ormel
