#include "document/history.h"

#include <utility>

#include "document/record.h"

namespace ormel {

void History::Clear() {
  steps_.clear();
  position_ = 0;
  open_ = false;
}

void History::Add(std::vector<RowChange> rows, bool open) {
  if (!rows.empty()) {
    if (!open_) {
      steps_.resize(position_);  // another future
      steps_.emplace_back();
      ++position_;
      open_ = true;
    }
    steps_.back().parts.push_back(std::move(rows));
  }
  if (!open) Close();
}

void History::Close() {
  if (!std::exchange(open_, false)) return;
  UndoStep& step = steps_.back();
  std::vector<RowChange> joined = Joined(step.parts);
  step.parts.clear();
  step.parts.push_back(std::move(joined));
  if (!step.parts.front().empty()) return;
  steps_.pop_back();  // began and given up
  --position_;
}

const std::vector<RowChange>* History::LastPart() const {
  if (!open_ || steps_.back().parts.size() < 2) return nullptr;
  return &steps_.back().parts.back();
}

void History::DropLastPart() {
  steps_.back().parts.pop_back();
}

const UndoStep* History::ToUndo() const {
  return open_ || position_ == 0 ? nullptr : &steps_[position_ - 1];
}

const UndoStep* History::ToRedo() const {
  return open_ || position_ == steps_.size() ? nullptr : &steps_[position_];
}

UndoStep* History::Unnamed() {
  if (open_ || steps_.empty() || !steps_.back().name.empty()) return nullptr;
  return &steps_.back();
}

}  // namespace ormel
