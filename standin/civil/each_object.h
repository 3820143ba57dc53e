#pragma once

#include "civil/drawing.h"

namespace lvx::civil {

/// Calls `use` for every object of a drawing that has a handle of its own, sample lines apart: sites (that of alignments
/// outside any site too), alignments, profiles, sample line groups, surfaces, points, point groups, corridors. `drawing`
/// may be const.
template <class AnyDrawing, class Use>
void eachObject(AnyDrawing& drawing, Use use) {
  const auto site = [&](auto& s) {
    use(s);
    for (auto& alignment : s.alignments) {
      use(*alignment);
      for (auto& profile : alignment->profiles) use(profile);
      for (auto& group : alignment->sampleLineGroups) use(group);
    }
  };
  site(drawing.siteless);
  for (auto& s : drawing.sites) site(s);
  for (auto& surface : drawing.surfaces) use(surface);
  for (auto& point : drawing.points) use(point);
  for (auto& group : drawing.pointGroups) use(group);
  for (auto& corridor : drawing.corridors) use(corridor);
}

/// Calls `use` for every handle of a drawing, those of sample lines included; 0 where an object has none.
template <class AnyDrawing, class Use>
void eachHandle(AnyDrawing& drawing, Use use) {
  eachObject(drawing, [&](auto& object) {
    use(object.handle);
    if constexpr (requires { object.lines; }) {
      for (auto& line : object.lines) use(line.handle);
    }
  });
}

}  // namespace lvx::civil
