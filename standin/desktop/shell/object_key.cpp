#include "desktop/shell/object_key.h"

#include <set>
#include <type_traits>
#include <variant>

#include "civil/each_object.h"

namespace lvx::desktop {

std::optional<ObjectKey> keyOf(const runtime::OpenDrawing& drawing, civil::Handle handle) {
  const auto entry = drawing.index().byHandle(handle);
  if (!entry) return std::nullopt;
  ObjectKey key;
  key.kind = entry->kind();
  std::visit(
      [&](const auto* object) {
        if constexpr (std::is_same_v<decltype(object), const civil::Point*>)
          key.number = object->number;
        else
          key.name = object->name;
      },
      entry->object);
  if (entry->alignment != nullptr && key.kind != civil::ObjectKind::Alignment) key.alignment = entry->alignment->name;
  return key;
}

civil::Handle findAgain(const runtime::OpenDrawing& drawing, const ObjectKey& key) {
  if (key.kind == civil::ObjectKind::Point) {
    const civil::Point* const point = drawing.index().pointByNumber(key.number);
    return point == nullptr ? 0 : point->handle;
  }
  civil::Handle found = 0;
  const auto consider = [&](const auto& object) {
    if (found == 0 && object.handle != 0 && object.name == key.name && keyOf(drawing, object.handle) == key)
      found = object.handle;
  };
  civil::eachObject(drawing.drawing(), [&](const auto& object) {
    if constexpr (!std::is_same_v<std::decay_t<decltype(object)>, civil::Point>) consider(object);
    if constexpr (requires { object.lines; }) {
      for (const auto& line : object.lines) consider(line);
    }
  });
  return found;
}

std::vector<civil::Handle> findAgain(const runtime::OpenDrawing& drawing, const std::vector<ObjectKey>& keys) {
  std::set<ObjectKey> wanted(keys.begin(), keys.end());
  std::vector<civil::Handle> found;
  const auto consider = [&](const auto& object) {
    if (wanted.empty() || object.handle == 0) return;
    const std::optional<ObjectKey> key = keyOf(drawing, object.handle);
    if (key && wanted.erase(*key) != 0) found.push_back(object.handle);
  };
  civil::eachObject(drawing.drawing(), [&](const auto& object) {
    if constexpr (!std::is_same_v<std::decay_t<decltype(object)>, civil::Point>) consider(object);
    if constexpr (requires { object.lines; }) {
      for (const auto& line : object.lines) consider(line);
    }
  });
  return found;
}

}  // namespace lvx::desktop
