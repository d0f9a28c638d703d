#include "solver/deck_export.h"

#include <optional>
#include <string_view>

#include "core/command.h"
#include "core/directory_memory.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/validity.h"
#include "solver/element_deck.h"
#include "solver/extents.h"
#include "solver/text_sink.h"
#include "text/files.h"

namespace ormel {
namespace {

constexpr std::string_view kExportPathKey = "Default Export Vadox path";

std::optional<std::string> AskForDeckName(Ormel& ormel) {
  FileDialog dialog;
  dialog.save = true;
  dialog.title = "Write Vadox Input File";
  dialog.default_extension = "DAT";
  dialog.filter = "Vadox Input Files|*.DAT";
  dialog.directory = ReadDefaultDirectory(ormel, kExportPathKey);
  auto path = ormel.ui().Ask(dialog);
  if (path && !path->empty()) WriteDefaultDirectory(ormel, kExportPathKey, GetPathFromFile(*path));
  return path;
}

}  // namespace

void ToolsExportVadox(Ormel& ormel, const std::string& FileName) {
  const Named named(ormel, "ToolsExportVadox");
  std::string path = FileName;
  if (path.empty()) path = AskForDeckName(ormel).value_or("");
  if (path.empty()) return;
  if (FileExists(path) &&
      !AskYesNo(ormel, "File Exists",
                Lines({"File " + path + " already exists.", "Do you want to overwrite it?"}),
                Icon::kQuestion))
    return;
  ModelCheckExtents(ormel, false, false);
  InvalidateSolution(ormel, false, true);
  const PleaseWait wait(ormel, "Writing Data to Solver...");
  TextFileWriter file(path);  // an old file stands until the new one is complete
  FileSink deck(file);
  for (const std::string& line :
       {DeckHeadLine(), std::string(" Error Error.Log"), std::string(" yes"), std::string(" Message nul"),
        std::string(" echo con"), std::string(" quit")})
    deck.Line(line);
  ToolsWriteVadoxElements(ReadSolverInput(ormel), deck, true);
  for (const char* line : {" switch", " error con", " message con", " echo off", " input con"})
    deck.Line(line);
  file.Commit();
}

}  // namespace ormel
