#pragma once

#include <string>

#include "civil/drawing.h"
#include "landxml/detail/file_editor.h"
#include "landxml/detail/file_terms.h"

namespace lvx::landxml::detail {

/// Finds where what `drawing` has of one of its files differs from `stored`, which `trace` tells the places of, and hands
/// the edits to `editor`. Handles of `stored` and `trace` are the drawing's. Throws SaveError where the drawing's objects
/// aren't those of the file, and for a change that the file can't hold.
void writeChanges(const civil::Drawing& drawing, const civil::Drawing& stored, const Trace& trace,
                  const FileTerms& terms, FileEditor& editor, const std::string& path);

}  // namespace lvx::landxml::detail
