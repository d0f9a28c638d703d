#include "solver/file_damage.h"

namespace ormel {

std::string FileDamage::Message() const {
  std::string text = file;
  if (line > 0) text += ", line " + std::to_string(line);
  return text + ": " + reason;
}

}  // namespace ormel
