// The subcommands: each adds itself to the command line and leaves what to do in `Program::run`.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/types.h"
#include "ormelcmd/session.h"

namespace CLI {
class App;
}

namespace ormel {

struct Program {
  CommonOptions common;
  std::function<int()> run;  ///< set by the subcommand that was given; its exit code
};

void AddProjectCommands(CLI::App& app, Program& program);  ///< new, set, window
void AddCareCommands(CLI::App& app, Program& program);     ///< update, check
void AddElementCommands(CLI::App& app, Program& program);  ///< add ...
void AddListCommands(CLI::App& app, Program& program);     ///< list ..., delete ...
void AddSetKinds(CLI::App& set, Program& program);         ///< set of elements
void AddSolveCommands(CLI::App& app, Program& program);    ///< solve, deck
void AddRenderCommand(CLI::App& app, Program& program);
void AddWhpaCommands(CLI::App& app, Program& program);      ///< whpa ...
void AddQueryCommands(CLI::App& app, Program& program);     ///< sql, results
void AddBaseMapCommands(CLI::App& app, Program& program);   ///< basemap ...
void AddFeatureCommands(CLI::App& app, Program& program);   ///< import-features, export geopackage
void AddAnalysisCommands(CLI::App& app, Program& program);  ///< calibration, observe, report
void AddExchangeCommands(CLI::App& app, Program& program);  ///< import ..., export ...

/// Switches the layers that a map shows when nobody names any.
void ShowUsualLayers(Ormel& ormel, bool solved);

/// "12.5,-3": two numbers.  Throws UserError naming `what`.
MapPoint ParsePoint(const std::string& text, const std::string& what);
/// Points separated by blanks or semicolons, in one text or several.
std::vector<MapPoint> ParsePoints(const std::vector<std::string>& texts, const std::string& what);
/// "left,bottom,right,top"
MapRect ParseWindow(const std::string& text);
/// "#RRGGBB"
Color ParseColor(const std::string& text);

}  // namespace ormel
