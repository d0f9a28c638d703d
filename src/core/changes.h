// What a command has changed, told to those who asked for it.
//
// A command (core/command.h) is one transaction and leaves one record, without rows when it changed none.
// Views, panels, menus, an index or a history subscribe and bring themselves up to date; what a record means
// in terms of the model is told in document/record.h.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "store/change_log.h"

namespace ormel {

struct ChangeRecord {
  std::string command;  ///< the name of the outermost command
  std::vector<RowChange> rows;
  /// The command closed or opened a project: rows tells nothing, everything is to be read anew.
  bool project_replaced = false;

  bool Touches(std::string_view table) const;
};

class ChangeListener {
 public:
  virtual ~ChangeListener() = default;
  /// At the end of a command, behind its transaction.
  virtual void CommandEnded(const ChangeRecord& record) = 0;
};

/// The subscribers of the running program.  They outlive their subscription and are told in its order.
class ChangeFeed {
 public:
  void Subscribe(ChangeListener& listener);
  void Unsubscribe(ChangeListener& listener);
  bool empty() const { return listeners_.empty(); }
  void Tell(const ChangeRecord& record) const;

  /// The tables whose rows are watched in every project that is opened from now on.
  std::vector<std::string> tables;

 private:
  std::vector<ChangeListener*> listeners_;
};

}  // namespace ormel
