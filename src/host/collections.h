#pragma once

#include <cstdint>

#include "host/model.h"

namespace lvx::host {

/// Visits the objects of a collection in its order until `visit` answers false. Nothing where the host has no
/// collection; a reference that it leaves empty is passed over. Each object is released before the next is asked for.
template <class T, class Visit>
void forEachObject(const Ref<QmtCollection<T>>& collection, Visit visit) {
  if (!collection) return;
  const std::int32_t count = collection->count();
  for (std::int32_t i = 0; i < count; ++i)
    if (const Ref<T> object = collection->item(i); object && !visit(object)) return;
}

/// The first object of exactly that name, or an empty reference.
template <class T>
[[nodiscard]] Ref<T> firstNamed(const Ref<QmtCollection<T>>& collection, const CString& name) {
  Ref<T> found;
  forEachObject(collection, [&](const Ref<T>& object) {
    if (object->name() == name) found = object;
    return !found;
  });
  return found;
}

}  // namespace lvx::host
