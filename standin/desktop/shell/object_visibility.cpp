#include "desktop/shell/object_visibility.h"

#include <utility>

namespace lvx::desktop {

void ObjectVisibility::setDrawing(runtime::OpenDrawingRef drawing) {
  drawing_ = std::move(drawing);
  visibility_ = {};
}

std::vector<civil::Handle> ObjectVisibility::drawnFor(civil::Handle handle) const {
  const auto entry = drawing_ ? drawing_->index().byHandle(handle) : std::nullopt;
  if (!entry) return {};
  std::vector<civil::Handle> drawn;
  if (const auto* const site = entry->as<civil::Site>()) {
    for (const auto& alignment : site->alignments) {
      drawn.push_back(alignment->handle);
      for (const civil::SampleLineGroup& group : alignment->sampleLineGroups)
        for (const civil::SampleLine& line : group.lines) drawn.push_back(line.handle);
    }
  } else if (const auto* const group = entry->as<civil::SampleLineGroup>()) {
    for (const civil::SampleLine& line : group->lines) drawn.push_back(line.handle);
  } else if (const auto* const points = entry->as<civil::PointGroup>()) {
    for (const std::int32_t number : points->numbers)
      if (const civil::Point* const point = drawing_->index().pointByNumber(number)) drawn.push_back(point->handle);
  } else if (entry->as<civil::ProfileObject>() == nullptr) {
    drawn.push_back(handle);
  }
  return drawn;
}

void ObjectVisibility::setShown(const std::vector<civil::Handle>& handles, bool isShown) {
  std::vector<civil::Handle> drawn;
  for (const civil::Handle handle : handles) {
    const std::vector<civil::Handle> more = drawnFor(handle);
    drawn.insert(drawn.end(), more.begin(), more.end());
  }
  if (isShown ? visibility_.show(drawn) : visibility_.hide(drawn)) Q_EMIT changed();
}

void ObjectVisibility::showAll() {
  if (visibility_.showAll()) Q_EMIT changed();
}

bool ObjectVisibility::isHidden(civil::Handle handle) const {
  return visibility_.hidesAny() && view::shownOf(visibility_, drawnFor(handle)) == view::Shown::None;
}

ObjectVisibility::Kept ObjectVisibility::kept() const {
  Kept kept;
  if (!drawing_) return kept;
  for (const civil::Handle handle : visibility_.hidden()) {
    const auto entry = drawing_->index().byHandle(handle);
    if (!entry) continue;
    if (const auto* const point = entry->as<civil::Point>())
      kept.points.push_back(point->number);
    else if (auto key = keyOf(*drawing_, handle))
      kept.objects.push_back(std::move(*key));
  }
  return kept;
}

void ObjectVisibility::hideAgain(const Kept& kept) {
  if (!drawing_) return;
  std::vector<civil::Handle> handles = findAgain(*drawing_, kept.objects);
  for (const std::int32_t number : kept.points)
    if (const civil::Point* const point = drawing_->index().pointByNumber(number)) handles.push_back(point->handle);
  if (visibility_.hide(handles)) Q_EMIT changed();
}

}  // namespace lvx::desktop
