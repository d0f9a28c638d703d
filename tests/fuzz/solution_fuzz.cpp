// The reader of saved solutions on payloads with a right checksum.  An input is a deck, whose model is
// packed, and behind its first zero byte the changes: pairs of a place (three bytes) and a new byte.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "vadox1/solution_file.h"

namespace {

constexpr std::size_t kHeader = 32;

/// The header's size and checksum as the payload wants them.
void Correct(std::string& bytes) {
  const std::uint64_t size = bytes.size() - kHeader;
  std::uint64_t sum = 14695981039346656037ull;
  for (std::size_t i = kHeader; i < bytes.size(); ++i) {
    sum = (sum ^ static_cast<unsigned char>(bytes[i])) * 1099511628211ull;
  }
  std::memcpy(bytes.data() + 16, &size, sizeof size);
  std::memcpy(bytes.data() + 24, &sum, sizeof sum);
}

void Try(const std::string& bytes) {
  try {
    const vadox1::SavedSolution read = vadox1::UnpackSolution(bytes);
    // What was accepted can be written and read again.
    if (vadox1::PackSolution(vadox1::UnpackSolution(vadox1::PackSolution(read))) !=
        vadox1::PackSolution(read)) {
      std::abort();
    }
  } catch (const vadox1::SolutionFileError&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  Try(std::string(input));
  const std::size_t end = std::min(input.find('\0'), input.size());
  vadox1::SavedSolution saved;
  saved.model = vadox1::ParseDeck(input.substr(0, end)).model;
  saved.state.resize(100);
  std::string bytes = vadox1::PackSolution(saved);
  Try(bytes);
  const std::size_t body = bytes.size() - kHeader;
  // Without changes of its own the input changes a few places by its own bytes.
  const std::string_view changes = end + 4 < input.size() ? input.substr(end) : input.substr(size / 2);
  for (std::size_t i = 0; i + 4 <= changes.size() && i < 64; i += 4) {
    std::uint32_t where = 0;
    std::memcpy(&where, changes.data() + i, 3);
    bytes[kHeader + where % body] = changes[i + 3];
    Correct(bytes);
    Try(bytes);
  }
  bytes.resize(kHeader + body / 2);
  Correct(bytes);
  Try(bytes);
  return 0;
}
