// Import of the input file of an older protection-area program.
#pragma once

namespace ormel {

struct Ormel;

/// Asks for a file (*.in), makes a project of the same name beside it with the file's first line as its
/// description, and opens it.  Nothing but that title is taken from the file.
void ImportWHPA(Ormel& ormel);

}  // namespace ormel
