// The command that writes the model as a deck for the user.
#pragma once

#include <string>

namespace ormel {

struct Ormel;

/// Writes a deck with the resistances of scenarios; without a file name it asks for one.  The solution is
/// invalidated; the rows of results stay as they are.
void ToolsExportVadox(Ormel& ormel, const std::string& FileName);

}  // namespace ormel
