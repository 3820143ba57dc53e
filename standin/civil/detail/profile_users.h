#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "civil/drawing.h"

namespace lvx::civil {

/// Corridors point to profiles, which move with their list: calls `change`, which changes the alignment's profiles, and
/// lets them point to the same ones again. A baseline whose profile has gone has none.
template <class Change>
void keepingProfileUsers(Drawing& drawing, AlignmentObject& alignment, Change change) {
  std::vector<std::pair<Baseline*, Handle>> users;
  for (Corridor& corridor : drawing.corridors)
    for (Baseline& baseline : corridor.baselines)
      if (baseline.alignment == &alignment && baseline.profile != nullptr)
        users.emplace_back(&baseline, baseline.profile->handle);
  change();
  for (const auto& [baseline, handle] : users) {
    const auto found =
        std::find_if(alignment.profiles.begin(), alignment.profiles.end(),
                     [&, wanted = handle](const ProfileObject& profile) { return profile.handle == wanted; });
    baseline->profile = found == alignment.profiles.end() ? nullptr : &*found;
  }
}

}  // namespace lvx::civil
