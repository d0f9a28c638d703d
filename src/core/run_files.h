// The files of the outside programs' runs, which lie in the project's model folder (`OrmelBasePath`).
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ormel {

struct Ormel;

/// Full path of a file in the model folder.  A file that stands there under the same name in other capitals
/// is the one meant.
std::string ModelFile(const Ormel& ormel, std::string_view name);
/// Full path of `<stem><extension>` in the model folder, e.g. ".XTR".
std::string StemFile(const Ormel& ormel, std::string_view extension);
/// RemoveLink (text/names.h) for every file that a run of that stem, or any run in the folder, may write.
void RemoveWorkLinks(const Ormel& ormel, std::string_view stem);
/// Why a project should not have this path, as a sentence; empty when it may.  A name that the work files of
/// a model have would be written over by the next solve; some names no folder or no list shows as they are.
std::string FaultOfProjectName(const std::string& path);
/// `stem` when it is a plain name, else the project's own title without its extension.
std::string SafeStem(std::string_view stem, const std::string& project);

/// Deletes the file when it is there; a failure is no error.
void DeleteTolerantly(const std::string& path);

/// Deletes what a program that was killed while it wrote a file of one of these stems has left in the folder:
/// "town.XTR.123.tmp", "town.DAT.123-1.tmp".
void ClearTemporariesOf(const std::string& folder, const std::vector<std::string>& stems);

/// `wanted` as a stem of which no run's files lie in the folder, with a number behind it where they do.
std::string FreeStem(const std::string& folder, std::string_view wanted);

/// Deletes the files of the run of that stem; nothing for an empty stem and for "NONE", which names none.  A
/// file that is missing is no error.
void RemoveRunFiles(const Ormel& ormel, std::string_view stem);

}  // namespace ormel
