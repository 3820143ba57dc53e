#pragma once

#include "civil/drawing.h"
#include "host/model.h"
#include "host/roadway_model.h"
#include "runtime/open_drawing.h"

/// The civil object model over an open drawing. Every object holds the drawing it came from, so it answers for as long
/// as somebody holds it; texts cross from UTF-8 to wide and back without loss.
///
///     auto document = makeDocument(drawing);
///     document->surfaces()->item(L"Ground")->sampleElevations(0, 0, 10, 0);
namespace lvx::runtime {

[[nodiscard]] host::Ref<host::QmtDocument> makeDocument(const OpenDrawingRef& drawing);
[[nodiscard]] host::Ref<host::QmtDatabase> makeDatabase(const OpenDrawingRef& drawing);
[[nodiscard]] host::Ref<host::QmtAlignment> makeAlignment(const OpenDrawingRef& drawing,
                                                          const civil::AlignmentObject& alignment);
/// Of no profile: an object that answers 0 everywhere.
[[nodiscard]] host::Ref<host::QmtProfile> makeProfile(const OpenDrawingRef& drawing,
                                                      const civil::ProfileObject* profile);

/// The drawing's alignment behind a model object; null for an empty reference and for an object that isn't ours.
[[nodiscard]] const civil::AlignmentObject* alignmentBehind(const host::QmtAlignment* alignment);

/// Handle text: upper-case hexadecimal; empty for no handle.
[[nodiscard]] host::CString handleTextOf(civil::Handle handle);

}  // namespace lvx::runtime
