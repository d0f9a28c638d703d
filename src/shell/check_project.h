// What is wrong with a project, told and mended.
#pragma once

#include <string>
#include <vector>

#include "document/check.h"

namespace ormel {

struct Ormel;

/// Everything that is wrong with the open project, domains that cross themselves among it.
std::vector<Fault> FaultsOfProject(Ormel& ormel);

/// Keeps a copy "<name>.checked.orm" and mends what can be mended; gives the copy's path.  Throws StoreError.
std::string MendProject(Ormel& ormel);

/// "Check Project": tells what is wrong and offers to mend it.
void CheckProject(Ormel& ormel);

/// Tells that the project's file is damaged and offers to make it anew of every row that can still be read;
/// true when that was done.
bool OfferSalvage(Ormel& ormel, const std::string& path, const std::string& refusal);

}  // namespace ormel
