#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "advice/report_advice.h"
#include "civil/drawing.h"
#include "host/dialog_window.h"

/// What a report is asked of, read from the controls of its dialog: for front ends whose user works the dialog.
///
///     if (const auto choices = advice::choicesIn(name, window, drawing, index, picked)) show(choices->objects);
namespace lvx::advice {

struct DialogChoices {
  ReportObjects objects;
  Forms forms;
  /// Path of the report files without extension, as typed.
  std::string stem;
};

/// The sites in the order of the dialogs' list: the alignments outside any site first, sites without alignments left out.
/// Points into the drawing.
[[nodiscard]] std::vector<const civil::Site*> siteRows(const civil::Drawing& drawing);

/// The choices that stand in `window`, a report dialog of this name (host/dialog_controls.h) over `drawing`; empty for
/// other dialogs. `index` is the drawing's. `picked`: the points that the user picked last, which the last row of the list
/// of point groups stands for. A list without a chosen row, or with one that the drawing doesn't have, leaves its object
/// null. O(points of the group).
[[nodiscard]] std::optional<DialogChoices> choicesIn(std::string_view dialog, const host::DialogWindow& window,
                                                     const civil::Drawing& drawing, const civil::DrawingIndex& index,
                                                     const std::vector<civil::Handle>& picked);

}  // namespace lvx::advice
