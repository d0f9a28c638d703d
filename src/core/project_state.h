// The open project: its file, its bound recordsets and its units.
#pragma once

#include <memory>
#include <string>

namespace ormel {

class Database;
class Recordset;

/// The long-lived recordsets, each on a whole table, used directly by the element procedures.
struct BoundRecordsets {
  std::unique_ptr<Recordset> Vertices, Polygons, Wells, LinesinkStrings, NoFlowStrings, Inho, TestPoints,
      Particles, TextLabels, FluxInspectors, Capzones;
};

struct ProjectState {
  ProjectState();
  ~ProjectState();
  ProjectState(ProjectState&&) noexcept;
  ProjectState& operator=(ProjectState&&) noexcept;

  bool ProjectOpen = false;
  bool no_heads_told = false;  ///< the box about missing head-specified conditions comes once a project
  bool view_edited = false;    ///< open for viewing, with changes that are only in memory
  int connections = 0;         ///< grows whenever a file is opened or closed: which one is it?
  std::string DBName;          ///< full path of the open project; empty before the first
  std::string folder;         ///< the project folder with its final separator; empty before the first project
  std::string unit_suffix;    ///< " m" or " ft", of the map
  bool ComputeMeters = true;  ///< elevations, rates, properties in metres; else feet
  bool BasemapMeters = true;  ///< map distances in metres; else feet
  std::string OrmelBaseName;  ///< stem of the intermediate model files
  std::string OrmelBasePath;  ///< folder of the intermediate model files, no final separator
  std::unique_ptr<Database> db;  ///< the one connection; null while no project is open
  BoundRecordsets bound;
};

}  // namespace ormel
