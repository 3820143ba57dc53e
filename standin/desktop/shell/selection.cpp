#include "desktop/shell/selection.h"

#include <utility>

namespace lvx::desktop {

namespace {

const civil::AlignmentObject* firstAlignment(const civil::Drawing& drawing) {
  for (const civil::Site& site : drawing.sites)
    if (!site.alignments.empty()) return site.alignments.front().get();
  return drawing.siteless.alignments.empty() ? nullptr : drawing.siteless.alignments.front().get();
}

}  // namespace

void Selection::setDrawing(runtime::OpenDrawingRef drawing) {
  drawing_ = std::move(drawing);
  handle_ = 0;
  alignment_ = drawing_ ? firstAlignment(drawing_->drawing()) : nullptr;
}

void Selection::select(civil::Handle handle, const QObject* from) {
  const auto entry = entryOf(handle);
  handle_ = entry ? handle : 0;
  if (entry && entry->alignment != nullptr) alignment_ = entry->alignment;
  Q_EMIT changed(from);
}

std::optional<civil::DrawingEntry> Selection::entryOf(civil::Handle handle) const {
  return drawing_ ? drawing_->index().byHandle(handle) : std::nullopt;
}

std::vector<civil::Handle> Selection::shown() const {
  const auto entry = entryOf(handle_);
  if (!entry) return {};
  std::vector<civil::Handle> handles;
  if (const auto* const site = entry->as<civil::Site>()) {
    for (const auto& alignment : site->alignments) handles.push_back(alignment->handle);
  } else if (const auto* const group = entry->as<civil::SampleLineGroup>()) {
    for (const civil::SampleLine& line : group->lines) handles.push_back(line.handle);
  } else if (const auto* const points = entry->as<civil::PointGroup>()) {
    for (const std::int32_t number : points->numbers)
      if (const civil::Point* const point = drawing_->index().pointByNumber(number)) handles.push_back(point->handle);
  } else if (entry->as<civil::ProfileObject>() != nullptr) {
    handles.push_back(entry->alignment->handle);
  } else {
    handles.push_back(handle_);
  }
  return handles;
}

}  // namespace lvx::desktop
