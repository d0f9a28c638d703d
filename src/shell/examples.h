// The examples that come with the program, which users work on as copies of their own.
#pragma once

#include <string>
#include <string_view>

namespace ormel {

struct Ormel;

/// The user's folder for documents, as the desktop says; else "Documents" or the home folder itself.  Empty
/// when there is no home.
std::string DocumentsFolder(const Ormel& ormel);

/// Opens the copy of an example in the folder "Ormel Examples" of the user's documents.  One that is there
/// already is opened as the user left it.  A copy that cannot be made is told, and nothing is opened.
void OpenExample(Ormel& ormel, std::string_view path);

}  // namespace ormel
