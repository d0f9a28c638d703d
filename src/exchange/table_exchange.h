// Import and export of wells, test points and text labels as tables of text (exchange/table_records.h).
#pragma once

#include <cstddef>
#include <string>

#include "exchange/table_records.h"

namespace ormel {

struct Ormel;

/// The menu commands.  Each asks for its file when `path` is empty.  An import is one command: a file that
/// cannot be read, and one whose records the user will not have in part, leave the project as it was, and so
/// does Cancel.
void ToolsImportWL(Ormel& ormel, bool headSpecified, const std::string& path = {});
void ToolsImportTP(Ormel& ormel, const std::string& path = {});
void ToolsImportTX(Ormel& ormel, const std::string& path = {});

/// `index`: 0 discharge specified wells, 1 head specified wells, 2 test points, 3 text labels.
void EXPORTDB(Ormel& ormel, int index, const std::string& path = {});

}  // namespace ormel
