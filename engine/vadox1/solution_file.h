// The saved solution: the whole model, the state of its solution and the deck's origin in one binary file.
//
// Layout, all numbers in the byte order of the machine that wrote it:
//   8 bytes   "ORMELSOL"
//   uint32    0x01020304, reads differently on a machine of the other byte order
//   uint32    version of the layout
//   uint64    bytes of the payload
//   uint64    checksum of the payload (FNV-1a, 64 bits)
//   payload   origin, time, model, state of the engine
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "aem/model.h"
#include "vadox1/deck.h"

namespace vadox1 {

inline constexpr unsigned kSolutionVersion = 2;

struct SavedSolution {
  MapOrigin origin;
  double time = 0.0;
  aem::Model model;
  std::vector<std::byte> state;
};

/// Why a file is no usable solution, in a sentence without the file's name.
class SolutionFileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

std::string PackSolution(const SavedSolution& solution);

/// Throws SolutionFileError for a foreign, cut, damaged, newer or other-endian file.  Never reads past the
/// end and allocates nothing larger than the text itself can fill.
SavedSolution UnpackSolution(std::string_view bytes);

}  // namespace vadox1
