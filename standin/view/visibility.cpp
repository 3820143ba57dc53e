#include "view/visibility.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace lvx::view {

using civil::Handle;

namespace {

std::vector<Handle> inOrder(std::span<const Handle> handles) {
  std::vector<Handle> sorted(handles.begin(), handles.end());
  std::sort(sorted.begin(), sorted.end());
  sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
  return sorted;
}

}  // namespace

bool Visibility::isHidden(Handle handle) const { return std::binary_search(hidden_.begin(), hidden_.end(), handle); }

bool Visibility::hide(std::span<const Handle> handles) {
  const std::vector<Handle> more = inOrder(handles);
  std::vector<Handle> all;
  all.reserve(hidden_.size() + more.size());
  std::set_union(hidden_.begin(), hidden_.end(), more.begin(), more.end(), std::back_inserter(all));
  const bool isChanged = all.size() != hidden_.size();
  if (isChanged) hidden_ = std::move(all);
  return isChanged;
}

bool Visibility::show(std::span<const Handle> handles) {
  if (hidden_.empty()) return false;
  const std::vector<Handle> less = inOrder(handles);
  std::vector<Handle> left;
  std::set_difference(hidden_.begin(), hidden_.end(), less.begin(), less.end(), std::back_inserter(left));
  const bool isChanged = left.size() != hidden_.size();
  if (isChanged) hidden_ = std::move(left);
  return isChanged;
}

bool Visibility::showAll() {
  if (hidden_.empty()) return false;
  hidden_ = {};
  return true;
}

Shown shownOf(const Visibility& visibility, std::span<const Handle> handles) {
  if (!visibility.hidesAny() || handles.empty()) return Shown::All;
  const auto hidden = static_cast<std::size_t>(
      std::count_if(handles.begin(), handles.end(), [&](Handle handle) { return visibility.isHidden(handle); }));
  if (hidden == 0) return Shown::All;
  return hidden == handles.size() ? Shown::None : Shown::Some;
}

}  // namespace lvx::view
