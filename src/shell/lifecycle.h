// Making, opening, duplicating and closing a project.
//
// A project is one file, held open exclusively from FileOpenProject to FileCloseProject.  Whatever goes wrong
// ends in a box that says what happened to which file, and leaves that file as it was.
#pragma once

#include <string>

namespace ormel {

struct Ormel;

/// Asks for a path and the wizard's answers, makes the project and opens it.  A file of that name is replaced
/// only when the new project is complete.
void FileNewProject(Ormel& ormel);

/// Opens the project at `path`; an empty path asks for one.  Ends with the project open, or with none open
/// when the file was refused.  A cancelled file dialog changes nothing.
void FileOpenProject(Ormel& ormel, const std::string& path, bool isNew = false);

/// Copies the open project to another path and goes on with the copy.
void FileSaveAs(Ormel& ormel);

/// Closes the open project: selection, layers, menus, title.  Harmless when none is open.
/// The changes of a project that is open for viewing are lost with it: asks whether to keep them elsewhere.
void OfferToKeepView(Ormel& ormel);
void FileCloseProject(Ormel& ormel);

/// Closes recordsets and connection, wipes the map and resets menus, toolbar and title.
void CloseAll(Ormel& ormel);

/// The dialog of base name, folder, description, units and base maps.
void FileProjectSettings(Ormel& ormel);

/// Commands that need a project, on or off, beside the top menus.
void EnableProjectCommands(Ormel& ormel, bool on);

/// "Ormel - town.orm", or the bare title when no project is open.
void ShowTitle(Ormel& ormel);

}  // namespace ormel
