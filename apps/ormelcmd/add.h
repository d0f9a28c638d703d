// What the kinds of the subcommand `add` share.  Each element passes the checks of its dialog and is stored
// by the procedure that the dialog uses.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/form.h"
#include "ormelcmd/options.h"

namespace ormel {

/// What all kinds have; a kind uses what its options fill.
struct Given {
  std::string path, label, color;
  std::vector<std::string> points;
};

/// Presses OK of a dialog that has been filled; a refusal has printed its box.
void PassDialog(Form& form);

/// The point of --at.
MapPoint OnePoint(const Given& given);
/// The points of --points; `what` names the kind that needs `least` of them.
std::vector<MapPoint> Chain(const Given& given, std::size_t least, const char* what);

/// A line that the solver could not use.  Throws UserError.
void RefuseCrossing(const std::vector<MapPoint>& points, bool closed);
/// A place for a single point that overlaps no vertex, as the window finds it; one that moved is told.
MapPoint FreePlace(Session& session, MapPoint at);

/// Opens the project and adds by `body`, all or nothing.
int AddTo(const CommonOptions& common, const Given& given, const std::function<void(Session&)>& body);

/// A subcommand of `add` with its project; `body` runs with the options as given.
template <class Options>
void Define(CLI::App* command, Program& program, const std::shared_ptr<Options>& given,
            void (*body)(Session&, const Options&)) {
  command->add_option("project", given->path, "The project")->required();
  command->callback([&program, given, body] {
    program.run = [&program, given, body] {
      return AddTo(program.common, *given, [given, body](Session& session) { body(session, *given); });
    };
  });
}

/// --at with one point, --points with several, --color.
void PointOption(CLI::App* command, Given& given, const char* text);
void PointsOption(CLI::App* command, Given& given);
void ColorOption(CLI::App* command, Given& given, const char* text);

// The kinds.
void DefineWell(CLI::App& add, Program& program);
void DefineBarrier(CLI::App& add, Program& program);
void DefineInhomogeneity(CLI::App& add, Program& program);
void DefineLinesink(CLI::App& add, Program& program);
void DefineUniformFlow(CLI::App& add, Program& program);
void DefineParticles(CLI::App& add, Program& program);
void DefineTestPoint(CLI::App& add, Program& program);
void DefineFluxLine(CLI::App& add, Program& program);
void DefineCaptureZone(CLI::App& add, Program& program);
void DefineText(CLI::App& add, Program& program);

}  // namespace ormel
