#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>

#include "civil/drawing.h"

/// Names that stand twice among siblings: an object is asked for by its name, so each has one of its own.
namespace lvx::civil {

/// Name of an object in its file, which is what saving writes there.
template <class Object>
[[nodiscard]] const std::string& savedName(const Object& object) {
  return object.nameInFile ? *object.nameInFile : object.name;
}

/// `name`, or the first of "name (2)", "name (3)" and so on that none of `objects` has.
template <class Objects>
[[nodiscard]] std::string freeName(const Objects& objects, const std::string& name) {
  const auto isTaken = [&](const std::string& wanted) {
    return std::any_of(objects.begin(), objects.end(), [&](const auto& object) { return object.name == wanted; });
  };
  std::string free = name;
  for (std::size_t number = 2; isTaken(free); ++number) free = name + " (" + std::to_string(number) + ")";
  return free;
}

/// One object that got another name: the sentence that says so, the object's handle and file.
using TellRenamed = std::function<void(const std::string& text, Handle object, FileNumber file)>;

/// Siblings are the alignments of a site, those outside any site, the profiles and the sample line groups of an alignment,
/// the surfaces, the point groups. The first of a name keeps it; the second and later are called "NAME (2)", "NAME (3)",
/// passing over names that stand there already, and keep theirs in `nameInFile`. Corridors keep their names: several may
/// come from one Roadway. O(n) in the objects named.
///     tellSiblingsApart(drawing, [&](const std::string& text, Handle object, FileNumber file) {
///       drawing.diagnostics.push_back({Severity::Warning, text, 0, file, object});
///     });
void tellSiblingsApart(Drawing& drawing, const TellRenamed& tell);

}  // namespace lvx::civil
