// render
#include <CLI/CLI.hpp>

#include "ormelcmd/options.h"

namespace ormel {

void AddRenderCommand(CLI::App& /*app*/, Program& /*program*/) {}

}  // namespace ormel
