// The elements of a snapshot, for the files that read them.
#pragma once

#include "solver/input.h"
#include "solver/vertex_table.h"

namespace ormel {

void ReadDomains(Ormel& ormel, const VertexTable& vertices, SolverInput& input);
void ReadWalls(Ormel& ormel, const VertexTable& vertices, SolverInput& input);
void ReadWells(Ormel& ormel, SolverInput& input);
void ReadStrings(Ormel& ormel, const VertexTable& vertices, SolverInput& input);

}  // namespace ormel
