// The connection and the bound recordsets of the open project.
#pragma once

#include <string>

namespace ormel {

struct Ormel;

/// Opens the file for writing as the controller's one connection, and reads from it what the controller
/// keeps: path and folder, base name and path, units.  Throws StoreError; the controller is then as it was.
/// With `view` a copy in memory of it: nothing that is done reaches the file or its model files.
void AttachProject(Ormel& ormel, const std::string& path, bool view = false);
/// The open project is a copy for viewing.
bool Viewing(const Ormel& ormel);
/// Reads `OrmelBaseName`, `OrmelBasePath` and the units again, after a dialog has changed them.  A relative
/// path is seen from the project's folder.
void ReadProjectState(Ormel& ormel);
/// A folder as a project may name it: relative to the project's own, "." for itself; without final separator.
std::string ProjectFolder(const Ormel& ormel, const std::string& name);
/// Opens the eleven bound recordsets, in their order.
void LoadDataControls(Ormel& ormel);
/// Closes the bound recordsets and the connection; what the present command has written is committed first.
void DetachProject(Ormel& ormel);

}  // namespace ormel
