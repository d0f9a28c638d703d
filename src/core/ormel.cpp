#include "core/ormel.h"

#include <stdexcept>

#include "store/database.h"
#include "store/recordset.h"

namespace ormel {

ProjectState::ProjectState() = default;
ProjectState::~ProjectState() = default;
ProjectState::ProjectState(ProjectState&&) noexcept = default;
ProjectState& ProjectState::operator=(ProjectState&&) noexcept = default;

CommandState::CommandState() = default;
CommandState::~CommandState() = default;

Database& Ormel::db() const {
  if (project.db == nullptr) throw std::logic_error("no project is open");
  return *project.db;
}

std::string VersionText() {
  return std::to_string(kVersionMajor) + "." + std::to_string(kVersionMinor) + "." +
         std::to_string(kVersionRevision);
}

}  // namespace ormel
