#include "runtime/edit_history.h"

#include <utility>

namespace lvx::runtime {

civil::Handle EditHistory::make(std::string name, civil::ReversibleChangePtr change) {
  const std::size_t before = drawing_.editState();
  drawing_.edit([&](civil::Drawing& drawing) { change->make(drawing); });
  // What the drawing was changed by beside the history can't be gone behind.
  if (next_ > 0 && steps_[next_ - 1].after != before) {
    steps_.clear();
    next_ = 0;
  }
  steps_.erase(steps_.begin() + static_cast<std::ptrdiff_t>(next_), steps_.end());
  steps_.push_back({std::move(name), std::move(change), before, drawing_.editState()});
  ++next_;
  return steps_.back().change->object();
}

bool EditHistory::canUndo() const { return next_ > 0 && steps_[next_ - 1].after == drawing_.editState(); }

bool EditHistory::canRedo() const { return next_ < steps_.size() && steps_[next_].before == drawing_.editState(); }

std::string EditHistory::undoName() const { return canUndo() ? steps_[next_ - 1].name : std::string(); }

std::string EditHistory::redoName() const { return canRedo() ? steps_[next_].name : std::string(); }

civil::Handle EditHistory::undo() {
  if (!canUndo()) return 0;
  Step& step = steps_[next_ - 1];
  drawing_.edit([&](civil::Drawing& drawing) { step.change->undo(drawing); }, step.before);
  --next_;
  return step.change->object();
}

civil::Handle EditHistory::redo() {
  if (!canRedo()) return 0;
  Step& step = steps_[next_];
  drawing_.edit([&](civil::Drawing& drawing) { step.change->make(drawing); }, step.after);
  ++next_;
  return step.change->object();
}

}  // namespace lvx::runtime
