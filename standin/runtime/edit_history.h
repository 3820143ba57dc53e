#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "civil/reversible_change.h"
#include "runtime/open_drawing.h"

namespace lvx::runtime {

/// What a person changed in an open drawing, to be undone and redone step by step. The drawing counts as unchanged again
/// where steps lead back to what was opened or saved last.
///
///     EditHistory history(drawing);
///     history.make("New profile “Ground”", civil::addingProfile(alignment, "Ground", profile));
///     history.undo();
///     history.redo();
///
/// Changes past the history, by OpenDrawing::edit alone, end it: steps before them can't be undone any more. Corridor
/// sections that a report added are no steps and stay. As for OpenDrawing::edit, no command runs and nobody holds a model
/// object or a pointer into the drawing.
class EditHistory {
 public:
  /// `drawing` outlives it.
  explicit EditHistory(OpenDrawing& drawing) : drawing_(drawing) {}

  /// Makes a change that is called `name` for people; what was undone before can't be redone any more. Gives what it is
  /// about. Throws what the change throws, and nothing is changed then.
  civil::Handle make(std::string name, civil::ReversibleChangePtr change);

  [[nodiscard]] bool canUndo() const;
  [[nodiscard]] bool canRedo() const;
  /// The step that undo() would take back, redo() make again; empty where there is none.
  [[nodiscard]] std::string undoName() const;
  [[nodiscard]] std::string redoName() const;
  /// These give what the step is about; 0, and nothing happens, where there is none.
  civil::Handle undo();
  civil::Handle redo();

 private:
  struct Step {
    std::string name;
    civil::ReversibleChangePtr change;
    std::size_t before = 0;
    std::size_t after = 0;
  };

  OpenDrawing& drawing_;
  std::vector<Step> steps_;
  /// Steps before this one are made, the others undone.
  std::size_t next_ = 0;
};

}  // namespace lvx::runtime
