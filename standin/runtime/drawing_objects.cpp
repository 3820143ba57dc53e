#include "runtime/drawing_objects.h"

namespace lvx::runtime {

namespace {

template <class Object>
std::string_view nameOf(const Object& object) {
  if constexpr (requires { object.texts; })
    return object.texts.name();
  else
    return object.name;
}

template <class List>
std::optional<civil::Handle> firstOf(const List& list, std::string_view name) {
  for (const auto& object : list)
    if (nameOf(object) == name) return object.handle;
  return std::nullopt;
}

/// Gives each alignment to `use` until one answers.
template <class Use>
std::optional<civil::Handle> firstAlignment(const civil::Drawing& drawing, Use use) {
  const auto inSite = [&use](const civil::Site& site) -> std::optional<civil::Handle> {
    for (const auto& alignment : site.alignments)
      if (const auto handle = use(*alignment)) return handle;
    return std::nullopt;
  };
  if (const auto handle = inSite(drawing.siteless)) return handle;
  for (const civil::Site& site : drawing.sites)
    if (const auto handle = inSite(site)) return handle;
  return std::nullopt;
}

}  // namespace

std::optional<civil::Handle> findByName(const civil::Drawing& drawing, std::string_view classTag,
                                        std::string_view name) {
  using civil::AlignmentObject;
  if (classTag == "QMT_SITE") return firstOf(drawing.sites, name);
  if (classTag == "QMT_TIN_SURFACE") return firstOf(drawing.surfaces, name);
  if (classTag == "QMT_POINT_GROUP") return firstOf(drawing.pointGroups, name);
  if (classTag == "QMT_CORRIDOR") return firstOf(drawing.corridors, name);
  if (classTag == "QMT_COGO_POINT") return firstOf(drawing.points, name);
  if (classTag == "QMT_ALIGNMENT")
    return firstAlignment(drawing, [name](const AlignmentObject& alignment) -> std::optional<civil::Handle> {
      if (alignment.name == name) return alignment.handle;
      return std::nullopt;
    });
  if (classTag == "QMT_PROFILE")
    return firstAlignment(drawing,
                          [name](const AlignmentObject& alignment) { return firstOf(alignment.profiles, name); });
  if (classTag == "QMT_SAMPLE_LINE_GROUP")
    return firstAlignment(
        drawing, [name](const AlignmentObject& alignment) { return firstOf(alignment.sampleLineGroups, name); });
  if (classTag == "QMT_SAMPLE_LINE")
    return firstAlignment(drawing, [name](const AlignmentObject& alignment) -> std::optional<civil::Handle> {
      for (const civil::SampleLineGroup& group : alignment.sampleLineGroups)
        if (const auto handle = firstOf(group.lines, name)) return handle;
      return std::nullopt;
    });
  return std::nullopt;
}

std::optional<civil::Handle> findPoint(const civil::Drawing& drawing, std::int32_t number) {
  for (const civil::Point& point : drawing.points)
    if (point.number == number) return point.handle;
  return std::nullopt;
}

}  // namespace lvx::runtime
